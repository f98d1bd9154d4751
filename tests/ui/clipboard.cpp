#include "tests/ui/clipboard.h"

#include "tests/ui/driver/wait.h"

#include <windows.h>

namespace torvane::driver {

Clipboard::Clipboard() {
    await("the clipboard is free", [] { return OpenClipboard(nullptr) != FALSE; });
}

Clipboard::~Clipboard() {
    CloseClipboard();
}

std::wstring Clipboard::text() {
    const HANDLE block = GetClipboardData(CF_UNICODETEXT);
    const auto* const characters = block == nullptr ? nullptr : static_cast<const wchar_t*>(GlobalLock(block));
    std::wstring text = characters == nullptr ? L"(nothing)" : characters;
    if (characters != nullptr) {
        GlobalUnlock(block);
    }
    return text;
}

void Clipboard::empty() {
    EmptyClipboard();
}

std::string clipboardText() {
    const std::wstring text = [] {
        const Clipboard clipboard;
        return Clipboard::text();
    }();
    return {text.begin(), text.end()};
}

} // namespace torvane::driver
