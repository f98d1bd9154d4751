#include "copy/jobs/run_figures.h"

#include "base/format.h"
#include "copy/jobs/size_units.h"

#include <algorithm>
#include <cinttypes>

namespace torvane {

namespace {

/// Of a unit that moves while one looks at it.
constexpr std::uint64_t kLargestTold = 1ULL << 30;

std::string sizesInWords(std::uint64_t done, std::uint64_t total) {
    // In terabytes a tenth takes a quarter of an hour.
    const SizeUnit unit = sizeUnitOf(std::min(total, kLargestTold));
    const auto inUnits = [&](std::uint64_t bytes) {
        return unit.bytes == 1 ? formatText("%" PRIu64, bytes)
                               : formatText("%.1f", static_cast<double>(bytes) / static_cast<double>(unit.bytes));
    };
    return inUnits(done).append(" of ").append(inUnits(total)).append(" ").append(unit.name);
}

} // namespace

std::string rateInWords(std::uint64_t bytesPerSecond) {
    constexpr std::uint64_t kKilobyte = 1ULL << 10;
    constexpr std::uint64_t kMegabyte = 1ULL << 20;
    // A drive that fails may give a few blocks in an hour: that is not nothing.
    const bool slow = bytesPerSecond >= kKilobyte && bytesPerSecond < kMegabyte;
    return slow ? formatText("%" PRIu64 " KB/s", bytesPerSecond / kKilobyte)
                : formatText("%" PRIu64 " MB/s", bytesPerSecond / kMegabyte);
}

std::string durationInWords(std::int64_t seconds) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 60 * kMinute;
    return formatText("%" PRId64 ":%02" PRId64 ":%02" PRId64, seconds / kHour, seconds % kHour / kMinute,
                      seconds % kMinute);
}

std::string runInWords(const RunFigures& run, std::uint64_t bytesPerSecond, std::int64_t elapsedSeconds) {
    const std::string faults = faultsInWords(run.losses);
    return sizesInWords(run.done, run.total)
        .append(", ")
        .append(rateInWords(bytesPerSecond))
        .append(", ")
        .append(durationInWords(elapsedSeconds))
        .append(" elapsed")
        .append(faults.empty() ? "" : "; " + faults);
}

} // namespace torvane
