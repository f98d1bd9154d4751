#pragma once

#include "records/volume_record.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
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

/// Asks the volume with that letter; none when it does not answer.
using VolumeIdentityReader = std::function<std::optional<VolumeIdentity>(char letter)>;

/// The drive, then each of its volumes.
[[nodiscard]] std::vector<WarningRow> warningRows(const DriveRecord& destination, const VolumeTable& volumes,
                                                  const VolumeIdentityReader& identify);

} // namespace torvane
