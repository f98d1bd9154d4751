#include "workbench/hooks/path_hooks.h"

#include "workbench/hooks/hook_functions.h"
#include "workbench/hooks/hooks.h"
#include "workbench/session/win32_text.h"

#include <array>
#include <string_view>

namespace torvane::bench {
namespace {

constexpr std::wstring_view kLongForm = L"\\\\?\\";
constexpr std::wstring_view kLongShare = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";

DWORD WINAPI getFileAttributesW(LPCWSTR path) {
    return refusesLongPath(path) ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(path);
}

DWORD WINAPI getFileAttributesA(LPCSTR path) {
    return refusesLongPath(path) ? INVALID_FILE_ATTRIBUTES : GetFileAttributesA(path);
}

BOOL WINAPI getFileAttributesExW(LPCWSTR path, GET_FILEEX_INFO_LEVELS level, LPVOID out) {
    return refusesLongPath(path) ? FALSE : GetFileAttributesExW(path, level, out);
}

BOOL WINAPI getFileAttributesExA(LPCSTR path, GET_FILEEX_INFO_LEVELS level, LPVOID out) {
    return refusesLongPath(path) ? FALSE : GetFileAttributesExA(path, level, out);
}

BOOL WINAPI deleteFileW(LPCWSTR path) {
    return refusesLongPath(path) ? FALSE : DeleteFileW(path);
}

BOOL WINAPI deleteFileA(LPCSTR path) {
    return refusesLongPath(path) ? FALSE : DeleteFileA(path);
}

BOOL WINAPI moveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags) {
    return refusesLongPath(from) || refusesLongPath(to) ? FALSE : MoveFileExW(from, to, flags);
}

BOOL WINAPI moveFileExA(LPCSTR from, LPCSTR to, DWORD flags) {
    return refusesLongPath(from) || refusesLongPath(to) ? FALSE : MoveFileExA(from, to, flags);
}

} // namespace

std::wstring absolutePath(LPCWSTR path) {
    std::wstring whole(GetFullPathNameW(path, 0, nullptr, nullptr), L'\0');
    whole.resize(GetFullPathNameW(path, static_cast<DWORD>(whole.size()), whole.data(), nullptr));
    if (whole.starts_with(kLongShare)) {
        return L"\\\\" + whole.substr(kLongShare.size());
    }
    return whole.starts_with(kLongForm) ? whole.substr(kLongForm.size()) : whole;
}

bool refusesLongPath(LPCWSTR path) {
    const std::wstring_view text(path == nullptr ? L"" : path);
    if (text.empty() || !currentSession() || text.starts_with(kLongForm) || text.starts_with(kDevice) ||
        GetFullPathNameW(path, 0, nullptr, nullptr) <= MAX_PATH) {
        return false;
    }
    SetLastError(ERROR_PATH_NOT_FOUND);
    return true;
}

bool refusesLongPath(LPCSTR path) {
    return path != nullptr && refusesLongPath(wideFromAnsi(path).c_str());
}

std::span<const Replacement> pathReplacements() {
    static const std::array kReplacements = {
        Replacement{"GetFileAttributesA", hookAddress(getFileAttributesA)},
        Replacement{"GetFileAttributesW", hookAddress(getFileAttributesW)},
        Replacement{"GetFileAttributesExA", hookAddress(getFileAttributesExA)},
        Replacement{"GetFileAttributesExW", hookAddress(getFileAttributesExW)},
        Replacement{"DeleteFileA", hookAddress(deleteFileA)},
        Replacement{"DeleteFileW", hookAddress(deleteFileW)},
        Replacement{"MoveFileExA", hookAddress(moveFileExA)},
        Replacement{"MoveFileExW", hookAddress(moveFileExW)},
    };
    return kReplacements;
}

} // namespace torvane::bench
