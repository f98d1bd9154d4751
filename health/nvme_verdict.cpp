#include "health/nvme_verdict.h"

#include "health/grading.h"
#include "records/counters.h"
#include "records/drive_record.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr std::uint32_t kSound = 0;
constexpr std::uint32_t kEarlyWear = 1;
constexpr std::uint32_t kWearingOut = 2;
constexpr std::uint32_t kFailing = 3;

/// Of the critical warning, byte 0: a bit that this program does not know is a warning all the same.
std::uint32_t warningLevel(std::int32_t warning) {
    constexpr std::uint32_t kSpareReliabilityReadOnly = 0b0'1101;
    constexpr std::uint32_t kTemperature = 0b0'0010;
    if (warning == kNotReported) {
        return kSound;
    }
    const auto bits = static_cast<std::uint32_t>(warning) & 0xFFU;
    if ((bits & kSpareReliabilityReadOnly) != 0) {
        return kFailing;
    }
    if ((bits & ~kTemperature) != 0) {
        return kWearingOut;
    }
    return bits != 0 ? kEarlyWear : kSound;
}

std::uint32_t spareLevel(std::int32_t spare, std::int32_t threshold) {
    if (spare == kNotReported || threshold == kNotReported || spare > threshold) {
        return kSound;
    }
    return spare < threshold ? kFailing : kWearingOut;
}

std::uint32_t lifeLevel(std::int32_t percentageUsed) {
    if (percentageUsed > 100) {
        return kWearingOut;
    }
    return percentageUsed > 80 ? kEarlyWear : kSound;
}

void append(std::string& list, const std::string& item) {
    list += (list.empty() ? "" : ", ") + item;
}

} // namespace

std::optional<std::uint32_t> nvmeLevel(const NvmeHealth& health) {
    if (health.criticalWarning == kNotReported && health.availableSpare == kNotReported) {
        return std::nullopt;
    }
    return std::max({warningLevel(health.criticalWarning),
                     spareLevel(health.availableSpare, health.availableSpareThreshold),
                     lifeLevel(health.percentageUsed), health.errorLogEntries > 0 ? kWearingOut : kSound});
}

std::string nvmeLifeText(const NvmeHealth& health) {
    std::string text;
    if (health.percentageUsed != kNotReported) {
        append(text, "Life used " + std::to_string(health.percentageUsed) + " %");
    }
    if (health.availableSpare != kNotReported) {
        append(text, "spare " + std::to_string(health.availableSpare) + " %" +
                         (health.availableSpareThreshold == kNotReported
                              ? ""
                              : " (limit " + std::to_string(health.availableSpareThreshold) + " %)"));
    }
    if (health.powerOnHours >= 0) {
        append(text, thousandsText(static_cast<std::uint64_t>(health.powerOnHours)) + " h");
    }
    if (health.errorLogEntries >= 0) {
        append(text, thousandsText(static_cast<std::uint64_t>(health.errorLogEntries)) +
                         (health.errorLogEntries == 1 ? " media error" : " media errors"));
    }
    return text;
}

} // namespace torvane
