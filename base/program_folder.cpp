#include "base/program_folder.h"

#include "base/long_path.h"
#include "base/wide_text.h"

#include <windows.h>

namespace torvane {

std::wstring wideFolderOfProgram() {
    std::wstring path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
    return path.substr(0, path.find_last_of(L'\\'));
}

std::string folderOfProgram() {
    return ansiText(wideFolderOfProgram());
}

std::wstring wideCurrentFolder() {
    std::wstring path(GetCurrentDirectoryW(0, nullptr), L'\0');
    path.resize(GetCurrentDirectoryW(static_cast<DWORD>(path.size()), path.data()));
    return path;
}

} // namespace torvane
