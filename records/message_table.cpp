#include "records/message_table.h"

#include "base/format.h"
#include "base/utf8.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr std::size_t kLevelOffset = 4;
constexpr std::size_t kTextOffset = 8;

MessageRecord parseRecord(ByteView bytes) {
    MessageRecord record;
    record.messageId = loadLe32(bytes, 0);
    record.level = loadLe32(bytes, kLevelOffset);
    const ByteView text = bytes.subspan(kTextOffset, record.text.size());
    std::transform(text.begin(), text.end(), record.text.begin(),
                   [](std::uint8_t byte) { return static_cast<char>(byte); });
    return record;
}

/// Walks to the first record that `wanted` accepts, or to the one whose `key` is the end marker.
template <typename Wanted>
const MessageRecord* findUntilEnd(std::span<const MessageRecord> table, std::uint32_t MessageRecord::*key,
                                  Wanted wanted) {
    for (const MessageRecord& record : table) {
        if (record.*key == kMessageTableEnd) {
            return nullptr;
        }
        if (wanted(record)) {
            return &record;
        }
    }
    return nullptr;
}

const char* lampName(std::uint32_t colourCode) {
    switch (colourCode) {
    case kLampBlue:
        return "blue";
    case kLampYellow:
        return "yellow";
    case kLampGreen:
        return "green";
    case kLampRed:
        return "red";
    default:
        return "no";
    }
}

} // namespace

MessageTable parseMessageTable(ByteView bytes) {
    const std::size_t count = std::min(bytes.size() / kMessageRecordBytes, kMaxMessageRecords);
    MessageTable table;
    table.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        table.push_back(parseRecord(bytes.subspan(i * kMessageRecordBytes, kMessageRecordBytes)));
    }
    return table;
}

std::vector<std::uint8_t> serializeMessageTable(std::span<const MessageRecord> table) {
    std::vector<std::uint8_t> bytes(table.size() * kMessageRecordBytes);
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto record = std::span(bytes).subspan(i * kMessageRecordBytes, kMessageRecordBytes);
        storeLe(record, 0, table[i].messageId);
        storeLe(record, kLevelOffset, table[i].level);
        std::transform(table[i].text.begin(), table[i].text.end(), record.begin() + kTextOffset,
                       [](char character) { return static_cast<std::uint8_t>(character); });
    }
    return bytes;
}

std::string_view messageText(const MessageRecord& record) {
    const auto end = std::find(record.text.begin(), record.text.end(), '\0');
    return {record.text.data(), static_cast<std::size_t>(end - record.text.begin())};
}

void setMessageText(MessageRecord& record, std::string_view text) {
    const std::string_view kept = cutAtCharacter(text, record.text.size() - 1);
    record.text.fill('\0');
    std::copy(kept.begin(), kept.end(), record.text.begin());
}

std::string messageTitle(const MessageRecord& record) {
    return formatText("Level %u, %s lamp", static_cast<unsigned>(record.level), lampName(record.messageId));
}

std::size_t messageCount(std::span<const MessageRecord> table) {
    const auto end = std::find_if(table.begin(), table.end(),
                                  [](const MessageRecord& record) { return record.messageId == kMessageTableEnd; });
    return static_cast<std::size_t>(end - table.begin());
}

const MessageRecord* FindMessageById(std::span<const MessageRecord> table, std::uint32_t id) {
    return findUntilEnd(table, &MessageRecord::messageId,
                        [id](const MessageRecord& record) { return record.messageId == id; });
}

const MessageRecord* FindMessageByLevel(std::span<const MessageRecord> table, std::uint32_t level) {
    return findUntilEnd(table, &MessageRecord::level,
                        [level](const MessageRecord& record) { return record.level == level; });
}

const MessageRecord* FindMessageByText(std::span<const MessageRecord> table, std::string_view text) {
    return findUntilEnd(table, &MessageRecord::messageId,
                        [text](const MessageRecord& record) { return messageText(record) == text; });
}

} // namespace torvane
