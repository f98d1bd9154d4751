#pragma once

#include "records/drive_record.h"

namespace torvane {

/// Keeps a drive record's handle open for a scope, also when the record goes meanwhile: for a thread that asks the
/// drive and that nobody waits for any more. Any thread may make and end one, while it knows the handle to be open;
/// null is no handle.
class HandleLease {
  public:
    explicit HandleLease(NativeHandle handle);
    ~HandleLease();
    HandleLease(const HandleLease&) = delete;
    HandleLease& operator=(const HandleLease&) = delete;

  private:
    NativeHandle handle_;
};

/// Calls `close` with the handle: now, or when its last lease has ended, on that thread.
void closeWhenFree(NativeHandle handle, void (*close)(NativeHandle));

/// A copy of a record, to ask its drive by the record's own handle on another thread.
struct LeasedDrive {
    explicit LeasedDrive(const DriveRecord& drive) : record(drive), lease(drive.handle) {}

    DriveRecord record;
    HandleLease lease;
};

} // namespace torvane
