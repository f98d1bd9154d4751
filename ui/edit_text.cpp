#include "ui/edit_text.h"

#include "ui/control_text.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace torvane {

namespace {

std::size_t bytesOf(std::wstring_view text, UINT codePage) {
    return static_cast<std::size_t>(
        WideCharToMultiByte(codePage, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr));
}

/// Where the character begins that ends at `end`: two units of a surrogate pair, or of a line break, are one.
std::size_t characterBefore(std::wstring_view text, std::size_t end) {
    const bool pair = end >= 2 && ((IS_SURROGATE_PAIR(text[end - 2], text[end - 1])) ||
                                   (text[end - 2] == L'\r' && text[end - 1] == L'\n'));
    return end - (pair ? 2 : 1);
}

/// In UTF-16 units, from the text's start. With a selection, its end; at the text's start, the text's end.
std::size_t caretIn(HWND edit, std::size_t length) {
    DWORD selectionEnd = 0;
    SendMessageW(edit, EM_GETSEL, 0, reinterpret_cast<LPARAM>(&selectionEnd));
    return selectionEnd == 0 ? length : std::min<std::size_t>(selectionEnd, length);
}

/// Takes characters away in front of `end` until the text fits or the text's start is reached. Returns where they were.
std::size_t shortenBefore(std::wstring& text, std::size_t end, std::size_t limit, UINT codePage) {
    std::size_t bytes = bytesOf(text, codePage);
    std::size_t begin = end;
    while (bytes > limit && begin > 0) {
        const std::size_t previous = characterBefore(text, begin);
        bytes -= bytesOf(std::wstring_view(text).substr(previous, begin - previous), codePage);
        begin = previous;
    }
    text.erase(begin, end - begin);
    return begin;
}

} // namespace

bool keepWithinBytes(HWND edit, std::size_t limit, UINT codePage) {
    std::wstring text = wideControlText(edit);
    if (bytesOf(text, codePage) <= limit) {
        return false;
    }
    const std::size_t caret = shortenBefore(text, caretIn(edit, text.size()), limit, codePage);
    shortenBefore(text, text.size(), limit, codePage); // what stood in front of the caret may not have been enough
    SetWindowTextW(edit, text.c_str());
    SendMessageW(edit, EM_SETSEL, caret, static_cast<LPARAM>(caret));
    SendMessageW(edit, EM_SCROLLCARET, 0, 0);
    MessageBeep(MB_OK);
    return true;
}

} // namespace torvane
