#include "monitoring/device_listing.h"
#include "tests/fuzz/fuzz_input.h"

#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

// Lines of the monitoring tool's device listing: any bytes. What they name must stay together on a command line.

using namespace torvane;
using fuzz::require;

namespace {

bool separates(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\v' || byte == '\f' || byte == '\r';
}

/// The arguments that a program's start-up code takes from a command line (Win32, CommandLineToArgvW).
std::vector<std::string> argumentsOf(const std::string& commandLine) {
    std::vector<std::string> arguments;
    std::size_t at = 0;
    while (true) {
        while (at < commandLine.size() && separates(commandLine[at])) {
            ++at;
        }
        if (at == commandLine.size()) {
            return arguments;
        }
        std::string argument;
        bool quoted = false;
        for (; at < commandLine.size() && (quoted || !separates(commandLine[at])); ++at) {
            std::size_t backslashes = 0;
            while (at < commandLine.size() && commandLine[at] == '\\') {
                ++backslashes;
                ++at;
            }
            const bool quote = at < commandLine.size() && commandLine[at] == '"';
            argument.append(quote ? backslashes / 2 : backslashes, '\\');
            if (quote && backslashes % 2 == 0) {
                quoted = !quoted;
            } else if (quote) {
                argument += '"';
            } else if (backslashes > 0) {
                --at; // the byte behind them is looked at as any other
            } else {
                argument += commandLine[at];
            }
        }
        arguments.push_back(argument);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    ListedDevice device;
    while (input.remaining_bytes() > 0) {
        const std::string line = input.ConsumeRandomLengthString(200);
        const std::int32_t before = device.driveNumber;
        readListedDevice(line.c_str(), device);
        require(device.driveNumber >= -1 && device.driveNumber <= 25, "a drive's letter is a to z");
        if (device.name.empty()) {
            // A line that a lone LF begins has empty words, and an empty name no number.
            require(device.driveNumber == before || device.driveNumber == -1, "a short line keeps the number");
            continue;
        }
        const std::vector<std::string> arguments = argumentsOf(reportCommandLine(device));
        const std::vector<std::string> expected{
            "smartctl.exe", device.name, "-d", "sat", "-s", "on", "-x", "-T", "verypermissive", "-T", "verypermissive"};
        require(arguments == expected, "a device's name is one argument");
    }
    return 0;
}
