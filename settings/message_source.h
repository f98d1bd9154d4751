#pragma once

#include "records/message_table.h"

#include <string>
#include <string_view>

namespace torvane {

/// A message table, or what is wrong with its source ("line 12: ..."); `error` is empty when all is well.
struct MessageSource {
    MessageTable table; ///< the source's messages in order, then the end marker
    std::string error;
};

/// Reads the message table as people write it. Messages are set apart by blank lines; lines that begin with '#' are
/// comments. Each message is
///
///     level 2
///     lamp yellow
///     The text, over as many lines as it takes: they are joined by blanks.
///
/// Levels are 0 to 3, each with at most one message; lamps are green, blue, yellow and red.
[[nodiscard]] MessageSource parseMessageSource(std::string_view source);

} // namespace torvane
