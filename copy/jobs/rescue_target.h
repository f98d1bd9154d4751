#pragma once

#include "copy/rescue/rescue_run.h"
#include "discovery/drive_io.h"

namespace torvane {

/// A drive that another one is rescued to; each write and flush that fails is counted on its record.
class DriveRescueTarget : public RescueTarget {
  public:
    DriveRescueTarget(DriveIo& io, DriveRecord& drive) : io_(io), drive_(drive) {}

    bool write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return counted(reachAndWrite(io_, drive_, offset, bytes));
    }
    bool flush() override { return counted(io_.flush(drive_)); }

    /// The system has refused a write: what it does once a volume is mounted there.
    [[nodiscard]] bool wasShutOut() const { return shutOut_; }

  private:
    bool counted(TransferOutcome outcome) {
        drive_.writeErrorCount += hasFailed(outcome) ? 1 : 0;
        shutOut_ = shutOut_ || outcome == TransferOutcome::kRefused;
        return outcome == TransferOutcome::kWhole;
    }

    DriveIo& io_;
    DriveRecord& drive_;
    bool shutOut_ = false;
};

} // namespace torvane
