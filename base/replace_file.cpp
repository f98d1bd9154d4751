#include "base/replace_file.h"

#include "base/owned_handle.h"
#include "base/system_path.h"

#include <windows.h>

#include <string>
#include <utility>

namespace torvane {

namespace {

/// The file that is written first. It lies beside the other, because a file can be renamed over another one only within
/// a volume.
struct NewFile {
    std::wstring name;
    UniqueFile file;
};

UniqueFile create(const std::wstring& name, DWORD disposition) {
    return UniqueFile{
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr)};
}

/// In the place of what a crash has left.
NewFile makeOwnNewFile(const std::string& fileName) {
    std::wstring name = systemPath(fileName + ".new");
    DeleteFileW(name.c_str()); // it may have attributes that keep it from being created anew
    UniqueFile file = create(name, CREATE_ALWAYS);
    return {.name = std::move(name), .file = std::move(file)};
}

/// Under a name that nobody has.
NewFile makeForeignNewFile(const std::string& fileName) {
    constexpr int kMostTries = 100;
    NewFile made;
    for (int number = 1; number <= kMostTries && !made.file; ++number) {
        made.name = systemPath(fileName + "." + std::to_string(number) + ".new");
        made.file = create(made.name, CREATE_NEW);
        if (!made.file && GetLastError() != ERROR_FILE_EXISTS) {
            break;
        }
    }
    return made;
}

FileSaving fill(UniqueFile file, std::span<const std::byte> bytes) {
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

/// A scanner or an indexer opens a new file for a moment, and the system then refuses to rename it or the old one.
bool isHeldForAMoment(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
}

bool placeFile(const std::wstring& newName, const std::wstring& name, DWORD moving) {
    constexpr DWORD kLastPause = 400; // milliseconds; 750 in all
    for (DWORD pause = 50;; pause *= 2) {
        if (MoveFileExW(newName.c_str(), name.c_str(), moving | MOVEFILE_WRITE_THROUGH) != FALSE) {
            return true;
        }
        if (!isHeldForAMoment(GetLastError()) || pause > kLastPause) {
            return false;
        }
        Sleep(pause);
    }
}

FileSaving saveWhole(const char* fileName, std::span<const std::byte> bytes, DWORD moving,
                     NewFile (*makeNewFile)(const std::string&) = makeOwnNewFile) {
    const std::wstring name = systemPath(fileName);
    // The system refuses to rename a file over it, too, but not every file system for every user.
    if (isReadOnly(name)) {
        return FileSaving::kNotPlaced;
    }
    NewFile made = makeNewFile(fileName);
    FileSaving saved = fill(std::move(made.file), bytes);
    if (saved == FileSaving::kDone) {
        takeAttributes(made.name, name);
        saved = placeFile(made.name, name, moving) ? FileSaving::kDone : FileSaving::kNotPlaced;
    }
    if (saved == FileSaving::kNotWritten || saved == FileSaving::kNotPlaced) {
        DeleteFileW(made.name.c_str());
    }
    return saved;
}

} // namespace

FileSaving replaceFile(const char* fileName, std::span<const std::byte> bytes) {
    return saveWhole(fileName, bytes, MOVEFILE_REPLACE_EXISTING);
}

FileSaving replaceForeignFile(const char* fileName, std::span<const std::byte> bytes) {
    return saveWhole(fileName, bytes, MOVEFILE_REPLACE_EXISTING, makeForeignNewFile);
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
