#include "workbench/hooks/child_process.h"

#include "workbench/session/unique_handle.h"
#include "workbench/session/win32_text.h"

#include <psapi.h>

#include <array>
#include <cstring>
#include <string_view>

namespace torvane::bench {
namespace {

bool is64Bit(HANDLE process) {
    BOOL wow64 = FALSE;
    return IsWow64Process(process, &wow64) != 0 && wow64 == FALSE;
}

// kernel32 lies at the same address in every process of one session, so a thread elsewhere can start in its functions.
LPTHREAD_START_ROUTINE loadLibraryAddress() {
    const FARPROC function = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW");
    LPTHREAD_START_ROUTINE start = nullptr;
    std::memcpy(&start, &function, sizeof(start));
    return start;
}

// A library that refuses to load is gone again when its thread has ended.
bool holdsModule(HANDLE process, const std::filesystem::path& dll) {
    std::array<HMODULE, 512> modules{};
    DWORD needed = 0;
    if (K32EnumProcessModules(process, modules.data(), sizeof(modules), &needed) == 0) {
        return false;
    }
    for (std::size_t i = 0; i < needed / sizeof(HMODULE) && i < modules.size(); ++i) {
        std::array<wchar_t, 1024> name{};
        const DWORD length = K32GetModuleBaseNameW(process, modules[i], name.data(), static_cast<DWORD>(name.size()));
        if (lstrcmpiW(std::wstring(name.data(), length).c_str(), dll.filename().c_str()) == 0) {
            return true;
        }
    }
    return false;
}

template <typename Character>
std::vector<std::basic_string<Character>> variablesOf(const Character* block) {
    std::vector<std::basic_string<Character>> variables;
    while (*block != 0) {
        variables.emplace_back(block);
        block += variables.back().size() + 1;
    }
    return variables;
}

std::vector<std::wstring> wideVariables(const void* block, bool isUnicode) {
    if (isUnicode) {
        return variablesOf(static_cast<const wchar_t*>(block));
    }
    std::vector<std::wstring> wide;
    for (const std::string& variable : variablesOf(static_cast<const char*>(block))) {
        wide.push_back(wideFromAnsi(variable));
    }
    return wide;
}

} // namespace

DWORD loadIntoProcess(HANDLE process, const std::filesystem::path& dll) {
    if (!is64Bit(process)) {
        return ERROR_BAD_EXE_FORMAT; // the library is of 64 bits only
    }
    const std::wstring path = dll.wstring();
    const std::size_t bytes = (path.size() + 1) * sizeof(wchar_t);
    void* remote = VirtualAllocEx(process, nullptr, bytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (remote == nullptr || WriteProcessMemory(process, remote, path.c_str(), bytes, nullptr) == 0) {
        return GetLastError();
    }
    const UniqueHandle thread(CreateRemoteThread(process, nullptr, 0, loadLibraryAddress(), remote, 0, nullptr));
    if (!thread) {
        return GetLastError();
    }
    WaitForSingleObject(thread.get(), INFINITE);
    VirtualFreeEx(process, remote, 0, MEM_RELEASE);
    return holdsModule(process, dll) ? 0 : static_cast<DWORD>(ERROR_DLL_INIT_FAILED);
}

std::filesystem::path ownFolder() {
    HMODULE own = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ownFolder), &own);
    std::array<wchar_t, 1024> path{};
    const DWORD length = GetModuleFileNameW(own, path.data(), static_cast<DWORD>(path.size()));
    return std::filesystem::path(std::wstring(path.data(), length)).parent_path();
}

std::filesystem::path standInPath(Tool tool) {
    return ownFolder() / "tools" / (tool == Tool::kDiskpart ? "diskpart.exe" : "powershell.exe");
}

std::vector<wchar_t> environmentWithBench(const void* block, bool isUnicode, const std::wstring& folder) {
    const std::wstring prefix = std::wstring(kBenchVariable) + L"=";
    std::vector<wchar_t> merged;
    const auto append = [&](const std::wstring& variable) {
        merged.insert(merged.end(), variable.begin(), variable.end());
        merged.push_back(L'\0');
    };
    for (const std::wstring& variable : wideVariables(block, isUnicode)) {
        if (!variable.starts_with(prefix)) {
            append(variable);
        }
    }
    append(prefix + folder);
    merged.push_back(L'\0');
    return merged;
}

} // namespace torvane::bench
