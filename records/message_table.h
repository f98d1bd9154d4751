#pragma once

#include "base/bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// Ends a message table, in the number or in the level of a record.
inline constexpr std::uint32_t kMessageTableEnd = 0xFFFFFFFF;

/// The engine-check lamp that a message calls for: the values that `MessageRecord::messageId` takes.
enum LampColour : std::uint32_t {
    kLampBlue = 1,
    kLampYellow = 2,
    kLampGreen = 3,
    kLampRed = 4,
};

/// One advice text. "Message.db" is a plain sequence of these records, little-endian, without a header.
struct MessageRecord {
    std::uint32_t messageId = 0;   ///< the message's number, which is also its lamp colour
    std::uint32_t level = 0;       ///< the health level that it serves: 0 green, 1 blue, 2 yellow, 3 red
    std::array<char, 4160> text{}; ///< NUL-terminated, unless the file says otherwise: read it with `messageText`
};
inline constexpr std::size_t kMessageRecordBytes = 4168;
static_assert(sizeof(MessageRecord) == kMessageRecordBytes);
static_assert(offsetof(MessageRecord, level) == 4);
static_assert(offsetof(MessageRecord, text) == 8);

/// Records in file order. The end marker is a record like any other; the table is bounded by its size as well, so a
/// file without a marker is harmless.
using MessageTable = std::vector<MessageRecord>;

/// More records than this are not taken from a file: 17 MB, of a table that needs four records. A table that was cut so
/// is never saved.
inline constexpr std::size_t kMaxMessageRecords = 4096;

/// The whole records at the start of `bytes`; a partial last one is dropped.
[[nodiscard]] MessageTable parseMessageTable(ByteView bytes);

/// The records as the file's bytes.
[[nodiscard]] std::vector<std::uint8_t> serializeMessageTable(std::span<const MessageRecord> table);

/// The record's text up to its first NUL, or its whole field when it has none. Points into the record.
[[nodiscard]] std::string_view messageText(const MessageRecord& record);

/// Replaces the record's text. What does not fit is cut, never within a UTF-8 character.
void setMessageText(MessageRecord& record, std::string_view text);

/// The message's name where one is chosen: "Level 2, yellow lamp". A number that is no lamp's gives "no lamp".
[[nodiscard]] std::string messageTitle(const MessageRecord& record);

/// How many records stand before the end of the table.
[[nodiscard]] std::size_t messageCount(std::span<const MessageRecord> table);

/// The first record with this number; null when the end of the table comes first. As FindMessageByText, one of the
/// program's named operations that no command calls.
[[nodiscard]] const MessageRecord* FindMessageById(std::span<const MessageRecord> table, std::uint32_t id);

/// The first record that serves this health level; null when the end of the table comes first.
[[nodiscard]] const MessageRecord* FindMessageByLevel(std::span<const MessageRecord> table, std::uint32_t level);

/// The first record with exactly this text; null when the end of the table comes first.
[[nodiscard]] const MessageRecord* FindMessageByText(std::span<const MessageRecord> table, std::string_view text);

} // namespace torvane
