#include "settings/messages.h"

#include "base/owned_handle.h"
#include "settings/message_file.h"
#include "state/event_log.h"

#include <windows.h>

namespace torvane {

namespace {

// Beside the file itself, because a file can be renamed over another one only within a volume.
constexpr const char* kNewMessageFileName = "Message.db.new";

/// True when all bytes are on the disk, not merely in a cache.
bool writeNewFile(const char* fileName, const std::vector<std::uint8_t>& bytes) {
    const UniqueFile file{
        CreateFileA(fileName, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)};
    if (!file) {
        return false;
    }
    DWORD written = 0;
    return WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
           written == bytes.size() && FlushFileBuffers(file.get()) != FALSE;
}

bool replaceFile(const char* fileName, const std::vector<std::uint8_t>& bytes) {
    if (writeNewFile(kNewMessageFileName, bytes) &&
        MoveFileExA(kNewMessageFileName, fileName, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE) {
        return true;
    }
    DeleteFileA(kNewMessageFileName);
    return false;
}

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
    if (!replaceFile(kMessageFileName, serializeMessageTable(changed))) {
        LogEvent("ERROR", "Could not SAVE message file");
        return 0;
    }
    messages = std::move(changed);
    return 1;
}

} // namespace torvane
