#pragma once

#include <string>

namespace torvane {

struct DriveRecord;

/// Why a copy fails, or may fail, by the ATA security of its two drives (ATA/ATAPI Command Set, "Security feature
/// set"), in one line: the source's is told first. Either may be null. Empty when there is nothing to tell.
[[nodiscard]] std::string securityWarning(const DriveRecord* source, const DriveRecord* destination);

} // namespace torvane
