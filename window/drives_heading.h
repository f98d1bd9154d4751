#pragma once

#include <optional>
#include <string>

namespace torvane {

struct DriveRecord;

/// What a scan has found.
struct DrivesFound {
    int shown = 0;
    int notShown = 0; ///< on a bus that is not supported; the log names each
};

/// What the drive list's heading goes by.
struct DrivesKnown {
    std::optional<DrivesFound> found; ///< none before the first scan and during one
    bool isScanning = false;
    bool haveChanged = false;       ///< a drive has come or gone since
    bool reportNamesNobody = false; ///< one was made with the address that ships
};

/// The drive list's heading, with its access key.
[[nodiscard]] std::string drivesHeading(const DrivesKnown& known);

/// Whose dials and lamp are shown, so that it is seen when the row is not. Without letters, which may change meanwhile.
[[nodiscard]] std::string activeDriveText(const DriveRecord& drive);

/// What an empty list says; empty while it is being filled.
[[nodiscard]] std::string emptyListText(const DrivesKnown& known);

} // namespace torvane
