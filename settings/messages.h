#pragma once

#include "records/message_table.h"

namespace torvane {

/// Loads "Message.db" of the current folder. Returns 0 when it cannot be opened, after one "ERROR" log
/// row: the program then ends, because no drive could be graded. Returns 1 otherwise, even for an empty file.
int LoadMessages(MessageTable& messages);

/// Writes `changed` as "Message.db" and, when that succeeded, makes it the table in use. A crash at any moment leaves
/// either the old file or the new one, whole. Returns 1, or 0 after one "ERROR" log row with file and table unchanged:
/// when it cannot be written, and when the file holds more records than `changed`, which would be lost.
int saveMessages(MessageTable& messages, MessageTable changed);

} // namespace torvane
