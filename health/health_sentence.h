#pragma once

#include "records/message_table.h"

#include <span>
#include <string>

namespace torvane {

struct DriveRecord;

/// The verdict on a drive in one sentence, for every kind of drive: the advice of its health level, what the drive says
/// of itself where that is worse, or why nothing is known of it. Empty when the message table has no message for the
/// level. docs/health.md has the table.
[[nodiscard]] std::string healthSentence(const DriveRecord& drive, std::span<const MessageRecord> messages);

} // namespace torvane
