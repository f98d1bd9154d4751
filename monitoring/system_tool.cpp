#include "monitoring/system_tool.h"

#include "base/program_folder.h"
#include "base/tool_watch.h"
#include "base/whole_file.h"
#include "state/event_log.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <set>

namespace torvane {
namespace {

struct SystemTool {
    std::string_view name;
    const char* place; ///< below the system's folder
};

constexpr SystemTool kSystemTools[] = {
    {"diskpart", R"(\diskpart.exe)"},
    {"powershell", R"(\WindowsPowerShell\v1.0\powershell.exe)"},
};

/// Null for what is no tool of the system, or is named with its folder: then the command line means that very one.
const SystemTool* systemToolOf(std::string_view commandLine) {
    if (programWord(commandLine).find_first_of("\\/:") != std::string_view::npos) {
        return nullptr;
    }
    const std::string name = toolName(commandLine);
    const auto* const tool = std::ranges::find(kSystemTools, name, &SystemTool::name);
    return tool == std::end(kSystemTools) ? nullptr : tool;
}

/// What a function of the system writes into a buffer; empty when it has no path or one that is too long.
template <typename Function>
std::string pathFrom(Function function) {
    std::array<char, 4 * MAX_PATH> path{};
    const DWORD length = function(path.data(), static_cast<DWORD>(path.size()));
    return length < path.size() ? std::string(path.data(), length) : std::string();
}

std::string systemFolder() {
    return pathFrom([](char* path, DWORD size) { return GetSystemDirectoryA(path, size); });
}

std::string currentFolder() {
    return pathFrom([](char* path, DWORD size) { return GetCurrentDirectoryA(size, path); });
}

/// True the first time that it is asked about the path.
bool isNews(const std::string& path) {
    static std::mutex mutex;
    // Never destroyed: a thread may still start a tool while the program ends.
    static std::set<std::string>& named = *new std::set<std::string>;
    const std::scoped_lock lock(mutex);
    return named.insert(path).second;
}

void nameStrangers(const SystemTool& tool, const std::string& own) {
    for (const std::string& folder : {folderOfProgram(), currentFolder()}) {
        const std::string stranger = folder + "\\" + std::string(tool.name) + ".exe";
        if (!isFile(stranger) || lstrcmpiA(stranger.c_str(), own.c_str()) == 0 || !isNews(stranger)) {
            continue;
        }
        if (own.empty()) {
            LogEvent("ERROR", "[%s] does not belong to Windows and is started all the same: Windows has none",
                     stranger.c_str());
        } else {
            LogEvent("ERROR", "[%s] does not belong to Windows and is not used: [%s] is started", stranger.c_str(),
                     own.c_str());
        }
    }
}

} // namespace

std::string systemToolPath(std::string_view commandLine) {
    const SystemTool* const tool = systemToolOf(commandLine);
    if (tool == nullptr) {
        return {};
    }
    std::string path = systemFolder() + tool->place;
    if (!isFile(path)) {
        path.clear();
    }
    nameStrangers(*tool, path);
    return path;
}

} // namespace torvane
