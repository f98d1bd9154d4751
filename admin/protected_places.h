#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace torvane {

class VolumeSystem;

/// The folders whose drives are never changed; an empty one protects nothing.
struct ProtectedFolders {
    std::wstring windows;
    std::wstring program; ///< the program's own file will do as well
    std::wstring current;
};

/// Why something is not done, as its box says it.
struct Refusal {
    std::string caption;
    std::string text;

    bool operator==(const Refusal&) const = default;
};

/// Why the disk N of "\\.\PhysicalDriveN" is never changed; none when it may be. Volume C: protects its disks whether
/// or not Windows lies there. A volume that does not exist, or lies on no disk, protects nothing. While Windows is on a
/// volume that does not tell its place, every disk is refused.
[[nodiscard]] std::optional<Refusal> protectionOf(std::int32_t diskNumber, const ProtectedFolders& folders,
                                                  VolumeSystem& system);

} // namespace torvane
