#include "base/system_path.h"

#include "base/long_path.h"
#include "base/wide_text.h"

#include <windows.h>

namespace torvane {

namespace {

/// Empty when the system cannot tell.
std::wstring absolute(const std::wstring& path) {
    std::wstring whole(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    whole.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
    return whole;
}

} // namespace

std::wstring systemPath(const std::wstring& path) {
    const std::wstring whole = absolute(path);
    return whole.size() < kLongPathFrom ? path : longPathForm(whole);
}

std::wstring systemPath(std::string_view path) {
    return systemPath(wideText(path));
}

} // namespace torvane
