#include "records/message_table.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>

// The message file: any bytes, of any length.

using namespace torvane;
using fuzz::require;

namespace {

/// Where a lookup by `key` has to stop: at the first record that is the end by that key, or behind the last.
std::size_t endBy(const MessageTable& table, std::uint32_t MessageRecord::*key) {
    const auto end = std::ranges::find(table, kMessageTableEnd, key);
    return static_cast<std::size_t>(end - table.begin());
}

/// `found` must be the first of the records in front of `end` that `matches`, or null when there is none.
template <typename Matches>
void requireFirst(const MessageTable& table, std::size_t end, const MessageRecord* found, Matches matches) {
    const auto last = table.begin() + static_cast<std::ptrdiff_t>(end);
    const auto first = std::find_if(table.begin(), last, matches);
    require(found == (first == last ? nullptr : &*first), "a lookup gives the first match in front of the end");
}

void lookUp(const MessageTable& table, std::uint32_t number, const std::string& text) {
    requireFirst(table, endBy(table, &MessageRecord::messageId), FindMessageById(table, number),
                 [&](const MessageRecord& record) { return record.messageId == number; });
    requireFirst(table, endBy(table, &MessageRecord::level), FindMessageByLevel(table, number),
                 [&](const MessageRecord& record) { return record.level == number; });
    requireFirst(table, endBy(table, &MessageRecord::messageId), FindMessageByText(table, text),
                 [&](const MessageRecord& record) { return messageText(record) == text; });
}

void lookUpEverything(const MessageTable& table) {
    for (const MessageRecord& record : table) {
        const std::string text(messageText(record));
        lookUp(table, record.messageId, text);
        lookUp(table, record.level, text + "x");
        lookUp(table, record.level + 1, text.substr(0, text.size() / 2));
    }
    for (const std::uint32_t number : {0U, 1U, 3U, std::numeric_limits<std::uint32_t>::max()}) {
        lookUp(table, number, "");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    // A record is 4168 bytes: a short input stands for a long file of the same bytes over and over.
    const std::size_t length = size == 0 ? 0 : (size % 7) * kMessageRecordBytes + size % 5;
    std::vector<std::uint8_t> file(length);
    for (std::size_t i = 0; i < length; ++i) {
        file[i] = bytes[i % size];
    }
    // One byte of the input decides which records are ends, and by which key.
    for (std::size_t record = 0; size > 0 && (record + 1) * kMessageRecordBytes <= length; ++record) {
        const std::size_t at = record * kMessageRecordBytes;
        const unsigned kind = (bytes[0] >> record) & 1U ? 1U + (bytes[size - 1] >> record & 1U) : 0U;
        if (kind != 0) {
            std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(at + 4 * (kind - 1)), 4, std::uint8_t{0xFF});
        }
    }
    const MessageTable table = parseMessageTable(file);
    require(table.size() == std::min(file.size() / kMessageRecordBytes, kMaxMessageRecords), "whole records are taken");
    const std::vector<std::uint8_t> again = serializeMessageTable(table);
    require(std::equal(again.begin(), again.end(), file.begin()), "a table is written as it was read");
    require(messageCount(table) <= table.size(), "the end lies within the table");
    for (const MessageRecord& record : table) {
        require(messageText(record).size() <= record.text.size(), "a text ends with its field");
        require(!messageTitle(record).empty(), "every record has a title");
    }
    lookUpEverything(table);
    return 0;
}
