#include "workbench/tools/powershell_command.h"

#include "workbench/tools/stand_in.h"

namespace torvane::bench {
namespace {

int runTool(StandIn& standIn) {
    const ToolDescription& tool = standIn.bench.powershell;
    LogLine line("bench", "powershell");
    line.quoted("command-line", standIn.commandLine);
    if (obeyDescription(standIn, tool)) {
        standIn.folder->log(line.result(0));
        return exitCodeOf(tool, 0);
    }
    const PowershellRun run = runPowershell(standIn.bench, standIn.folder->state(), standIn.arguments);
    if (run.opened) {
        line.quoted("opened", run.what);
    }
    standIn.folder->log(line.word("result", run.exitCode == 0 ? "ok" : "exit:" + std::to_string(run.exitCode)));
    printOwn(tool, STD_OUTPUT_HANDLE, run.output);
    printOwn(tool, STD_ERROR_HANDLE, run.errors);
    return exitCodeOf(tool, run.exitCode);
}

} // namespace
} // namespace torvane::bench

int main() {
    const std::unique_ptr<torvane::bench::StandIn> standIn = torvane::bench::openStandIn();
    return standIn ? torvane::bench::runTool(*standIn) : 1;
}
