#include "workbench/session/tool_delay.h"

namespace torvane::bench {

void takeTime(BenchFolder& folder, const ToolDescription& tool, const std::string& commandLine) {
    if (tool.delayMilliseconds == 0 || commandLine.find(tool.delayOnly) == std::string::npos) {
        return;
    }
    LogLine line("bench", "wait");
    folder.log(line.quoted("command-line", commandLine).result(0));
    folder.wait(tool.delayMilliseconds);
}

} // namespace torvane::bench
