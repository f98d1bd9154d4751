#include "workbench/hooks/monitoring_tool.h"

#include "workbench/session/tool_delay.h"
#include "workbench/session/win32_text.h"

#include <array>
#include <mutex>
#include <string>

namespace torvane::bench {
namespace {

bool isMonitoringTool() {
    std::array<wchar_t, 1024> path{};
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const std::filesystem::path program(std::wstring(path.data(), length));
    return lstrcmpiW(program.filename().c_str(), L"smartctl.exe") == 0;
}

} // namespace

void delayMonitoringTool(BenchSession& session) {
    static std::once_flag once;
    std::call_once(once, [&] {
        if (isMonitoringTool()) {
            takeTime(session.folder(), session.description().smartctl, utf8FromWide(GetCommandLineW()));
        }
    });
}

} // namespace torvane::bench
