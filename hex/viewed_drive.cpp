#include "hex/viewed_drive.h"

#include "discovery/disk_identity.h"
#include "discovery/physical_drive_probe.h"
#include "state/event_log.h"

#include <utility>

namespace torvane {

namespace {

void logError(const std::string& text) {
    LogEvent("ERROR", "%s", text.c_str());
}

/// Puts into `own` what a read needs to know of a drive, and what tells it from others. Returns it.
DriveRecord& describe(DriveRecord& own, const DriveRecord& drive) {
    own.sizeBytes = drive.sizeBytes;
    own.bytesPerSector = drive.bytesPerSector;
    own.recordKind = drive.recordKind;
    own.driveNumber = drive.driveNumber;
    own.device = drive.device;
    own.partitionTable = drive.partitionTable;
    return own;
}

} // namespace

ViewedDrive::ViewedDrive(const DriveRecord& drive)
    : shared_(drive.handle), lease_(drive.handle), driveNumber_(drive.driveNumber),
      isDisk_(drive.recordKind != kRecordKindImageFile), viewer_(describe(record_, drive), io_, logError) {}

void ViewedDrive::open() {
    if (record_.handle != nullptr) {
        return;
    }
    if (isDisk_) {
        openAgain();
    }
    record_.handle = own_ ? own_.get() : shared_;
}

// Another disk may have the number by now: then the record's handle tells that the drive has gone.
void ViewedDrive::openAgain() {
    own_.reset(openDriveByNumber(driveNumber_));
    record_.handle = own_.get();
    if (own_ && !isStillTheProbedSource(record_)) {
        own_.reset();
    }
}

void ViewedDrive::read() {
    open();
    viewer_.read();
}

std::uint64_t ViewedDrive::takeBadReads() {
    const std::uint64_t count = record_.badReadCount;
    record_.badReadCount = 0;
    return count;
}

std::shared_ptr<ViewedDrive> ViewedDrive::anew() const {
    // Of our own record, whose handle is not for others.
    DriveRecord described;
    describe(described, record_).handle = shared_;
    auto fresh = std::make_shared<ViewedDrive>(described);
    fresh->viewer().toSector(viewer_.sector());
    return fresh;
}

} // namespace torvane
