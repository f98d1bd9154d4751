#include "ui/choosers.h"

#include "base/long_path.h"
#include "base/wide_text.h"
#include "ui/prompt_owner.h"

#include <windows.h>

#include <commdlg.h>
#include <objbase.h>
#include <ole2.h>
#include <shlobj.h>

#include <array>
#include <cstring>
#include <memory>
#include <vector>

namespace torvane::choosers {

namespace {

/// OLE on this thread for a scope: the folder browser's newer style wants it.
class OleSession {
  public:
    OleSession() : started_(SUCCEEDED(OleInitialize(nullptr))) {}
    ~OleSession() {
        if (started_) {
            OleUninitialize();
        }
    }
    OleSession(const OleSession&) = delete;
    OleSession& operator=(const OleSession&) = delete;

  private:
    bool started_;
};

struct TaskMemoryDeleter {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};
using ItemIdList = std::unique_ptr<ITEMIDLIST, TaskMemoryDeleter>;

/// Label and pattern in turn, each with its NUL, and one more NUL at the end (OPENFILENAME's lpstrFilter).
std::string filterText(std::span<const FileKind> kinds) {
    std::string text;
    for (const FileKind& kind : kinds) {
        text.append(kind.label).push_back('\0');
        text.append(kind.pattern).push_back('\0');
    }
    return text;
}

/// None for what has no path in the file system. The narrow call ends at MAX_PATH bytes, which a path in other letters
/// reaches sooner than one of MAX_PATH characters; where it may have, the whole path is asked for.
std::optional<std::string> pathOf(PCIDLIST_ABSOLUTE item) {
    constexpr std::size_t kMayBeCut = MAX_PATH - 4; // a character of UTF-8 has up to four bytes
    std::array<char, std::size_t{3} * MAX_PATH> path{};
    if (SHGetPathFromIDListA(item, path.data()) != FALSE && std::strlen(path.data()) < kMayBeCut) {
        return path.data();
    }
    std::vector<wchar_t> whole(kLongestPath);
    if (SHGetPathFromIDListEx(item, whole.data(), static_cast<DWORD>(whole.size()), GPFIDL_DEFAULT) == FALSE) {
        return std::nullopt;
    }
    return ansiText(whole.data());
}

} // namespace

std::optional<std::string> folder(const char* title) {
    const OleSession ole;
    const HWND focused = GetFocus();
    std::array<char, MAX_PATH> name{};
    BROWSEINFOA browse{};
    browse.hwndOwner = focused != nullptr ? focused : prompts::owner();
    browse.pszDisplayName = name.data();
    browse.lpszTitle = title;
    browse.ulFlags = BIF_NEWDIALOGSTYLE;
    const ItemIdList chosen(SHBrowseForFolderA(&browse));
    return chosen ? pathOf(chosen.get()) : std::nullopt;
}

std::optional<std::string> existingFile(std::span<const FileKind> kinds) {
    const std::string filter = filterText(kinds);
    std::array<char, 1024> path{};
    OPENFILENAMEA open{};
    open.lStructSize = sizeof open;
    open.hwndOwner = prompts::owner();
    open.lpstrFilter = filter.c_str();
    open.lpstrFile = path.data();
    open.nMaxFile = static_cast<DWORD>(path.size());
    open.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR;
    if (GetOpenFileNameA(&open) == FALSE) {
        return std::nullopt;
    }
    return path.data();
}

std::optional<std::string> newFile(std::span<const FileKind> kinds, const std::string& name) {
    const std::wstring filter = wideText(filterText(kinds));
    const std::wstring offered = wideText(name);
    const std::wstring extension = offered.substr(offered.rfind(L'.') + 1);
    std::vector<wchar_t> path(kLongestPath);
    offered.copy(path.data(), path.size() - 1);
    OPENFILENAMEW save{};
    save.lStructSize = sizeof save;
    save.hwndOwner = prompts::owner();
    save.lpstrFilter = filter.c_str();
    save.lpstrFile = path.data();
    save.nMaxFile = static_cast<DWORD>(path.size());
    save.lpstrDefExt = extension.c_str();
    save.Flags = OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (GetSaveFileNameW(&save) == FALSE) {
        return std::nullopt;
    }
    return ansiText(path.data());
}

} // namespace torvane::choosers
