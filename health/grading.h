#pragma once

#include "records/counters.h"
#include "records/message_table.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace torvane {

struct DriveRecord;

/// How the counters of a drive's report add up: 0 sound, 1 early wear, 2 wearing out, 3 failing; none when the report
/// holds none of the counters.
[[nodiscard]] std::optional<std::uint32_t> healthLevel(const DriveRecord& record);

/// The advice message for the drive's health level; null when there is no level, or no message that serves it.
[[nodiscard]] const MessageRecord* GradeDrive(std::span<const MessageRecord> messages, const DriveRecord& record);

/// Shown when there is no report to grade.
inline constexpr std::string_view kWhiteLampImage = "engine-check-white.png";

/// The lamp's picture for a message's colour code 1 to 4; empty, for no lamp, for any other code.
[[nodiscard]] std::string_view lampImage(std::uint32_t colourCode);

/// The engine-check lamp, and whether the dials have needles.
struct LampVerdict {
    std::string_view lampImage; ///< empty: no lamp
    bool showsCounters = false; ///< the report's counters are to be drawn
};

/// The lamp for the active drive; null when no drive is active.
/// The counters as the panel tells them: of a solid-state device its own set's, or the disk's where its own lacks one;
/// of any other drive the disk's.
[[nodiscard]] Counters toldCounters(const DriveRecord& record);

[[nodiscard]] LampVerdict decideLamp(const DriveRecord* activeDrive, std::span<const MessageRecord> messages);

/// Bits 0 to 4 of the critical warning byte (NVMe Base Specification, SMART / Health Information log, byte 0): true for
/// "fail". In order: available spare below its threshold, temperature, reliability degraded, read-only, volatile memory
/// backup failed.
inline constexpr std::size_t kNvmeWarningCount = 5;
using NvmeWarnings = std::array<bool, kNvmeWarningCount>;

/// None when the drive's health log was not read.
[[nodiscard]] std::optional<NvmeWarnings> NvmeWarningBits(const DriveRecord& record);

/// The text beside the dial of one warning bit.
[[nodiscard]] std::string nvmeResultText(const DriveRecord& record, std::size_t bit, bool failed);

/// True when the health log told how much was written to the drive.
[[nodiscard]] bool isEnduranceKnown(const DriveRecord& record);

/// How much of the rated endurance is used up; one blank when it is not known.
[[nodiscard]] std::string enduranceText(const DriveRecord& record);

/// "1,234,567".
[[nodiscard]] std::string thousandsText(std::uint64_t number);

} // namespace torvane
