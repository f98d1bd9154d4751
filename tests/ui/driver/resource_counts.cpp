#include "tests/ui/driver/resource_counts.h"

#include "tests/ui/driver/wait.h"

#include <winternl.h>

#include <vector>

namespace torvane::driver {
namespace {

// Layouts of ntdll's and gdi32's own tables for 64-bit processes. They are not in the SDK's headers.

/// SystemExtendedHandleInformation (class 64): the handles of every process.
struct HandleEntry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT creatorBackTraceIndex;
    USHORT objectTypeIndex;
    ULONG attributes;
    ULONG reserved;
};
static_assert(sizeof(HandleEntry) == 40);

struct HandleTable {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};

/// One entry of the table of GDI objects that every process sees read-only.
struct GdiEntry {
    std::uint64_t object;
    std::uint16_t processId; ///< without the two lowest bits' meaning on some systems
    std::uint16_t shareCount;
    std::uint16_t unique;
    std::uint8_t type; ///< 0: unused
    std::uint8_t flags;
    std::uint64_t userPointer;
};
static_assert(sizeof(GdiEntry) == 24);

constexpr std::size_t kGdiTableOffset = 0xF8; ///< GdiSharedHandleTable in the 64-bit PEB
constexpr std::size_t kGdiTableEntries = 16'384;

using QuerySystemInformation = NTSTATUS(NTAPI*)(ULONG, void*, ULONG, ULONG*);

int countKernelHandles(DWORD processId) {
    // Its declaration in <winternl.h> takes an enumeration that lacks this class.
    const auto query = reinterpret_cast<QuerySystemInformation>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    constexpr ULONG kExtendedHandleInformation = 64;
    constexpr NTSTATUS kTooShort = static_cast<NTSTATUS>(0xC0000004);
    std::vector<std::uint64_t> buffer(1U << 14U);
    ULONG needed = 0;
    NTSTATUS status = 0;
    const auto bytes = [&] { return static_cast<ULONG>(buffer.size() * sizeof buffer[0]); };
    while ((status = query(kExtendedHandleInformation, buffer.data(), bytes(), &needed)) == kTooShort) {
        buffer.resize(buffer.size() * 2);
    }
    if (status != 0) {
        throw Failure("the system does not list its handles");
    }
    const auto* table = reinterpret_cast<const HandleTable*>(buffer.data());
    int count = 0;
    for (ULONG_PTR i = 0; i < table->count; ++i) {
        count += table->entries[i].processId == processId ? 1 : 0;
    }
    return count;
}

int countGdiObjects(HANDLE process) {
    PROCESS_BASIC_INFORMATION info{};
    if (NtQueryInformationProcess(process, ProcessBasicInformation, &info, sizeof info, nullptr) != 0) {
        throw Failure("the process does not tell where its tables are");
    }
    void* address = nullptr;
    std::vector<GdiEntry> table(kGdiTableEntries);
    if (ReadProcessMemory(process, reinterpret_cast<char*>(info.PebBaseAddress) + kGdiTableOffset, &address,
                          sizeof address, nullptr) == FALSE ||
        ReadProcessMemory(process, address, table.data(), table.size() * sizeof table[0], nullptr) == FALSE) {
        throw Failure("the table of GDI objects cannot be read");
    }
    int count = 0;
    for (const GdiEntry& entry : table) {
        count += entry.type != 0 ? 1 : 0;
    }
    return count;
}

BOOL CALLBACK countChild(HWND, LPARAM count) {
    ++*reinterpret_cast<int*>(count);
    return TRUE;
}

struct WindowCount {
    DWORD processId;
    int count;
};

BOOL CALLBACK countTopLevel(HWND window, LPARAM argument) {
    auto* result = reinterpret_cast<WindowCount*>(argument);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == result->processId) {
        ++result->count;
        EnumChildWindows(window, countChild, reinterpret_cast<LPARAM>(&result->count));
    }
    return TRUE;
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const ResourceCounts& counts) {
    return stream << counts.kernelHandles << " kernel handles, " << counts.gdiObjects << " GDI objects, "
                  << counts.windows << " windows";
}

ResourceCounts countResources(DWORD processId) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId);
    if (process == nullptr) {
        throw Failure("the process is gone");
    }
    ResourceCounts counts;
    try {
        counts.gdiObjects = countGdiObjects(process);
    } catch (...) {
        CloseHandle(process);
        throw;
    }
    CloseHandle(process);
    counts.kernelHandles = countKernelHandles(processId);
    WindowCount windows{processId, 0};
    EnumWindows(countTopLevel, reinterpret_cast<LPARAM>(&windows));
    counts.windows = windows.count;
    return counts;
}

} // namespace torvane::driver
