#include "settings/message_file.h"

#include "base/stdio_file.h"

namespace torvane {

std::optional<MessageTable> readMessageFile(const char* fileName) {
    // Update mode: a table that could not be edited later is refused at once.
    const StdioFile file = openStdioFile(fileName, "rb+");
    if (!file) {
        return std::nullopt;
    }
    MessageTable table;
    std::vector<std::uint8_t> bytes(kMessageRecordBytes);
    while (table.size() < kMaxMessageRecords && std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size()) {
        table.push_back(parseMessageTable(bytes).front());
    }
    return table;
}

} // namespace torvane
