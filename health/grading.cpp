#include "health/grading.h"

#include "base/format.h"
#include "health/counter_levels.h"
#include "records/drive_record.h"

#include <algorithm>

namespace torvane {

std::optional<std::uint32_t> healthLevel(const DriveRecord& record) {
    constexpr Counters kNothingReported;
    if (record.disk == kNothingReported) {
        return std::nullopt;
    }
    // The worst counter decides: the drive is no better for the others.
    std::uint32_t worst = 0;
    for (const CounterLevel& level : kCounterLevels) {
        worst = std::max(worst, level.levelOf(record.disk[level.counter]));
    }
    return worst;
}

const MessageRecord* GradeDrive(std::span<const MessageRecord> messages, const DriveRecord& record) {
    const auto level = healthLevel(record);
    return level ? FindMessageByLevel(messages, *level) : nullptr;
}

Counters toldCounters(const DriveRecord& record) {
    Counters told = record.disk;
    if (record.smartType == kSmartTypeSsd) {
        for (const CounterLevel& level : kCounterLevels) {
            const std::int32_t own = record.ssd[level.counter];
            told[level.counter] = own != kNotReported ? own : told[level.counter];
        }
    }
    return told;
}

std::string_view lampImage(std::uint32_t colourCode) {
    switch (colourCode) {
    case kLampBlue:
        return "engine-check-blue.png";
    case kLampYellow:
        return "engine-check-yellow.png";
    case kLampGreen:
        return "engine-check-green.png";
    case kLampRed:
        return "engine-check-red.png";
    default:
        return {};
    }
}

LampVerdict decideLamp(const DriveRecord* activeDrive, std::span<const MessageRecord> messages) {
    if (activeDrive == nullptr || activeDrive->smartLoaded == 0) {
        return {.lampImage = kWhiteLampImage, .showsCounters = false};
    }
    const MessageRecord* message = GradeDrive(messages, *activeDrive);
    return {.lampImage = message == nullptr ? std::string_view() : lampImage(message->messageId),
            .showsCounters = true};
}

std::optional<NvmeWarnings> NvmeWarningBits(const DriveRecord& record) {
    if (record.nvme.criticalWarning == kNotReported) {
        return std::nullopt;
    }
    NvmeWarnings failed{};
    for (std::size_t bit = 0; bit < failed.size(); ++bit) {
        failed[bit] = ((static_cast<std::uint32_t>(record.nvme.criticalWarning) >> bit) & 1U) != 0;
    }
    return failed;
}

std::string nvmeResultText(const DriveRecord& record, std::size_t bit, bool failed) {
    // Only the spare's text tells of a failure: the dials carry the verdict of the other four.
    if (bit != 0) {
        return "RESULT";
    }
    if (!failed) {
        return "RESULTS";
    }
    return formatText("FAILED %03d %03d", record.nvme.availableSpare & 127, record.nvme.availableSpareThreshold & 127);
}

bool isEnduranceKnown(const DriveRecord& record) {
    return record.nvme.dataUnitsWritten != kNotReported;
}

std::string enduranceText(const DriveRecord& record) {
    if (!isEnduranceKnown(record)) {
        return " ";
    }
    return formatText("Total Bytes Written %s GB is %.02f percent of threshold",
                      thousandsText(record.nvme.gigabytesWritten).c_str(), record.nvme.enduranceFraction * 100.0);
}

std::string thousandsText(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3; i -= 3) {
        text.insert(i - 3, 1, ',');
    }
    return text;
}

} // namespace torvane
