#include "base/whole_file.h"

#include "base/owned_handle.h"
#include "base/system_path.h"

#include <utility>

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

std::optional<std::string> readFileUpTo(std::string_view path, std::uint64_t mostBytes) {
    const UniqueFile file{CreateFileW(systemPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr)};
    const std::optional<std::uint64_t> size = file ? sizeOfFile(file.get()) : std::nullopt;
    if (!size || *size > mostBytes) {
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(*size), '\0');
    return readWholeFile(file.get(), *size, bytes.data()) ? std::optional(std::move(bytes)) : std::nullopt;
}

bool writeWholeFile(std::string_view fileName, std::string_view text) {
    constexpr std::size_t kMostAtOnce = MAXDWORD;
    const UniqueFile file{CreateFileW(systemPath(fileName).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)};
    DWORD written = 0;
    return file && text.size() <= kMostAtOnce &&
           WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != FALSE &&
           written == text.size();
}

bool isFile(std::string_view path) {
    const DWORD attributes = GetFileAttributesW(systemPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

} // namespace torvane
