#include "copy/dialogs/volume_space.h"

#include <windows.h>

#include <string>

namespace torvane {

std::int64_t freeSpaceOfFolder(std::string_view folder) {
    const std::string root(folder.substr(0, 2));
    DWORD sectorsPerCluster = 0;
    DWORD bytesPerSector = 0;
    DWORD freeClusters = 0;
    DWORD totalClusters = 0;
    // The result is not looked at: a folder on a share has no such root, and then nothing is free.
    GetDiskFreeSpaceA(root.c_str(), &sectorsPerCluster, &bytesPerSector, &freeClusters, &totalClusters);
    // Unsigned, because nothing bounds what a file system claims.
    return static_cast<std::int64_t>(std::uint64_t{sectorsPerCluster} * bytesPerSector * freeClusters);
}

} // namespace torvane
