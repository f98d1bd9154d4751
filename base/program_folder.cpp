#include "base/program_folder.h"

#include <windows.h>

#include <array>

namespace torvane {

std::string folderOfProgram() {
    std::array<char, 1024> path{};
    GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const std::string whole(path.data());
    return whole.substr(0, whole.find_last_of('\\'));
}

} // namespace torvane
