#pragma once

#include "base/owned_handle.h"
#include "discovery/handle_lease.h"
#include "discovery/windows_drive_io.h"
#include "hex/hex_viewer.h"
#include "records/drive_record.h"

#include <cstdint>
#include <memory>
#include <string>

namespace torvane {

/// A drive as the hex viewer reads it: by a handle of its own, so that a sector waits behind no read test and no copy,
/// and with a record of its own, so that a read which nobody waits for any more may go on alone.
///
/// One thread at a time: who waits for a read leaves `viewer` alone until it has ended.
class ViewedDrive {
  public:
    explicit ViewedDrive(const DriveRecord& drive);
    ViewedDrive(const ViewedDrive&) = delete;
    ViewedDrive& operator=(const ViewedDrive&) = delete;

    [[nodiscard]] HexViewer& viewer() { return viewer_; }

    /// Opens the drive, the first time, and reads the current sector. On any thread.
    void read();

    /// How many unreadable sectors were read since it was last asked.
    [[nodiscard]] std::uint64_t takeBadReads();

    /// The same drive at the same sector, with a handle of its own again: for who has left this one's read.
    [[nodiscard]] std::shared_ptr<ViewedDrive> anew() const;

  private:
    void open();
    void openAgain();

    NativeHandle shared_; ///< the record's handle: for an image file, and where the drive cannot be opened again
    HandleLease lease_;   ///< a read that was left may outlive the record
    std::int32_t driveNumber_;
    bool isDisk_;
    UniqueHandle own_;
    DriveRecord record_;
    WindowsDriveIo io_;
    HexViewer viewer_;
};

} // namespace torvane
