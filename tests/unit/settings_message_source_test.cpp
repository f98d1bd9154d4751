#include "settings/message_source.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace torvane {
namespace {

std::string errorOf(std::string_view source) {
    const MessageSource messages = parseMessageSource(source);
    EXPECT_TRUE(messages.table.empty() || messages.error.empty());
    return messages.error;
}

TEST(MessageSource, TurnsBlocksIntoRecordsAndAddsTheEndMarker) {
    const MessageSource messages = parseMessageSource("# a comment\n"
                                                      "level 2\n"
                                                      "lamp yellow\n"
                                                      "First line,\r\n"
                                                      "  # not shown\n"
                                                      "# nor this\n"
                                                      "second line.  \n"
                                                      "\n\n"
                                                      "level 0\n"
                                                      "lamp green\n"
                                                      "Fine.");
    EXPECT_EQ(messages.error, "");
    ASSERT_EQ(messages.table.size(), 3U);
    EXPECT_EQ(messages.table[0].messageId, kLampYellow);
    EXPECT_EQ(messages.table[0].level, 2U);
    EXPECT_EQ(messageText(messages.table[0]), "First line, second line.");
    EXPECT_EQ(messages.table[1].messageId, kLampGreen);
    EXPECT_EQ(messageText(messages.table[1]), "Fine.");
    EXPECT_EQ(messages.table[2].messageId, kMessageTableEnd);
    EXPECT_EQ(messages.table[2].level, kMessageTableEnd);
}

TEST(MessageSource, KnowsEveryLamp) {
    const MessageSource messages = parseMessageSource("level 0\nlamp green\na\n\nlevel 1\nlamp blue\nb\n\n"
                                                      "level 2\nlamp yellow\nc\n\nlevel 3\nlamp red\nd\n");
    ASSERT_EQ(messages.table.size(), 5U);
    EXPECT_EQ(messages.table[0].messageId, 3U);
    EXPECT_EQ(messages.table[1].messageId, 1U);
    EXPECT_EQ(messages.table[2].messageId, 2U);
    EXPECT_EQ(messages.table[3].messageId, 4U);
}

TEST(MessageSource, AnEmptySourceIsATableOfItsEndMarkerAlone) {
    EXPECT_EQ(parseMessageSource("").table.size(), 1U);
    EXPECT_EQ(parseMessageSource("\n# nothing\n").table.size(), 1U);
}

TEST(MessageSource, ATextIsNeverCutShortByANulByte) {
    EXPECT_EQ(errorOf(std::string_view("level 1\nlamp blue\ngood\0hidden\n", 30)),
              "line 3: the text holds a NUL byte, which would end it");
}

TEST(MessageSource, NamesTheLineThatIsWrong) {
    EXPECT_EQ(errorOf("\nlamp green\n"), "line 2: a message begins with \"level 0\" to \"level 3\"");
    EXPECT_EQ(errorOf("level 4\n"), "line 1: a message begins with \"level 0\" to \"level 3\"");
    EXPECT_EQ(errorOf("level 12\n"), "line 1: a message begins with \"level 0\" to \"level 3\"");
    EXPECT_EQ(errorOf("level 1\nlamp white\n"),
              "line 2: the level is followed by \"lamp green\", \"lamp blue\", \"lamp yellow\" or \"lamp red\"");
    EXPECT_EQ(errorOf("level 1\n\nlamp blue\n"), "line 2: the message ends before its text");
    EXPECT_EQ(errorOf("level 1\nlamp blue\n"), "line 2: the message ends before its text");
    EXPECT_EQ(errorOf("level 1\nlamp blue\na\n\nlevel 1\n"), "line 5: level 1 has a message already");
    EXPECT_EQ(errorOf("level 1\nlamp blue\n" + std::string(4160, 'x') + "\n\n"),
              "line 4: the text is longer than 4159 bytes");
    EXPECT_EQ(errorOf("level 1\nlamp blue\n" + std::string(4159, 'x') + "\n\n"), "");
}

TEST(ShippedMessages, ServeEachLevelOnceWithTheLampItMeans) {
    std::ifstream file(TORVANE_MESSAGE_SOURCE, std::ios::binary);
    ASSERT_TRUE(file) << TORVANE_MESSAGE_SOURCE;
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const MessageSource messages = parseMessageSource(text);
    ASSERT_EQ(messages.error, "");
    ASSERT_EQ(messages.table.size(), 5U);
    const std::array<std::uint32_t, 4> lampOfLevel{kLampGreen, kLampBlue, kLampYellow, kLampRed};
    for (std::uint32_t level = 0; level < lampOfLevel.size(); ++level) {
        const MessageRecord* message = FindMessageByLevel(messages.table, level);
        ASSERT_NE(message, nullptr) << level;
        EXPECT_EQ(message->messageId, lampOfLevel[level]) << level;
        EXPECT_NE(messageText(*message).find(": "), std::string_view::npos) << "level " << level << " says no step";
        EXPECT_LE(messageText(*message).size(), 100U) << "level " << level << " is too long for its line";
    }
    EXPECT_EQ(messages.table.back().messageId, kMessageTableEnd);
    EXPECT_EQ(messages.table.back().level, kMessageTableEnd);
}

} // namespace
} // namespace torvane
