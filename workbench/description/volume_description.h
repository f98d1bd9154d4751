#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace torvane::bench {

enum class VolumeKind { kFixed, kRemovable, kOptical, kNetwork };

/// When the system mounts a volume.
enum class VolumeAppearance {
    kAtOnce,    ///< it is there as the bench begins
    kWithTable, ///< once the system has read a partition table that holds it, and automatic mounting is enabled
};

struct VolumeExtent {
    std::uint32_t disk = 0;
    std::uint64_t offset = 0; ///< bytes
    std::uint64_t length = 0; ///< bytes
};

enum class BitLockerState { kOff, kUnlocked, kLocked };

struct KeyProtector {
    std::string type; ///< the cmdlet's word: "RecoveryPassword", "Tpm", ...
    std::string id;   ///< "{...}"
    std::string password;
};

struct BitLockerDescription {
    BitLockerState state = BitLockerState::kOff;
    std::vector<KeyProtector> protectors;
    std::optional<std::string> output; ///< printed instead of the protectors
};

struct VolumeDescription {
    std::string fileName; ///< the file that describes it, for messages
    std::string field;    ///< its place there, for messages
    char letter = 0;      ///< 'A' to 'Z'
    VolumeKind kind = VolumeKind::kFixed;
    VolumeAppearance appears = VolumeAppearance::kAtOnce;
    std::vector<VolumeExtent> extents;
    std::string label;
    std::string fileSystem = "NTFS";
    std::uint32_t serial = 0;
    std::optional<std::uint64_t> totalSpace;  ///< bytes
    std::optional<std::uint64_t> freeSpace;   ///< bytes
    std::optional<std::uint64_t> largestFile; ///< bytes; none: the file system has no such limit
    BitLockerDescription bitLocker;
    std::optional<std::uint32_t> openError;
    std::optional<std::uint32_t> extentsError;

    /// Sum of the extents' lengths, bytes.
    [[nodiscard]] std::uint64_t length() const {
        std::uint64_t sum = 0;
        for (const VolumeExtent& extent : extents) {
            sum += extent.length;
        }
        return sum;
    }
};

/// A folder that another computer shares.
struct ShareDescription {
    std::string name; ///< "\\server\share"
    std::string fileSystem = "NTFS";
    std::uint64_t freeSpace = 0; ///< bytes
};

} // namespace torvane::bench
