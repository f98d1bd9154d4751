#pragma once

#include <string_view>

namespace torvane {

/// What the attribute of that name in the tool's report tells, in a few plain words. Empty where its maker has not made
/// it known.
struct AttributeMeaning {
    std::string_view words;
    bool countsFaults = false; ///< a raw value above zero tells of damage to the medium or of lost data
};

[[nodiscard]] AttributeMeaning attributeMeaning(std::string_view name);

/// The same of a line of the NVMe SMART / Health Information log, as the tool names it ("Available Spare"; NVM Express
/// Base Specification). Empty for a name that the standard does not have.
[[nodiscard]] std::string_view nvmeMeaning(std::string_view name);

/// The same of a line of a SCSI drive's report.
[[nodiscard]] std::string_view scsiMeaning(std::string_view name);

/// The same of a counter of the ATA device statistics (ACS-4, General Purpose Logging log 04h).
[[nodiscard]] std::string_view statisticMeaning(std::string_view name);

} // namespace torvane
