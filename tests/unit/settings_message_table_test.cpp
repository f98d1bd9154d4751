#include "records/message_table.h"

#include "settings/message_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

namespace torvane {
namespace {

MessageRecord record(std::uint32_t id, std::uint32_t level, std::string_view text) {
    MessageRecord made;
    made.messageId = id;
    made.level = level;
    setMessageText(made, text);
    return made;
}

MessageRecord endMarker() {
    return record(kMessageTableEnd, kMessageTableEnd, "");
}

/// A copy of `bytes` in a block of exactly their size, so that the sanitizer sees a read beyond it.
MessageTable parsedFromExactBlock(const std::vector<std::uint8_t>& bytes) {
    const std::vector<std::uint8_t> block(bytes.begin(), bytes.end());
    return parseMessageTable(block);
}

class MessageFile : public testing::Test {
  protected:
    void TearDown() override { std::remove(kName); }

    static void write(const std::vector<std::uint8_t>& bytes) {
        std::ofstream file(kName, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    static constexpr const char* kName = "messages-under-test.db";
};

TEST(MessageTable, RecordsLieInTheFileAsNumberLevelAndText) {
    const auto bytes = serializeMessageTable(std::vector{record(0x01020304, 0x0A0B0C0D, "Ab")});
    ASSERT_EQ(bytes.size(), 4168U);
    const std::vector<std::uint8_t> start(bytes.begin(), bytes.begin() + 11);
    EXPECT_EQ(start, (std::vector<std::uint8_t>{4, 3, 2, 1, 0x0D, 0x0C, 0x0B, 0x0A, 'A', 'b', 0}));
}

TEST(MessageTable, ParsingRestoresWhatSerialisingWrote) {
    const MessageTable written{record(3, 0, "fine"), record(4, 3, std::string(4159, 'x')), endMarker()};
    const MessageTable read = parsedFromExactBlock(serializeMessageTable(written));
    ASSERT_EQ(read.size(), written.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].messageId, written[i].messageId);
        EXPECT_EQ(read[i].level, written[i].level);
        EXPECT_EQ(read[i].text, written[i].text);
    }
}

TEST(MessageTable, NothingButWholeRecordsIsTaken) {
    auto bytes = serializeMessageTable(std::vector{record(1, 1, "first"), record(2, 2, "second")});
    bytes.pop_back();
    EXPECT_EQ(parsedFromExactBlock(bytes).size(), 1U);
    bytes.resize(kMessageRecordBytes - 1);
    EXPECT_TRUE(parsedFromExactBlock(bytes).empty());
    EXPECT_TRUE(parsedFromExactBlock({}).empty());
}

TEST(MessageTable, AnOversizedTableIsCutAtItsLimit) {
    const std::vector<std::uint8_t> bytes((kMaxMessageRecords + 1) * kMessageRecordBytes, 7);
    EXPECT_EQ(parseMessageTable(bytes).size(), kMaxMessageRecords);
}

TEST(MessageTable, LookupsReturnTheFirstMatch) {
    const MessageTable table{record(3, 0, "green"), record(3, 2, "again"), record(9, 2, "again"), endMarker()};
    EXPECT_EQ(FindMessageById(table, 3), &table[0]);
    EXPECT_EQ(FindMessageByLevel(table, 2), &table[1]);
    EXPECT_EQ(FindMessageByText(table, "again"), &table[1]);
    EXPECT_EQ(FindMessageById(table, 4), nullptr);
    EXPECT_EQ(FindMessageByLevel(table, 1), nullptr);
    EXPECT_EQ(FindMessageByText(table, "none"), nullptr);
}

TEST(MessageTable, LookupsStopAtTheEndMarkerOfTheirOwnKey) {
    const MessageTable table{record(kMessageTableEnd, 1, "a"), record(5, kMessageTableEnd, "b"), record(6, 2, "c")};
    EXPECT_EQ(FindMessageById(table, 5), nullptr);
    EXPECT_EQ(FindMessageByText(table, "a"), nullptr) << "the marker ends the walk before its own text is looked at";
    EXPECT_EQ(FindMessageByText(table, "c"), nullptr);
    EXPECT_EQ(FindMessageByLevel(table, 1), &table[0]) << "the number is no marker for the lookup by level";
    EXPECT_EQ(FindMessageByLevel(table, 2), nullptr);
}

TEST(MessageTable, TheEndMarkerItselfIsNeverFound) {
    const MessageTable table{endMarker()};
    EXPECT_EQ(FindMessageById(table, kMessageTableEnd), nullptr);
    EXPECT_EQ(FindMessageByLevel(table, kMessageTableEnd), nullptr);
    EXPECT_EQ(FindMessageByText(table, ""), nullptr);
}

TEST(MessageTable, ATableWithoutEndMarkerEndsWithItsBlock) {
    const MessageTable table = parsedFromExactBlock(serializeMessageTable(std::vector{record(1, 1, "only")}));
    EXPECT_EQ(FindMessageById(table, 2), nullptr);
    EXPECT_EQ(FindMessageByLevel(table, 2), nullptr);
    EXPECT_EQ(FindMessageByText(table, "other"), nullptr);
    EXPECT_EQ(FindMessageByLevel({}, 0), nullptr);
}

TEST(MessageTable, TextsCompareByLengthThenByte) {
    const MessageTable table{record(1, 0, "Drive"), record(2, 1, "Drive fine"), endMarker()};
    EXPECT_EQ(FindMessageByText(table, "Drive fine"), &table[1]);
    EXPECT_EQ(FindMessageByText(table, "Driv"), nullptr);
    EXPECT_EQ(FindMessageByText(table, "drive"), nullptr) << "case matters";
}

TEST(MessageTable, ATextWithoutTerminatorIsItsWholeField) {
    MessageRecord full = record(1, 0, "");
    full.text.fill('z');
    const MessageTable table = parsedFromExactBlock(serializeMessageTable(std::vector{full}));
    EXPECT_EQ(messageText(table[0]), std::string(4160, 'z'));
    EXPECT_EQ(FindMessageByText(table, std::string(4160, 'z')), &table[0]);
    EXPECT_EQ(FindMessageByText(table, std::string(4161, 'z')), nullptr);
}

TEST(MessageTable, EveryByteValueReadsWithoutHarm) {
    std::vector<std::uint8_t> bytes(3 * kMessageRecordBytes);
    for (unsigned fill = 0; fill < 256; ++fill) {
        std::memset(bytes.data(), static_cast<int>(fill), bytes.size());
        const MessageTable table = parsedFromExactBlock(bytes);
        ASSERT_EQ(table.size(), 3U);
        const std::uint32_t key = fill * 0x01010101U;
        const MessageRecord* expected = fill == 0xFF ? nullptr : &table[0];
        EXPECT_EQ(FindMessageById(table, key), expected);
        EXPECT_EQ(FindMessageByLevel(table, key), expected);
    }
}

TEST(MessageTable, SettingATextClearsWhatStoodThere) {
    MessageRecord changed = record(1, 0, "a longer text than the next");
    setMessageText(changed, "short");
    EXPECT_EQ(messageText(changed), "short");
    EXPECT_EQ(changed.text[6], '\0');
    EXPECT_EQ(changed.text[10], '\0');
}

TEST(MessageTable, ATextTooLongIsCutBeforeTheTerminator) {
    MessageRecord changed;
    setMessageText(changed, std::string(5000, 'q'));
    EXPECT_EQ(messageText(changed), std::string(4159, 'q'));
    EXPECT_EQ(changed.text.back(), '\0');
}

TEST(MessageTable, ATextIsNeverCutWithinACharacter) {
    const std::string euro = "\xE2\x82\xAC";
    MessageRecord changed;
    setMessageText(changed, std::string(4157, 'q') + euro);
    EXPECT_EQ(messageText(changed), std::string(4157, 'q'));
    setMessageText(changed, std::string(4156, 'q') + euro);
    EXPECT_EQ(messageText(changed), std::string(4156, 'q') + euro);
    setMessageText(changed, std::string(5000, '\x80'));
    EXPECT_EQ(messageText(changed), std::string(4159, '\x80')) << "no UTF-8, so there is no character to keep whole";
}

TEST(MessageTable, ACutLosesNoMoreThanTheCharacterThatDoesNotFit) {
    const std::string fourBytes = "\xF0\x9F\x92\xBE";
    for (std::size_t fitting = 0; fitting <= 4; ++fitting) {
        const std::string before(4159 - fitting, 'q');
        MessageRecord changed;
        setMessageText(changed, before + fourBytes + "and more");
        EXPECT_EQ(messageText(changed), fitting == 4 ? before + fourBytes : before) << fitting;
    }
}

TEST(MessageTitle, NamesLevelAndLamp) {
    EXPECT_EQ(messageTitle(record(kLampGreen, 0, "")), "Level 0, green lamp");
    EXPECT_EQ(messageTitle(record(kLampBlue, 1, "")), "Level 1, blue lamp");
    EXPECT_EQ(messageTitle(record(kLampYellow, 2, "")), "Level 2, yellow lamp");
    EXPECT_EQ(messageTitle(record(kLampRed, 3, "")), "Level 3, red lamp");
    EXPECT_EQ(messageTitle(record(5, 4294967294U, "")), "Level 4294967294, no lamp");
}

TEST(MessageCount, CountsUpToTheEndMarker) {
    EXPECT_EQ(messageCount({}), 0U);
    EXPECT_EQ(messageCount(std::vector{record(1, 1, "a"), record(2, 2, "b")}), 2U);
    EXPECT_EQ(messageCount(std::vector{record(1, 1, "a"), endMarker(), record(2, 2, "b")}), 1U);
}

TEST_F(MessageFile, IsReadRecordByRecord) {
    write(serializeMessageTable(std::vector{record(3, 0, "green"), record(1, 1, "blue"), endMarker()}));
    const auto table = readMessageFile(kName);
    ASSERT_TRUE(table);
    ASSERT_EQ(table->size(), 3U);
    EXPECT_EQ(messageText((*table)[1]), "blue");
}

TEST_F(MessageFile, LosesAPartialLastRecord) {
    auto bytes = serializeMessageTable(std::vector{record(3, 0, "green"), record(1, 1, "blue")});
    bytes.resize(bytes.size() - 1);
    write(bytes);
    EXPECT_EQ(readMessageFile(kName)->size(), 1U);
}

TEST_F(MessageFile, IsAnEmptyTableWhenItIsEmpty) {
    write({});
    const auto table = readMessageFile(kName);
    ASSERT_TRUE(table);
    EXPECT_TRUE(table->empty());
}

TEST_F(MessageFile, IsReadNoFurtherThanTheLimit) {
    write(std::vector<std::uint8_t>((kMaxMessageRecords + 2) * kMessageRecordBytes, 1));
    EXPECT_EQ(readMessageFile(kName)->size(), kMaxMessageRecords);
}

TEST_F(MessageFile, IsNoTableWhenItIsMissing) {
    EXPECT_FALSE(readMessageFile(kName));
}

} // namespace
} // namespace torvane
