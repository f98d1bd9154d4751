#pragma once

#include "records/drive_record.h"

#include <optional>

namespace torvane {

/// A disk that was found again.
struct FoundDrive {
    NativeHandle handle = nullptr; ///< open for reading and writing; whoever has it closes it
    int number = 0;                ///< N of "\\.\PhysicalDriveN"
};

/// Looks for the disk that was probed as `drive` among the first `drives` numbers but `except`
/// (`isTheProbedDiskAgain`). None while it is not there, and when several could be it.
[[nodiscard]] std::optional<FoundDrive> findDriveAgain(const DriveRecord& drive, int drives,
                                                       std::optional<int> except = std::nullopt);

} // namespace torvane
