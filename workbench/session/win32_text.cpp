#include "workbench/session/win32_text.h"

#include <windows.h>

namespace torvane::bench {
namespace {

std::wstring widen(UINT codePage, std::string_view text) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string narrow(UINT codePage, std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    std::string bytes(
        static_cast<std::size_t>(WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                        nullptr);
    return bytes;
}

} // namespace

std::wstring wideFromUtf8(std::string_view text) {
    return widen(CP_UTF8, text);
}

std::string utf8FromWide(std::wstring_view text) {
    return narrow(CP_UTF8, text);
}

std::wstring wideFromAnsi(std::string_view text) {
    return widen(CP_ACP, text);
}

std::string ansiFromWide(std::wstring_view text) {
    return narrow(CP_ACP, text);
}

std::wstring wideFromBytes(std::string_view text) {
    std::wstring wide;
    for (const char c : text) {
        wide += static_cast<wchar_t>(static_cast<unsigned char>(c));
    }
    return wide;
}

} // namespace torvane::bench
