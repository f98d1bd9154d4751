#include "settings/messages.h"

#include "settings/message_file.h"
#include "state/app_state.h"
#include "tests/component/package_folder.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/recording_main_view.h"
#include "ui/owned.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace torvane {
namespace {

using testing::readFile;
using testing::writeFile;

constexpr const char* kNewFile = "Message.db.new";

MessageRecord record(std::uint32_t id, std::uint32_t level, std::string_view text) {
    MessageRecord made;
    made.messageId = id;
    made.level = level;
    setMessageText(made, text);
    return made;
}

std::string bytesOf(const MessageTable& table) {
    const auto bytes = serializeMessageTable(table);
    return {bytes.begin(), bytes.end()};
}

const MessageTable& oldTable() {
    static const MessageTable table{record(3, 0, "old green"), record(4, 3, "old red"),
                                    record(kMessageTableEnd, kMessageTableEnd, "")};
    return table;
}

const MessageTable& newTable() {
    static const MessageTable table{record(3, 0, "new green"), record(4, 3, "new red"),
                                    record(kMessageTableEnd, kMessageTableEnd, "")};
    return table;
}

class Messages : public ::testing::Test {
  protected:
    void SetUp() override { appState().messages.clear(); }
    void TearDown() override { appState().messages.clear(); }

    static std::vector<std::string> loadedTexts() {
        std::vector<std::string> texts;
        for (const MessageRecord& message : appState().messages) {
            texts.emplace_back(messageText(message));
        }
        return texts;
    }

    testing::ScratchFolder folder_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
};

using Texts = std::vector<std::string>;

TEST_F(Messages, AreLoadedInFileOrder) {
    writeFile(kMessageFileName, bytesOf(oldTable()));
    EXPECT_EQ(LoadMessages(appState().messages), 1);
    EXPECT_EQ(loadedTexts(), (Texts{"old green", "old red", ""}));
    EXPECT_TRUE(view_.logRows().empty());
    EXPECT_EQ(readFile(kMessageFileName), bytesOf(oldTable())) << "loading changes nothing";
}

TEST_F(Messages, MissingAreLoggedOnce) {
    EXPECT_EQ(LoadMessages(appState().messages), 0);
    ASSERT_EQ(view_.logRows().size(), 1U);
    EXPECT_EQ(view_.logRows()[0].category, "ERROR");
    EXPECT_EQ(view_.logRows()[0].message, "Could not open [Message.db] for message load. Exiting");
    EXPECT_TRUE(appState().messages.empty());
}

TEST_F(Messages, ThatCannotBeWrittenCountAsMissing) {
    writeFile(kMessageFileName, bytesOf(oldTable()));
    const UniqueFile heldOpen{
        CreateFileA(kMessageFileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)};
    ASSERT_TRUE(heldOpen);
    EXPECT_EQ(LoadMessages(appState().messages), 0);
    EXPECT_TRUE(appState().messages.empty());
}

TEST_F(Messages, TruncatedLoseTheirLastRecord) {
    const std::string whole = bytesOf(oldTable());
    writeFile(kMessageFileName, whole.substr(0, 2 * kMessageRecordBytes - 1));
    EXPECT_EQ(LoadMessages(appState().messages), 1);
    EXPECT_EQ(loadedTexts(), (Texts{"old green"}));
    EXPECT_EQ(FindMessageByLevel(appState().messages, 3), nullptr);
}

TEST_F(Messages, EmptyAreAnEmptyTable) {
    writeFile(kMessageFileName, "");
    appState().messages = oldTable();
    EXPECT_EQ(LoadMessages(appState().messages), 1);
    EXPECT_TRUE(appState().messages.empty());
    EXPECT_EQ(FindMessageByLevel(appState().messages, 0), nullptr);
}

TEST_F(Messages, OversizedAreCutAtTheLimit) {
    writeFile(kMessageFileName, std::string((kMaxMessageRecords + 3) * kMessageRecordBytes, 'x'));
    EXPECT_EQ(LoadMessages(appState().messages), 1);
    EXPECT_EQ(appState().messages.size(), kMaxMessageRecords);
    EXPECT_EQ(FindMessageByLevel(appState().messages, 0), nullptr);
}

/// As many records as a table takes, and `more` of them.
std::string oversizedFile(std::size_t more) {
    MessageTable table(kMaxMessageRecords + more, record(3, 0, "one of many"));
    setMessageText(table.back(), "the last of many");
    return bytesOf(table);
}

TEST_F(Messages, ThatWereCutAtTheLimitAreNeverSavedOverTheRest) {
    const std::string whole = oversizedFile(1);
    writeFile(kMessageFileName, whole);
    ASSERT_EQ(LoadMessages(appState().messages), 1);
    MessageTable edited = appState().messages;
    setMessageText(edited.front(), "edited");
    EXPECT_EQ(saveMessages(appState().messages, edited), 0);
    EXPECT_TRUE(readFile(kMessageFileName) == whole) << "every record is still there";
    EXPECT_EQ(messageText(appState().messages.front()), "one of many");
    EXPECT_EQ(GetFileAttributesA(kNewFile), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(view_.messages("ERROR"),
              (Texts{"Could not SAVE message file: [Message.db] holds more messages than were loaded"}));
}

TEST_F(Messages, UpToTheLimitAreSaved) {
    writeFile(kMessageFileName, oversizedFile(0));
    ASSERT_EQ(LoadMessages(appState().messages), 1);
    MessageTable edited = appState().messages;
    setMessageText(edited.front(), "edited");
    EXPECT_EQ(saveMessages(appState().messages, edited), 1);
    EXPECT_TRUE(readFile(kMessageFileName) == bytesOf(edited));
}

TEST_F(Messages, ThatSomebodyAddedSinceAreNotSavedOver) {
    writeFile(kMessageFileName, bytesOf(oldTable()));
    ASSERT_EQ(LoadMessages(appState().messages), 1);
    MessageTable longer = oldTable();
    longer.push_back(record(9, 9, "added since"));
    writeFile(kMessageFileName, bytesOf(longer));
    EXPECT_EQ(saveMessages(appState().messages, newTable()), 0);
    EXPECT_EQ(readFile(kMessageFileName), bytesOf(longer));
}

TEST_F(Messages, WithoutEndMarkerEndWithTheFile) {
    writeFile(kMessageFileName, bytesOf({record(3, 0, "only")}));
    EXPECT_EQ(LoadMessages(appState().messages), 1);
    EXPECT_NE(FindMessageByLevel(appState().messages, 0), nullptr);
    EXPECT_EQ(FindMessageByLevel(appState().messages, 1), nullptr);
}

TEST_F(Messages, AreSavedWhole) {
    writeFile(kMessageFileName, bytesOf(oldTable()));
    EXPECT_EQ(saveMessages(appState().messages, newTable()), 1);
    EXPECT_EQ(readFile(kMessageFileName), bytesOf(newTable()));
    EXPECT_EQ(loadedTexts(), (Texts{"new green", "new red", ""}));
    EXPECT_EQ(GetFileAttributesA(kNewFile), INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(view_.logRows().empty());
}

TEST_F(Messages, AreSavedWhereNoFileWas) {
    EXPECT_EQ(saveMessages(appState().messages, newTable()), 1);
    EXPECT_EQ(readFile(kMessageFileName), bytesOf(newTable()));
}

TEST_F(Messages, OfACrashedSaveAreTheOldOnes) {
    writeFile(kMessageFileName, bytesOf(oldTable()));
    writeFile(kNewFile, bytesOf(newTable()).substr(0, 5000));
    EXPECT_EQ(LoadMessages(appState().messages), 1);
    EXPECT_EQ(loadedTexts(), (Texts{"old green", "old red", ""}));
}

TEST_F(Messages, AreSavedOverWhatACrashedSaveLeft) {
    writeFile(kMessageFileName, bytesOf(oldTable()));
    writeFile(kNewFile, std::string(100000, 'x'));
    EXPECT_EQ(saveMessages(appState().messages, newTable()), 1);
    EXPECT_EQ(readFile(kMessageFileName), bytesOf(newTable()));
    EXPECT_EQ(GetFileAttributesA(kNewFile), INVALID_FILE_ATTRIBUTES);
}

TEST_F(Messages, StayAsTheyAreWhenTheNewFileCannotBeMade) {
    writeFile(kMessageFileName, bytesOf(oldTable()));
    ASSERT_EQ(LoadMessages(appState().messages), 1);
    ASSERT_TRUE(CreateDirectoryA(kNewFile, nullptr));
    EXPECT_EQ(saveMessages(appState().messages, newTable()), 0);
    EXPECT_EQ(readFile(kMessageFileName), bytesOf(oldTable()));
    EXPECT_EQ(loadedTexts(), (Texts{"old green", "old red", ""}));
    EXPECT_EQ(view_.messages("ERROR"), (Texts{"Could not SAVE message file"}));
}

TEST_F(Messages, StayAsTheyAreWhenTheFileCannotBeReplaced) {
    writeFile(kMessageFileName, bytesOf(oldTable()));
    ASSERT_EQ(LoadMessages(appState().messages), 1);
    {
        const UniqueFile heldOpen{CreateFileA(kMessageFileName, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                              nullptr, OPEN_EXISTING, 0, nullptr)};
        ASSERT_TRUE(heldOpen);
        EXPECT_EQ(saveMessages(appState().messages, newTable()), 0);
    }
    EXPECT_EQ(readFile(kMessageFileName), bytesOf(oldTable()));
    EXPECT_EQ(loadedTexts(), (Texts{"old green", "old red", ""}));
    EXPECT_EQ(GetFileAttributesA(kNewFile), INVALID_FILE_ATTRIBUTES) << "the half-done file is removed";
}

TEST_F(Messages, AsShippedServeEveryLevel) {
    ASSERT_TRUE(CopyFileA((testing::packageFolder() / "Message.db").string().c_str(), kMessageFileName, FALSE));
    ASSERT_EQ(LoadMessages(appState().messages), 1);
    EXPECT_EQ(appState().messages.size(), 5U);
    const std::array<std::uint32_t, 4> lampOfLevel{kLampGreen, kLampBlue, kLampYellow, kLampRed};
    for (std::uint32_t level = 0; level < 4; ++level) {
        const MessageRecord* message = FindMessageByLevel(appState().messages, level);
        ASSERT_NE(message, nullptr) << level;
        EXPECT_EQ(message->messageId, lampOfLevel[level]);
    }
    EXPECT_EQ(appState().messages.back().messageId, kMessageTableEnd);
    EXPECT_EQ(appState().messages.back().level, kMessageTableEnd);
}

} // namespace
} // namespace torvane
