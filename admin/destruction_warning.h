#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

struct DriveRecord;

// What the warning shows before a drive is overwritten.

/// One row of its list.
struct WarningRow {
    std::string type;
    std::string name;
    std::string relation;

    bool operator==(const WarningRow&) const = default;
};

/// How a volume names itself.
struct VolumeIdentity {
    std::string label;
    std::uint32_t serialNumber = 0;
};

/// Asks the volume with that root, "K:\"; none when it does not answer.
using VolumeIdentityReader = std::function<std::optional<VolumeIdentity>(const std::wstring& root)>;

/// Asks the volume with that root for its length in bytes; none when it does not tell.
using VolumeLengthReader = std::function<std::optional<std::uint64_t>(const std::wstring& root)>;

/// The drive, then each of its volumes by its root, one without a letter by the folder where it is mounted, or as "a
/// volume without letter, 100 MB".
[[nodiscard]] std::vector<WarningRow> warningRows(const DriveRecord& destination,
                                                  const std::vector<std::wstring>& volumeRoots,
                                                  const VolumeIdentityReader& identify,
                                                  const VolumeLengthReader& lengthOf);

/// What stands below the list: the drive's number and its size, to the byte; the note, unless it is empty; both serial
/// numbers, where its report tells another one than the drive itself; and what is printed on it, where its controller
/// tells that.
[[nodiscard]] std::string warningDetails(const DriveRecord& destination, std::string_view note);

} // namespace torvane
