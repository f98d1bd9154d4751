#pragma once

#include "records/message_table.h"

#include <span>
#include <string>

namespace torvane {

struct DriveRecord;

/// The verdict on a drive in one sentence, for every kind of drive: the advice of its health level, what a solid-state
/// drive says of itself where that is worse, or why nothing is known of it. Empty when the message table has no message
/// for the level. `toolMissed`: the drive has no report because there is no smartctl.exe. docs/health.md has the table.
[[nodiscard]] std::string healthSentence(const DriveRecord& drive, std::span<const MessageRecord> messages,
                                         bool toolMissed = false);

/// What a hard disk says of itself where that is worse than its counters, whose lamp and advice stay: it stands beside
/// them. Empty otherwise.
[[nodiscard]] std::string failureBesideCounters(const DriveRecord& drive);

} // namespace torvane
