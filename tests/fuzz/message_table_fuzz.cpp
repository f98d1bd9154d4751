#include "settings/message_table.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The message file: any bytes, of any length.

using namespace torvane;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    // A record is 4168 bytes: a short input stands for a long file of the same bytes over and over.
    const std::size_t length = size == 0 ? 0 : (size % 7) * kMessageRecordBytes + size % 5;
    std::vector<std::uint8_t> file(length);
    for (std::size_t i = 0; i < length; ++i) {
        file[i] = bytes[i % size];
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
    return 0;
}
