#pragma once

#include "records/message_table.h"

#include <string>

namespace torvane::testing {

/// A table of several records, every byte of whose texts tells which table it is of.
inline MessageTable tableOf(char letter) {
    MessageTable table(20);
    for (MessageRecord& record : table) {
        record.messageId = kLampGreen;
        setMessageText(record, std::string(record.text.size(), letter));
    }
    table.back().messageId = kMessageTableEnd;
    table.back().level = kMessageTableEnd;
    return table;
}

inline constexpr char kOldTable = 'o';
inline constexpr char kNewTable = 'n';

/// Exit codes of the saving program.
inline constexpr int kSaved = 0;
inline constexpr int kNotSaved = 1;
inline constexpr int kDied = 77;

} // namespace torvane::testing
