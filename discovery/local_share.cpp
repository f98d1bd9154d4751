#include "discovery/local_share.h"

#include <windows.h>

#include <lmshare.h>

#include <array>
#include <memory>
#include <type_traits>

namespace torvane {

namespace {

struct ModuleDeleter {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};
using UniqueModule = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleDeleter>;

bool isSameName(const std::wstring& one, const wchar_t* other) {
    return CompareStringOrdinal(one.c_str(), -1, other, -1, TRUE) == CSTR_EQUAL;
}

bool isThisComputer(const std::wstring& server) {
    if (isSameName(server, L"localhost") || server.starts_with(L"127.") ||
        isSameName(server, L"--1.ipv6-literal.net")) {
        return true;
    }
    for (const COMPUTER_NAME_FORMAT format :
         {ComputerNameNetBIOS, ComputerNameDnsHostname, ComputerNameDnsFullyQualified}) {
        std::array<wchar_t, 512> name{};
        DWORD length = static_cast<DWORD>(name.size());
        if (GetComputerNameExW(format, name.data(), &length) != 0 && isSameName(server, name.data())) {
            return true;
        }
    }
    return false;
}

/// As it stands in SHARE_INFO_2, which administrators may ask for.
std::wstring folderOfShare(const std::wstring& share) {
    // From the system's own folder alone. Without it there are no shares to tell of.
    const UniqueModule library(LoadLibraryExW(L"netapi32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    if (!library) {
        return {};
    }
    const auto getInfo = reinterpret_cast<decltype(&NetShareGetInfo)>(
        reinterpret_cast<void (*)()>(GetProcAddress(library.get(), "NetShareGetInfo")));
    const auto freeBuffer = reinterpret_cast<DWORD(WINAPI*)(void*)>(
        reinterpret_cast<void (*)()>(GetProcAddress(library.get(), "NetApiBufferFree")));
    if (getInfo == nullptr || freeBuffer == nullptr) {
        return {};
    }
    constexpr DWORD kWithPath = 2;
    std::wstring name = share;
    LPBYTE answer = nullptr;
    if (getInfo(nullptr, name.data(), kWithPath, &answer) != 0 || answer == nullptr) {
        return {};
    }
    const auto* const info = reinterpret_cast<const SHARE_INFO_2*>(answer);
    std::wstring folder = info->shi2_path == nullptr ? L"" : info->shi2_path;
    freeBuffer(answer);
    return folder;
}

} // namespace

std::optional<std::wstring> localShareFolder(const std::wstring& server, const std::wstring& share) {
    return isThisComputer(server) ? std::optional(folderOfShare(share)) : std::nullopt;
}

} // namespace torvane
