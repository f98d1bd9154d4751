#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace torvane::bench {

/// Which of the matching requests fail: the first `after` pass, the next `times` fail.
struct Occurrence {
    std::uint32_t after = 0;
    std::uint32_t times = std::numeric_limits<std::uint32_t>::max();
};

/// A request that fails: opening, or a flush.
struct FailingRequest {
    std::uint32_t error = 0;
    Occurrence occurrence;
};

struct RequestFault {
    std::string request; ///< as the log names it
    std::uint32_t error = 0;
    Occurrence occurrence;
};

/// A fault of transfers (or seeks) that touch a range of sectors.
struct RangeFault {
    std::uint64_t firstSector = 0;
    std::uint64_t sectors = 1;
    std::uint32_t amount = 0; ///< an error number, a byte count or milliseconds, by the list that holds it
    Occurrence occurrence;
};

/// Transfers after the first `afterRequests` get no answer until the system gives up waiting.
struct SilenceFault {
    std::uint32_t afterRequests = 0;
    std::uint32_t milliseconds = 30000; ///< about as long as Windows waits for a disk
    std::uint32_t error = 0;
};

/// What "clean" does to a disk.
enum class CleanFault {
    kNone,
    kRefused,   ///< it is refused, as for a disk of which a volume is in use
    kPretended, ///< it reports success and leaves the disk as it is
};

struct DriveFaults {
    std::optional<FailingRequest> open;
    std::optional<FailingRequest> flush;
    std::vector<RequestFault> requests;
    std::vector<RangeFault> reads;         ///< amount: error
    std::vector<RangeFault> shortReads;    ///< amount: bytes
    std::vector<RangeFault> writes;        ///< amount: error
    std::vector<RangeFault> corruptWrites; ///< amount: none
    std::vector<RangeFault> seeks;         ///< amount: error
    std::vector<RangeFault> slow;          ///< amount: milliseconds
    std::optional<SilenceFault> stopsAnswering;
    std::optional<std::uint32_t> vanishAfterRequests;
    bool volatileCache = false; ///< what was written since the last flush is lost when the drive goes
    CleanFault clean = CleanFault::kNone;
    std::optional<std::uint32_t> rescanAfterWrites; ///< the system reads the partition table after so many writes
};

/// Requests that a fault may name; one written "ioctl:0x..." always is.
[[nodiscard]] bool isKnownRequestName(const std::string& name);

} // namespace torvane::bench
