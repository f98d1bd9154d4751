#include "ui/clipboard.h"

#include "base/wide_text.h"

#include <cstring>
#include <memory>

namespace torvane {

namespace {

struct GlobalFreer {
    void operator()(void* block) const { GlobalFree(block); }
};
using UniqueGlobal = std::unique_ptr<void, GlobalFreer>;

/// The clipboard for a scope. Others may hold it, each for a moment.
class OpenedClipboard {
  public:
    explicit OpenedClipboard(HWND owner) : opened_(OpenClipboard(owner) != FALSE) {
        for (int tries = 1; tries < kTries && !opened_; ++tries) {
            Sleep(kPauseMilliseconds);
            opened_ = OpenClipboard(owner) != FALSE;
        }
    }
    ~OpenedClipboard() {
        if (opened_) {
            CloseClipboard();
        }
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    explicit operator bool() const { return opened_; }

  private:
    static constexpr int kTries = 20;
    static constexpr DWORD kPauseMilliseconds = 10;

    bool opened_;
};

/// The text with its NUL as the clipboard takes it; null when there is no memory.
UniqueGlobal blockOf(const std::wstring& text) {
    const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
    UniqueGlobal block{GlobalAlloc(GMEM_MOVEABLE, size)};
    if (void* const bytes = block ? GlobalLock(block.get()) : nullptr; bytes != nullptr) {
        std::memcpy(bytes, text.c_str(), size);
        GlobalUnlock(block.get());
        return block;
    }
    return nullptr;
}

} // namespace

bool copyToClipboard(HWND owner, const std::string& text) {
    UniqueGlobal block = blockOf(wideText(text));
    const OpenedClipboard clipboard(owner);
    if (!block || !clipboard || EmptyClipboard() == FALSE || SetClipboardData(CF_UNICODETEXT, block.get()) == nullptr) {
        return false;
    }
    [[maybe_unused]] const HGLOBAL given = block.release(); // the system's from now on
    return true;
}

} // namespace torvane
