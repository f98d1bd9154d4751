#include "workbench/session/drive_content.h"
#include "workbench/session/win32_text.h"
#include "workbench/tools/diskpart_german.h"
#include "workbench/tools/diskpart_script.h"
#include "workbench/tools/stand_in.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <vector>

namespace torvane::bench {
namespace {

constexpr std::uint32_t kCannotOpenScript = 3; // diskpart's documented exit code
constexpr std::uint64_t kMebibyte = 1ULL << 20;

// The script of "diskpart /s <file>".
std::optional<std::string> scriptText(const std::vector<std::string>& arguments) {
    if (arguments.size() != 2 || (arguments[0] != "/s" && arguments[0] != "/S" && arguments[0] != "-s")) {
        return std::nullopt;
    }
    std::ifstream file(std::filesystem::path(wideFromAnsi(arguments[1])), std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// Cleaning overwrites the first and the last mebibyte, where partition tables and boot records lie.
void wipeEnds(const std::filesystem::path& folder, const DriveDescription& drive) {
    const DriveContent content(folder, drive);
    if (content.isPattern()) {
        return;
    }
    const UniqueHandle handle = content.open(GENERIC_READ | GENERIC_WRITE, nullptr);
    const std::vector<std::uint8_t> zeros(std::min(kMebibyte, drive.size));
    if (handle) {
        (void)content.write(handle.get(), 0, zeros);
        (void)content.write(handle.get(), drive.size - zeros.size(), zeros);
    }
}

void logSteps(StandIn& standIn, const DiskpartRun& run) {
    for (const DiskpartStep& step : run.steps) {
        LogLine line(step.target, "diskpart");
        line.quoted("command-line", standIn.commandLine)
            .quoted("script-line", step.line)
            .word("result", step.exitCode == 0 ? "ok" : "exit:" + std::to_string(step.exitCode));
        standIn.folder->log(line);
    }
}

void printText(const ToolDescription& tool, const std::string& english) {
    printOwn(tool, STD_OUTPUT_HANDLE, tool.speaksGerman ? diskpartInGerman(english) : english);
}

int runTool(StandIn& standIn) {
    const ToolDescription& tool = standIn.bench.diskpart;
    if (obeyDescription(standIn, tool)) {
        LogLine line("bench", "diskpart");
        standIn.folder->log(line.quoted("command-line", standIn.commandLine).result(0));
        return exitCodeOf(tool, 0);
    }
    printText(tool, diskpartBanner(standIn.bench.computer));
    const std::optional<std::string> script = scriptText(standIn.arguments);
    if (!script) {
        printText(tool, "\r\nDiskPart has encountered an error: The system cannot find the file specified.\r\n"
                        "See the System Event Log for more information.\r\n");
        return exitCodeOf(tool, kCannotOpenScript);
    }
    DiskpartRun run;
    standIn.folder->changeState([&](BenchState& state) { run = runDiskpartScript(standIn.bench, state, *script); });
    for (const std::uint32_t number : run.cleanedNow) {
        const DriveDescription& drive = *standIn.bench.drive(number);
        wipeEnds(standIn.folder->path(), standIn.folder->state().isSwapped(number) ? swappedDrive(drive) : drive);
    }
    logSteps(standIn, run);
    printText(tool, run.output);
    return exitCodeOf(tool, run.exitCode);
}

} // namespace
} // namespace torvane::bench

int main() {
    const std::unique_ptr<torvane::bench::StandIn> standIn = torvane::bench::openStandIn();
    return standIn ? torvane::bench::runTool(*standIn) : 1;
}
