#include "workbench/hooks/refused_files.h"

#include "workbench/session/win32_text.h"

#include <algorithm>
#include <string>

namespace torvane::bench {
namespace {

std::wstring lowerCase(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(c >= L'A' && c <= L'Z' ? c - L'A' + L'a' : c); });
    return text;
}

std::wstring wholePath(const wchar_t* path) {
    std::wstring whole(GetFullPathNameW(path, 0, nullptr, nullptr), L'\0');
    whole.resize(GetFullPathNameW(path, static_cast<DWORD>(whole.size()), whole.data(), nullptr));
    return whole;
}

bool writes(DWORD access, DWORD disposition) {
    constexpr DWORD kWriting =
        GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA | FILE_APPEND_DATA | DELETE | WRITE_DAC | WRITE_OWNER;
    return (access & kWriting) != 0 || disposition != OPEN_EXISTING;
}

} // namespace

DWORD refusalOf(BenchSession& session, const wchar_t* path, DWORD access, DWORD disposition) {
    const std::vector<RefusedFile>& refused = session.description().refusedFiles;
    if (refused.empty() || !writes(access, disposition)) {
        return NO_ERROR;
    }
    const std::wstring whole = lowerCase(wholePath(path));
    const bool exists = GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES;
    const auto found = std::find_if(refused.begin(), refused.end(), [&](const RefusedFile& file) {
        return !(exists && file.newOnly) && whole.find(lowerCase(wideFromBytes(file.path))) != std::wstring::npos;
    });
    return found == refused.end() ? NO_ERROR : found->error;
}

} // namespace torvane::bench
