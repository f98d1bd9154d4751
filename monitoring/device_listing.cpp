#include "monitoring/device_listing.h"

#include "base/format.h"
#include "monitoring/text_scanners.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace torvane {
namespace {

/// The tool names the system's drives /dev/sda, /dev/sdb and so on, in the order of their numbers. Those behind
/// /dev/sdz, which have two letters, are beyond the drives that the program knows.
std::int32_t driveNumberOf(std::string_view deviceName) {
    constexpr std::string_view kDisk = "/dev/sd";
    if (!deviceName.starts_with(kDisk) || deviceName.size() != kDisk.size() + 1) {
        return -1;
    }
    const char letter = deviceName.back();
    return letter >= 'a' && letter <= 'z' ? letter - 'a' : -1;
}

/// One argument as a program's start-up code takes it apart again (Win32, CommandLineToArgvW).
std::string quoted(std::string_view word) {
    std::string argument = "\"";
    std::size_t backslashes = 0;
    for (const char byte : word) {
        if (byte == '"') {
            argument.append(backslashes + 1, '\\');
        }
        backslashes = byte == '\\' ? backslashes + 1 : 0;
        argument += byte;
    }
    argument.append(backslashes, '\\');
    return argument + '"';
}

/// The text with every word that a command line would not keep together put into quotes. The listing is outside text:
/// no word of it may become two arguments.
std::string withSafeWords(std::string_view text) {
    std::string safe;
    while (!text.empty()) {
        const std::size_t blanks = std::min(text.find_first_not_of(' '), text.size());
        safe += text.substr(0, blanks);
        text.remove_prefix(blanks);
        const std::string_view word = text.substr(0, text.find(' '));
        const bool ordinary = word.find_first_of("\"\t\n\v\f\r") == std::string_view::npos;
        safe += ordinary ? std::string(word) : quoted(word);
        text.remove_prefix(word.size());
    }
    return safe;
}

} // namespace

void readListedDevice(const char* line, ListedDevice& device) {
    std::array<char, kListingLineRoom> part{};
    std::array<char, kListingLineRoom> name{};
    std::array<char, kListingLineRoom> type{};
    PARSE_CopyUntil(line, part, '#'); // the tool's comment
    if (PARSE_GetWord(part.data(), name, 0) == 0 || PARSE_GetWord(part.data(), type, 2) == 0) {
        device.name.clear();
        device.commandPart = withSafeWords(part.data());
        return;
    }
    device.name = name.data();
    device.driveNumber = driveNumberOf(device.name);
    // Whatever type the tool listed: every device is asked through the SCSI/ATA translation.
    device.commandPart = withSafeWords(formatText("%s -d sat", name.data()));
}

std::string reportCommandLine(const ListedDevice& device) {
    // -T is given twice: the tool then goes on after more errors than after one.
    return formatText("smartctl.exe %s -s on -x -T verypermissive -T verypermissive", device.commandPart.c_str());
}

} // namespace torvane
