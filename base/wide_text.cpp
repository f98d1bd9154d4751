#include "base/wide_text.h"

#include "base/utf8_text.h"

#include <windows.h>

#include <cstddef>

namespace torvane {

namespace {

std::string narrowText(UINT codePage, std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
    return narrow;
}

} // namespace

std::wstring wideText(std::string_view text) {
    if (GetACP() == CP_UTF8) {
        const std::u16string units = utf16FromUtf8(text);
        return {units.begin(), units.end()};
    }
    const int length = static_cast<int>(text.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string ansiText(std::wstring_view text) {
    return narrowText(CP_ACP, text);
}

std::string utf8Text(std::wstring_view text) {
    return narrowText(CP_UTF8, text);
}

} // namespace torvane
