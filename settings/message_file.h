#pragma once

#include "records/message_table.h"

#include <optional>

namespace torvane {

inline constexpr const char* kMessageFileName = "Message.db";

/// The whole records of the file, at most `kMaxMessageRecords`; none when it cannot be opened for reading and writing.
/// An empty file gives an empty table.
[[nodiscard]] std::optional<MessageTable> readMessageFile(const char* fileName);

} // namespace torvane
