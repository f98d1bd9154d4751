#include "settings/message_source.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The messages' readable source: any text.

using namespace torvane;
using fuzz::require;

namespace {

bool isMessage(const MessageRecord& record) {
    return record.level <= 3 && record.messageId >= kLampBlue && record.messageId <= kLampRed &&
           !messageText(record).empty();
}

/// The table's messages written as a source again.
std::string sourceOf(const MessageTable& table) {
    std::string source;
    for (const MessageRecord& record : table) {
        static constexpr std::string_view kLamps[] = {"", "blue", "yellow", "green", "red"};
        if (record.messageId == kMessageTableEnd) {
            break;
        }
        source += "level " + std::to_string(record.level) + "\nlamp " + std::string(kLamps[record.messageId]) + "\n" +
                  std::string(messageText(record)) + "\n\n";
    }
    return source;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string text(bytes, bytes + size);
    const MessageSource source = parseMessageSource(text);
    if (!source.error.empty()) {
        require(source.table.empty(), "a wrong source gives no table");
        require(source.error.starts_with("line "), "an error names its line");
        return 0;
    }
    require(!source.table.empty() && source.table.back().messageId == kMessageTableEnd &&
                source.table.back().level == kMessageTableEnd,
            "a table ends with the end marker");
    require(source.table.size() <= 5, "there are four levels");
    require(std::all_of(source.table.begin(), source.table.end() - 1, isMessage), "every message is one of a level");
    const MessageSource again = parseMessageSource(sourceOf(source.table));
    require(again.error.empty() && serializeMessageTable(again.table) == serializeMessageTable(source.table),
            "a source made from the table gives the table");
    return 0;
}
