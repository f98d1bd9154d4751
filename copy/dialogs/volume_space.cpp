#include "copy/dialogs/volume_space.h"

#include "base/long_path.h"
#include "base/system_path.h"
#include "base/wide_text.h"
#include "ui/waiting.h"

#include <windows.h>

#include <array>
#include <string>

namespace torvane {

namespace {

bool hasLetter(std::string_view folder) {
    return folder.size() >= 2 && folder[1] == ':';
}

/// "E:"
std::string letterOf(std::string_view folder) {
    return std::string(folder.substr(0, 2));
}

std::optional<std::int64_t> freeBytesOfLetter(const std::string& letter) {
    DWORD sectorsPerCluster = 0;
    DWORD bytesPerSector = 0;
    DWORD freeClusters = 0;
    DWORD totalClusters = 0;
    if (GetDiskFreeSpaceA(letter.c_str(), &sectorsPerCluster, &bytesPerSector, &freeClusters, &totalClusters) ==
        FALSE) {
        return std::nullopt;
    }
    // Unsigned, because nothing bounds what a file system claims.
    return static_cast<std::int64_t>(std::uint64_t{sectorsPerCluster} * bytesPerSector * freeClusters);
}

std::optional<std::int64_t> freeBytesOfFolder(std::string_view folder) {
    // A share's name has to end in a backslash.
    const std::wstring path = systemPath(folder) + (folder.ends_with('\\') ? L"" : L"\\");
    ULARGE_INTEGER available{};
    return !folder.empty() && GetDiskFreeSpaceExW(path.c_str(), &available, nullptr, nullptr) != FALSE
               ? std::optional(static_cast<std::int64_t>(available.QuadPart))
               : std::nullopt;
}

/// Of the volume that the folder lies on, be it mounted in a folder itself.
std::string fileSystemOf(std::string_view folder) {
    std::wstring root(kLongestPath, L'\0');
    if (folder.empty() || GetVolumePathNameW(systemPath(folder).c_str(), root.data(), kLongestPath) == FALSE) {
        return {};
    }
    std::array<wchar_t, MAX_PATH> name{};
    return GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, nullptr, name.data(),
                                 static_cast<DWORD>(name.size())) != FALSE
               ? ansiText(name.data())
               : std::string();
}

} // namespace

DestinationVolume volumeOfFolder(std::string_view folder) {
    if (!hasLetter(folder)) {
        return {.freeBytes = freeBytesOfFolder(folder), .fileSystem = fileSystemOf(folder)};
    }
    const std::string letter = letterOf(folder);
    const std::optional<std::int64_t> freeBytes = freeBytesOfLetter(letter);
    if (!freeBytes && GetDriveTypeA((letter + "\\").c_str()) == DRIVE_NO_ROOT_DIR) {
        return {.isThere = false, .freeBytes = std::nullopt, .fileSystem = {}};
    }
    // A letter that does not tell its room, an empty reader's, has none.
    return {.freeBytes = freeBytes.value_or(0), .fileSystem = fileSystemOf(folder)};
}

std::optional<DestinationVolume> awaitVolumeOfFolder(std::string_view folder) {
    return waiting::resultOf("the folder", [own = std::string(folder)] { return volumeOfFolder(own); });
}

} // namespace torvane
