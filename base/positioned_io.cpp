#include "base/positioned_io.h"

#include <windows.h>

namespace torvane {

namespace {

// A synchronous handle takes the place from here and still returns when the transfer is done (ReadFile, WriteFile).
OVERLAPPED placeAt(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

} // namespace

bool canReach(void* handle, std::uint64_t offset) {
    auto high = static_cast<LONG>(offset >> 32);
    const DWORD low = SetFilePointer(handle, static_cast<LONG>(offset & 0xFFFFFFFF), &high, FILE_BEGIN);
    // The low part alone decides, whatever GetLastError says: no block begins at such a position.
    return low != INVALID_SET_FILE_POINTER;
}

bool readWholeAt(void* handle, std::uint64_t offset, std::span<std::byte> bytes) {
    const auto length = static_cast<DWORD>(bytes.size());
    OVERLAPPED place = placeAt(offset);
    DWORD count = 0;
    return ReadFile(handle, bytes.data(), length, &count, &place) != FALSE && count == length;
}

bool writeWholeAt(void* handle, std::uint64_t offset, std::span<const std::byte> bytes) {
    const auto length = static_cast<DWORD>(bytes.size());
    OVERLAPPED place = placeAt(offset);
    DWORD count = 0;
    return WriteFile(handle, bytes.data(), length, &count, &place) != FALSE && count == length;
}

} // namespace torvane
