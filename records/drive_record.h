#pragma once

#include "base/fixed_text.h"
#include "base/shared_number.h"
#include "base/shared_value.h"
#include "records/bitlocker_entry.h"
#include "records/counters.h"
#include "records/device_identity.h"
#include "records/read_test_result.h"
#include "records/smart_type.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace torvane {

/// A Win32 handle, opaque here so that code which only computes needs no Windows header.
using NativeHandle = void*;

/// How a drive's monitoring data is reached; also the index (code - 2000) of the text in the drive list.
enum BusCode : std::int32_t {
    kBusCodeUsb = 2000,    ///< USB bridge
    kBusCodeDirect = 2001, ///< ATA, SATA, SCSI, RAID
    kBusCodeFile = 2002,   ///< image file
    kBusCodeNvme = 2003,
    kBusCodeOwnText = 2004, ///< show the record's own `busText`
};

enum RecordKind : std::int32_t {
    kRecordKindPhysicalDrive = 1000,
    kRecordKindImageFile = 1002,
};

inline constexpr std::string_view kNotAvailable = "Not Available";

/// Values of the NVMe SMART / Health Information log (NVMe Base Specification, log page 02h). -1: not read.
struct NvmeHealth {
    std::int32_t criticalWarning = 0;         ///< byte 0, a bit set
    std::int32_t availableSpare = 0;          ///< byte 3, percent
    std::int32_t availableSpareThreshold = 0; ///< byte 4, percent
    std::int32_t percentageUsed = 0;          ///< byte 5, percent, may exceed 100
    std::int64_t dataUnitsRead = 0;           ///< bytes 32-39, units of 1000 x 512 bytes
    std::int64_t dataUnitsWritten = 0;        ///< bytes 48-55, units of 1000 x 512 bytes
    std::int64_t powerOnHours = 0;            ///< bytes 128-135
    std::int64_t errorLogEntries = 0;         ///< bytes 160-167, media and data integrity errors
    std::uint64_t gigabytesWritten = 0;       ///< derived, units of 2^30 bytes
    double enduranceFraction = 0.0;           ///< derived, 1.0 = rated write endurance used up
};

/// What the read tests' workers leave of the times of their reads. Milliseconds.
struct ReadTestTimes {
    SharedNumber<std::int64_t> lastReadStart = 0; ///< clock of 32 bits, right before the last read
    SharedNumber<std::int64_t> lastReadEnd = 0;
    SharedNumber<std::int64_t> lastReadMs = 0;
    SharedNumber<std::int32_t> readDurationCount = 0; ///< timed probes of the last Short test
    SharedNumber<std::int64_t> readDurationTotal = 0;
    SharedNumber<std::int64_t> readDurationAverage = 0;
    SharedNumber<std::int64_t> readDurationMin = 0;
    SharedNumber<std::int64_t> readDurationMax = 0;
};

/// One storage device found by the scan, or an image file used in a drive's place. Starts zero-filled, but for
/// its counters, which are not reported, and the results of its read tests, which were not performed.
///
/// The record owns its open device handle: records are held by `DriveRecordPtr`, whose deleter closes it.
struct DriveRecord {
    FixedText<64> vendor;
    FixedText<64> product;
    FixedText<256> model; ///< the model shown in lists and reports
    FixedText<32> busText;
    FixedText<128> serialNumber;
    FixedText<320> devicePath; ///< the path that was opened
    FixedText<32> firmware;
    FixedText<2048> imageFilePath; ///< image-file records only
    FixedText<256> driveName;

    DeviceIdentity device; ///< what the drive itself told, whatever model and serial number its report gives

    PrintedIdentity printed; ///< of an NVMe controller, by whatever road it was asked; lists and reports leave it out

    /// As last taken for the drive's own, by the scan or by a job that changed it. None: the drive did not tell.
    SharedValue<std::optional<PartitionTable>> partitionTable;

    /// The report "PHYS%d.txt" as loaded, NUL-terminated; kept for later passes. Empty when none was loaded.
    std::string smartText;
    std::int32_t smartLoaded = 0;     ///< 1: a report was loaded and it did not tell of a SMART read failure
    std::int32_t smartErrorFlag = 0;  ///< 1: an error counter was found non-zero; 2: none was
    std::int32_t securityEnabled = 0; ///< 1: ATA security is enabled

    std::int32_t systemDrive = 0; ///< 1: volume C: lies on this drive
    std::int32_t readOnly = 0;    ///< diskpart's attribute; 1: read-only or not known

    // Written by a test's thread, read by the report.
    SharedNumber<ReadTestResult> shortTestResult = ReadTestResult::kNotPerformed;
    SharedNumber<ReadTestResult> criticalTestResult = ReadTestResult::kNotPerformed;
    SharedNumber<ReadTestResult> nistTestResult = ReadTestResult::kNotPerformed;
    ReadTestsAtWork readTestsAtWork;
    ReadTestTimes readTimes;

    std::int32_t busType = 0; ///< STORAGE_BUS_TYPE as the system reported it
    std::int32_t busMajorVersion = 0;
    std::int32_t busMinorVersion = 0;
    std::int32_t bytesPerSector = 0;
    std::int32_t driveNumber = 0; ///< N of "\\.\PhysicalDriveN"; 0 for an image file
    NvmeHealth nvme;
    std::vector<std::uint8_t> nvmeLog; ///< the health log that `nvme` was read from, whole; empty: not read

    Counters disk; ///< what the SMART report tells of any drive
    Counters ssd;  ///< what the pass for solid-state devices reads in it

    /// Distinct LBAs that the drive's error log names as uncorrectable, in the log's order.
    std::int32_t uncLbaCount = 0;
    std::array<std::int64_t, 50> uncLbas{};

    std::int32_t recordKind = 0;          ///< a RecordKind code
    std::int32_t smartType = 0;           ///< a SmartType code
    std::int32_t busCode = 0;             ///< a BusCode
    std::int32_t identifyDriveNumber = 0; ///< selects the drive head in the ATA identify request
    std::int32_t listPosition = 0;        ///< row in the drive list

    std::int64_t sizeSectors = 0; ///< units of 512 bytes, whatever the sector size

    /// Unreadable blocks since the last copy job from this drive began: the job's, and sectors that the hex viewer
    /// could not read. Both may count at once, while a job that was told to stop deals with its last read.
    SharedNumber<std::uint64_t> badReadCount = 0;

    std::uint64_t writeErrorCount = 0; ///< failed block writes
    std::int64_t sizeBytes = 0;
    double sizeGigabytes = 0.0; ///< units of 2^30 bytes

    NativeHandle handle = nullptr; ///< null when nothing is open

    std::int32_t checkedVolumeCount = 0; ///< volumes on it that the passes which keep recovery passwords came to

    /// What the last BitLocker check found, in the order in which the volumes were checked. The check's result for an
    /// eleventh volume is not kept.
    std::int32_t bitLockerEntryCount = 0; ///< 0 to 10
    BitLockerEntries bitLockerEntries{};
    BitLockerNotes bitLockerNotes{}; ///< of the same volumes
};

/// Closes the device handle of a record that owns one, and frees the record.
struct DriveRecordDeleter {
    void (*closeHandle)(NativeHandle) = nullptr; ///< set by who makes records of open devices (discovery/)

    void operator()(DriveRecord* record) const {
        if (record != nullptr && record->handle != nullptr && closeHandle != nullptr) {
            closeHandle(record->handle);
        }
        delete record;
    }
};
using DriveRecordPtr = std::unique_ptr<DriveRecord, DriveRecordDeleter>;

} // namespace torvane
