#pragma once

#include <windows.h>

#include <ostream>

namespace torvane::driver {

/// What a process holds of the system's resources at one moment.
struct ResourceCounts {
    int kernelHandles = 0; ///< files, threads, processes, events ...
    int gdiObjects = 0;    ///< pens, brushes, fonts, bitmaps, device contexts ...
    int windows = 0;       ///< with all children, visible or not

    [[nodiscard]] bool operator==(const ResourceCounts& other) const = default;
};

std::ostream& operator<<(std::ostream& stream, const ResourceCounts& counts);

[[nodiscard]] ResourceCounts countResources(DWORD processId);

} // namespace torvane::driver
