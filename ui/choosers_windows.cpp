#include "ui/choosers.h"
#include "ui/prompt_owner.h"

#include <windows.h>

#include <commdlg.h>
#include <objbase.h>
#include <ole2.h>
#include <shlobj.h>

#include <array>
#include <memory>

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
    // The system asks for room of MAX_PATH characters; in UTF-8 one of them may take up to three bytes.
    std::array<char, std::size_t{3} * MAX_PATH> path{};
    if (!chosen || SHGetPathFromIDListA(chosen.get(), path.data()) == FALSE) {
        return std::nullopt;
    }
    return path.data();
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

} // namespace torvane::choosers
