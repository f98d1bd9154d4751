#include "base/replace_file.h"

#include "base/owned_handle.h"
#include "base/system_path.h"

#include <windows.h>

#include <string>

namespace torvane {

namespace {

// Beside the file itself, because a file can be renamed over another one only within a volume.
std::wstring newFileName(const char* fileName) {
    return systemPath(std::string(fileName) + ".new");
}

FileSaving writeNewFile(const std::wstring& name, std::span<const std::byte> bytes) {
    const UniqueFile file{
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)};
    if (!file) {
        return FileSaving::kNotMade;
    }
    DWORD written = 0;
    const bool whole =
        WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
        written == bytes.size() && FlushFileBuffers(file.get()) != FALSE;
    return whole ? FileSaving::kDone : FileSaving::kNotWritten;
}

bool isReadOnly(const std::wstring& name) {
    const DWORD attributes = GetFileAttributesW(name.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

/// Attributes that a user may have given the old file.
void takeAttributes(const std::wstring& newName, const std::wstring& oldName) {
    constexpr DWORD kTaken = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
    const DWORD attributes = GetFileAttributesW(oldName.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kTaken) != 0) {
        SetFileAttributesW(newName.c_str(), attributes & kTaken);
    }
}

FileSaving saveWhole(const char* fileName, std::span<const std::byte> bytes, DWORD moving) {
    const std::wstring name = systemPath(fileName);
    // The system refuses to rename a file over it, too, but not every file system for every user.
    if (isReadOnly(name)) {
        return FileSaving::kNotPlaced;
    }
    const std::wstring newName = newFileName(fileName);
    // What a crash has left may have attributes that keep it from being created anew.
    DeleteFileW(newName.c_str());
    FileSaving saved = writeNewFile(newName, bytes);
    if (saved == FileSaving::kDone) {
        takeAttributes(newName, name);
        saved = MoveFileExW(newName.c_str(), name.c_str(), moving | MOVEFILE_WRITE_THROUGH) != FALSE
                    ? FileSaving::kDone
                    : FileSaving::kNotPlaced;
    }
    if (saved != FileSaving::kDone) {
        DeleteFileW(newName.c_str());
    }
    return saved;
}

} // namespace

FileSaving replaceFile(const char* fileName, std::span<const std::byte> bytes) {
    return saveWhole(fileName, bytes, MOVEFILE_REPLACE_EXISTING);
}

FileSaving makeWholeFile(const char* fileName, std::span<const std::byte> bytes) {
    return saveWhole(fileName, bytes, 0);
}

bool flushFile(const char* fileName) {
    const UniqueFile file{CreateFileW(systemPath(fileName).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    return file && FlushFileBuffers(file.get()) != FALSE;
}

} // namespace torvane
