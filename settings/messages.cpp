#include "settings/messages.h"

#include "base/replace_file.h"
#include "settings/message_file.h"
#include "state/event_log.h"

#include <windows.h>

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace torvane {

namespace {

/// How many whole records the file holds; none when it is missing.
std::uint64_t recordsInFile(const char* fileName) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExA(fileName, GetFileExInfoStandard, &data) == FALSE) {
        return 0;
    }
    return ((std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow) / kMessageRecordBytes;
}

} // namespace

int LoadMessages(MessageTable& messages) {
    auto table = readMessageFile(kMessageFileName);
    if (!table) {
        LogEvent("ERROR", "Could not open [%s] for message load. Exiting", kMessageFileName);
        return 0;
    }
    messages = std::move(*table);
    return 1;
}

int saveMessages(MessageTable& messages, MessageTable changed) {
    // A table has a limit, and reading may end early: what was never loaded must not be written away.
    if (recordsInFile(kMessageFileName) > changed.size()) {
        LogEvent("ERROR", "Could not SAVE message file: [%s] holds more messages than were loaded", kMessageFileName);
        return 0;
    }
    const std::vector<std::uint8_t> bytes = serializeMessageTable(changed);
    if (replaceFile(kMessageFileName, std::as_bytes(std::span(bytes))) != FileSaving::kDone) {
        LogEvent("ERROR", "Could not SAVE message file");
        return 0;
    }
    messages = std::move(changed);
    return 1;
}

} // namespace torvane
