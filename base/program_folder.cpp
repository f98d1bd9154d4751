#include "base/program_folder.h"

#include "base/wide_text.h"

#include <windows.h>

namespace torvane {

std::wstring wideFolderOfProgram() {
    constexpr DWORD kLongestPath = 32768; // characters, as Windows has it
    std::wstring path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
    return path.substr(0, path.find_last_of(L'\\'));
}

std::string folderOfProgram() {
    return ansiText(wideFolderOfProgram());
}

} // namespace torvane
