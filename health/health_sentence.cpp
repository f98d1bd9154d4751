#include "health/health_sentence.h"

#include "health/counter_levels.h"
#include "health/grading.h"
#include "health/nvme_verdict.h"
#include "health/own_verdict.h"
#include "records/drive_record.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace torvane {

namespace {

constexpr std::uint32_t kFailing = 3;

std::string adviceFor(std::optional<std::uint32_t> level, std::span<const MessageRecord> messages) {
    const MessageRecord* const message = level ? FindMessageByLevel(messages, *level) : nullptr;
    return message == nullptr ? std::string() : std::string(messageText(*message));
}

/// Worse than any counter but those that say the same.
std::string ownFailure() {
    return "The drive itself says that it is FAILING: copy it at once, then replace it.";
}

std::string whyNoReport(const DriveRecord& drive, bool toolMissed) {
    if (toolMissed) {
        return "SMART could not be read: smartctl.exe is missing.";
    }
    if (hasNoSmart(drive.smartText)) {
        return "The drive says that it keeps no SMART data.";
    }
    const bool identityCameThrough = !drive.device.identifySerial.empty();
    if (identityCameThrough) {
        return "SMART could not be read. \"Drive Details...\" and the log may tell why.";
    }
    return drive.busCode == kBusCodeUsb
               ? "This bridge passes no SMART on. A disk that is connected directly tells its condition."
               : "This controller passes no SMART on. A disk that is connected directly tells its condition.";
}

std::string standardSentence(const DriveRecord& drive, std::span<const MessageRecord> messages, bool toolMissed) {
    if (drive.smartLoaded == 0) {
        return whyNoReport(drive, toolMissed);
    }
    if (const std::optional<std::uint32_t> level = healthLevel(drive)) {
        return adviceFor(level, messages);
    }
    if (hasNoSmart(drive.smartText)) {
        return whyNoReport(drive, false);
    }
    return saysThatItFails(drive.smartText) ? ownFailure()
                                            : "The drive reports none of the counters that tell its condition.";
}

struct SsdLevels {
    std::optional<std::uint32_t> errors; ///< of counters and life used
    std::uint32_t age = 0;
};

SsdLevels ssdLevels(const DriveRecord& drive) {
    SsdLevels levels;
    const Counters counters = toldCounters(drive);
    const auto raise = [&levels](std::uint32_t level) { levels.errors = std::max(levels.errors.value_or(0), level); };
    for (const CounterLevel& counter : kCounterLevels) {
        const std::int32_t value = counters[counter.counter];
        if (value == kNotReported) {
            continue;
        }
        if (counter.counter == Counter::kPowerOnHours) {
            levels.age = counter.levelOf(value);
            raise(0);
        } else {
            raise(counter.levelOf(value));
        }
    }
    if (const auto used = lifeUsed(drive.smartText)) {
        raise(*used > 100 ? 2 : *used > 80 ? 1 : 0);
    }
    return levels;
}

std::string ssdSentence(const DriveRecord& drive, std::span<const MessageRecord> messages) {
    if (hasNoSmart(drive.smartText)) {
        return whyNoReport(drive, false);
    }
    const SsdLevels levels = ssdLevels(drive);
    if (saysThatItFails(drive.smartText) && levels.errors.value_or(0) < kFailing) {
        return ownFailure();
    }
    if (!levels.errors) {
        return "The drive reports none of the counters that tell its condition.";
    }
    const bool byAge = levels.age > *levels.errors;
    std::string advice = adviceFor(std::max(levels.age, *levels.errors), messages);
    return byAge && !advice.empty() ? "By its age: " + advice : advice;
}

std::string nvmeSentence(const DriveRecord& drive, std::span<const MessageRecord> messages) {
    const std::optional<std::uint32_t> level = nvmeLevel(drive.nvme);
    if (!level) {
        return "The drive's health log could not be read.";
    }
    std::string advice = adviceFor(level, messages);
    const bool hasLostData = drive.nvme.errorLogEntries > 0 && *level < kFailing;
    return hasLostData && !advice.empty() ? "It has lost data before: " + advice : advice;
}

/// The tool may have got a report all the same, by a road of its own.
std::string unknownSentence(const DriveRecord& drive, std::span<const MessageRecord> messages) {
    const std::string advice = drive.smartLoaded == 0 ? "" : adviceFor(healthLevel(drive), messages);
    return advice.empty() ? "This interface reports no monitoring data." : "From its report: " + advice;
}

} // namespace

std::string healthSentence(const DriveRecord& drive, std::span<const MessageRecord> messages, bool toolMissed) {
    switch (drive.smartType) {
    case kSmartTypeNvme:
        return nvmeSentence(drive, messages);
    case kSmartTypeSsd:
        return ssdSentence(drive, messages);
    case kSmartTypeUnknown:
        return unknownSentence(drive, messages);
    case kSmartTypeNone:
        return whyNoReport(drive, toolMissed);
    default:
        return standardSentence(drive, messages, toolMissed);
    }
}

std::string failureBesideCounters(const DriveRecord& drive) {
    const bool isHardDisk = drive.smartType == kSmartTypeStandard && drive.smartLoaded != 0;
    const std::optional<std::uint32_t> level = isHardDisk ? healthLevel(drive) : std::nullopt;
    return level && *level < kFailing && saysThatItFails(drive.smartText) ? ownFailure() : std::string();
}

} // namespace torvane
