#pragma once

#include "workbench/description/drive_description.h"
#include "workbench/devices/ata_device.h"
#include "workbench/devices/scsi_device.h"
#include "workbench/session/drive_content.h"
#include "workbench/session/volatile_cache.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace torvane::bench {

/// A fault with the requests that it has met in this process.
template <typename Fault>
struct CountedFault {
    const Fault& fault;
    std::atomic<std::uint32_t> met{0};

    explicit CountedFault(const Fault& described) : fault(described) {}

    /// Counts one matching request; true when it is one of those that fail.
    bool strikes() {
        const std::uint32_t before = met.fetch_add(1);
        return before >= fault.occurrence.after && before - fault.occurrence.after < fault.occurrence.times;
    }
};

/// A described drive in use by this process: its devices, its content and the counters of its faults.
class BenchDrive {
  public:
    BenchDrive(const std::filesystem::path& benchFolder, const DriveDescription& drive);

    [[nodiscard]] const DriveDescription& description() const { return drive_; }
    [[nodiscard]] const DriveContent& content() const { return content_; }
    [[nodiscard]] AtaDevice& ata() { return ata_; }
    [[nodiscard]] ScsiDevice& scsi() { return scsi_; }

    // Each of these counts a request. Nothing: it passes.
    [[nodiscard]] std::optional<DWORD> openFault();
    [[nodiscard]] std::optional<DWORD> flushFault();
    [[nodiscard]] std::optional<DWORD> requestFault(std::string_view name);
    [[nodiscard]] std::optional<DWORD> readFault(std::uint64_t offset, std::uint64_t length);
    [[nodiscard]] std::optional<DWORD> writeFault(std::uint64_t offset, std::uint64_t length);
    [[nodiscard]] std::optional<DWORD> seekFault(std::uint64_t offset);
    /// The bytes that a read delivers at most.
    [[nodiscard]] std::optional<std::uint32_t> shortRead(std::uint64_t offset, std::uint64_t length);
    [[nodiscard]] std::uint32_t slownessMilliseconds(std::uint64_t offset, std::uint64_t length) const;

    /// Stores what no fault stands against, by a handle that the content gave; where the cache may be lost, only while
    /// the drive is plugged in. Returns a Win32 error, 0 for success.
    [[nodiscard]] DWORD store(HANDLE handle, std::uint64_t offset, std::span<const std::uint8_t> data,
                              const std::function<bool()>& isPluggedIn);
    void flush() const;
    /// The drive goes, with what was not flushed.
    void loseUnflushed() const;

    /// What a transfer that `countTransfer` has counted meets when the drive does not answer any more.
    [[nodiscard]] const SilenceFault* silence() const;

    /// Counts a transfer; false when the drive is gone by now.
    [[nodiscard]] bool countTransfer();
    /// Counts a write that was stored; true when the system looks at the drive's partition table after it.
    [[nodiscard]] bool countWrite();
    /// The fault has made the drive vanish for this process.
    [[nodiscard]] bool hasVanished() const;

  private:
    using RangeFaults = std::deque<CountedFault<RangeFault>>;
    using FailingRequests = std::deque<CountedFault<FailingRequest>>;

    [[nodiscard]] bool touches(const RangeFault& fault, std::uint64_t offset, std::uint64_t length) const;
    [[nodiscard]] static std::optional<DWORD> firstStrike(FailingRequests& faults);
    [[nodiscard]] std::optional<std::uint32_t> firstStrike(RangeFaults& faults, std::uint64_t offset,
                                                           std::uint64_t length) const;

    [[nodiscard]] std::vector<std::uint8_t> storedInstead(std::uint64_t offset, std::span<const std::uint8_t> data);

    const DriveDescription& drive_;
    DriveContent content_;
    VolatileCache cache_;
    AtaDevice ata_;
    ScsiDevice scsi_;
    FailingRequests opens_;
    FailingRequests flushes_;
    std::deque<CountedFault<RequestFault>> requests_;
    RangeFaults reads_;
    RangeFaults shortReads_;
    RangeFaults writes_;
    RangeFaults corruptWrites_;
    RangeFaults seeks_;
    std::atomic<std::uint64_t> transfers_{0};
    std::atomic<std::uint64_t> writesStored_{0};
};

} // namespace torvane::bench
