#include "workbench/tools/powershell_command.h"

#include "base/ascii.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace torvane::bench {
namespace {

constexpr std::string_view kVolumeCommand = "(get-bitlockervolume -mountpoint ";
constexpr std::string_view kProtectorProperty = ").keyprotector";
constexpr std::string_view kOpenCommand = "start-process ";

// The command itself: what follows the options, joined by blanks as PowerShell joins it.
std::string commandOf(const std::vector<std::string>& arguments) {
    static constexpr std::array<std::string_view, 3> kWithValue = {"-windowstyle", "-executionpolicy", "-outputformat"};
    static constexpr std::array<std::string_view, 5> kAlone = {"-command", "-c", "-noprofile", "-nologo",
                                                               "-noninteractive"};
    std::size_t first = 0;
    while (first < arguments.size()) {
        const std::string option = lowerAsciiText(arguments[first]);
        if (std::find(kWithValue.begin(), kWithValue.end(), option) != kWithValue.end()) {
            first += 2;
        } else if (std::find(kAlone.begin(), kAlone.end(), option) != kAlone.end()) {
            first += 1;
        } else {
            break;
        }
    }
    std::string command;
    for (std::size_t i = first; i < arguments.size(); ++i) {
        command += (i > first ? " " : "") + arguments[i];
    }
    return command;
}

std::string unquoted(std::string text) {
    if (text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front()) {
        text = text.substr(1, text.size() - 2);
    }
    return text;
}

// The first operand of a command: what stands in quotation marks, else the first word. Blanks divide operands here even
// if the caller's own command line had quotation marks: those are gone when PowerShell reads the command.
std::string firstOperand(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const bool quoted = !text.empty() && (text.front() == '"' || text.front() == '\'');
    return std::string(quoted ? text.substr(1, text.find(text.front(), 1) - 1) : text.substr(0, text.find(' ')));
}

// An error record as PowerShell shows it: message, place, category, identifier.
std::string errorRecord(const std::string& message, const std::string& command, const std::string& category,
                        const std::string& identifier) {
    return message + "\r\nAt line:1 char:1\r\n+ " + command + "\r\n+ " + std::string(command.size(), '~') +
           "\r\n    + CategoryInfo          : " + category + "\r\n    + FullyQualifiedErrorId : " + identifier +
           "\r\n \r\n";
}

PowershellRun failed(std::string errors) {
    PowershellRun run;
    run.errors = std::move(errors);
    run.exitCode = 1;
    return run;
}

PowershellRun protectorsOf(const BenchDescription& bench, const BenchState& state, const std::string& command,
                           std::string mountPoint) {
    mountPoint = unquoted(std::move(mountPoint));
    const bool shape = mountPoint.size() == 1 || (mountPoint.size() == 2 && mountPoint[1] == ':') ||
                       (mountPoint.size() == 3 && mountPoint.ends_with(":\\"));
    const char letter = shape ? static_cast<char>(mountPoint[0] & ~0x20) : '\0'; // upper case
    const VolumeDescription* volume = bench.volume(letter);
    const bool onDisk = volume != nullptr && !volume->extents.empty() && state.isMounted(*volume);
    if (!onDisk) {
        return failed(
            errorRecord("Get-BitLockerVolume : " + mountPoint + " does not have an associated BitLocker volume.",
                        command, "NotSpecified: (:) [Write-Error], COMException",
                        "System.Runtime.InteropServices.COMException,Get-BitLockerVolume"));
    }
    PowershellRun run;
    run.output = volume->bitLocker.output.value_or(keyProtectorList(volume->bitLocker));
    return run;
}

} // namespace

std::string keyProtectorList(const BitLockerDescription& bitLocker) {
    if (bitLocker.protectors.empty()) {
        return {};
    }
    // Format-List: two empty lines, one group of lines for each object with an empty line after it, two more empty
    // lines.
    std::string list = "\r\n\r\n";
    for (const KeyProtector& protector : bitLocker.protectors) {
        // The password of a locked volume cannot be read.
        const bool readable = bitLocker.state == BitLockerState::kUnlocked;
        list += "KeyProtectorId      : " + protector.id + "\r\n";
        list += "AutoUnlockProtector : \r\n";
        list += "KeyProtectorType    : " + protector.type + "\r\n";
        list += "KeyFileName         : \r\n";
        list += "RecoveryPassword    : " + (readable ? protector.password : std::string()) + "\r\n";
        list += "KeyCertificateType  : \r\n";
        list += "Thumbprint          : \r\n\r\n";
    }
    return list + "\r\n\r\n";
}

PowershellRun runPowershell(const BenchDescription& bench, const BenchState& state,
                            const std::vector<std::string>& arguments) {
    const std::string command = commandOf(arguments);
    const std::string lower = lowerAsciiText(command);
    if (lower.starts_with(kOpenCommand)) {
        PowershellRun run;
        run.opened = true;
        run.what = firstOperand(std::string_view(command).substr(kOpenCommand.size()));
        return run;
    }
    if (lower.starts_with(kVolumeCommand) && lower.ends_with(kProtectorProperty)) {
        const std::size_t length = command.size() - kVolumeCommand.size() - kProtectorProperty.size();
        return protectorsOf(bench, state, command, command.substr(kVolumeCommand.size(), length));
    }
    const std::string word = command.substr(0, command.find(' '));
    return failed(errorRecord(word + " : The term '" + word +
                                  "' is not recognized as the name of a cmdlet, function, script file, or operable "
                                  "program. Check the \r\nspelling of the name, or if a path was included, verify that "
                                  "the path is correct and try again.",
                              command, "ObjectNotFound: (" + word + ":String) [], CommandNotFoundException",
                              "CommandNotFoundException"));
}

} // namespace torvane::bench
