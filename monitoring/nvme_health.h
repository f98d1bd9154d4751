#pragma once

namespace torvane {

struct DriveRecord;

/// Marks the record's NVMe fields unread (-1), then reads the drive's NVMe health log by the transports that fit its
/// bus code, until one succeeds:
///
///   2000 USB:    USB bridge pass-through
///   2001 direct: RAID driver pass-through, then storage query
///   2003 NVMe:   storage query
///
/// Returns 1 when a transport succeeded: `record.nvme` is filled and SmartType is NVMe; the two pass-through transports
/// also set model, serial number, bus text and bus code. Returns 0 otherwise, with nothing logged and all else
/// unchanged: the caller goes on with `SmartParseSsdCounters`. What the controller tells of itself is kept in
/// `record.printed`; after a storage query also where the health log fails afterwards.
int ReadNvmeHealth(DriveRecord& record);

} // namespace torvane
