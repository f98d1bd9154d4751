#include "base/whole_file.h"

namespace torvane {

std::optional<std::uint64_t> sizeOfFile(HANDLE file) {
    if (GetFileType(file) != FILE_TYPE_DISK) {
        return std::nullopt;
    }
    DWORD high = 0;
    const DWORD low = GetFileSize(file, &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != NO_ERROR) {
        return std::nullopt;
    }
    return (std::uint64_t{high} << 32) | low;
}

LoadedText allocateZeroed(std::uint64_t size) {
    return LoadedText{static_cast<char*>(GlobalAlloc(GMEM_ZEROINIT, size))};
}

bool readWholeFile(HANDLE file, std::uint64_t size, char* block) {
    if (size > MAXDWORD) {
        return false;
    }
    DWORD count = 0;
    return ReadFile(file, block, static_cast<DWORD>(size), &count, nullptr) != 0 && count == size;
}

} // namespace torvane
