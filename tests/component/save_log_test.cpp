#include "window/save_log.h"

#include "base/local_moment.h"
#include "base/wide_text.h"
#include "state/app_state.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/direct_waiting.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_choosers.h"
#include "tests/support/scripted_prompts.h"
#include "window/list_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

namespace torvane::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kRows = "ERROR\tgr\xC3\xBC\xC3\x9F\r\n"; // in UTF-8

class SaveLog : public ::testing::Test {
  protected:
    void save() {
        saveLogAsText([this] {
            ++asked_;
            return ansiText(L"ERROR\tgr\u00FC\u00DF\r\n"); // as the program has its texts
        });
    }
    [[nodiscard]] static std::string inFolder(const std::string& name) { return (fs::current_path() / name).string(); }
    [[nodiscard]] std::vector<std::string> events() const {
        std::vector<std::string> rows;
        for (const LogRow& row : view_.logRows()) {
            rows.push_back(row.category + ": " + row.message);
        }
        return rows;
    }

    ScratchFolder folder_;
    RecordingMainView view_;
    ViewInstalled installed_{appState(), view_};
    ScriptedChoosers choices_;
    ScriptedPrompts user_;
    int asked_ = 0;
};

TEST_F(SaveLog, WritesTheTextInUtf8AndTellsWhere) {
    const std::string path = inFolder("kept.txt");
    choices_.choose(path);
    save();
    EXPECT_EQ(readFile(path), kRows);
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Log SAVED as [" + path + "]"));
    EXPECT_THAT(choices_.shown(), ElementsAre(savedLogName(localNow()) + ": (*.txt) Text Files|*.txt"));
}

TEST_F(SaveLog, ReplacesAFileWholeThatTheUserHasChosen) {
    const std::string path = inFolder("kept.txt");
    writeFile(path, "something that is longer than the rows of the log");
    choices_.choose(path);
    save();
    EXPECT_EQ(readFile(path), kRows);
}

TEST_F(SaveLog, DoesNothingWhenTheUserCancels) {
    choices_.choose(std::nullopt);
    save();
    EXPECT_EQ(asked_, 0);
    EXPECT_TRUE(fs::is_empty(fs::current_path()));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(SaveLog, WhoLeavesADiskThatDoesNotAnswerIsToldThatItIsStillWritten) {
    const std::string path = inFolder("kept.txt");
    choices_.choose(path);
    user_.expectWarn("***** LOG NOT SAVED *****",
                     "[" + path +
                         "] is still being written: its disk does not answer. Look for the file when the disk answers "
                         "again, and save the log again if it is not there");
    {
        const LeftWaits left;
        save();
        EXPECT_FALSE(fs::exists(path));
    }
    EXPECT_EQ(readFile(path), kRows) << "it is written all the same";
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(SaveLog, LeavesAFileThatCannotBeReplacedAndSaysSo) {
    const std::string path = inFolder("kept.txt");
    writeFile(path, "old");
    ASSERT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
    choices_.choose(path);
    user_.expectStop("***** LOG NOT SAVED *****",
                     "The log could not be saved as [" + path +
                         "]. The file is read-only, or another program has it open. What was there before stays as it "
                         "was. Save the log under another name, or in another folder");
    save();
    EXPECT_EQ(readFile(path), "old");
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not SAVE log as [" + path +
                                      "]. The file is read-only, or another program has it open"));
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(SaveLog, WhereNoFileCanBeMadeSaysSo) {
    const std::string path = inFolder("no such folder\\kept.txt");
    choices_.choose(path);
    user_.expectStop("***** LOG NOT SAVED *****",
                     "The log could not be saved as [" + path +
                         "]. No file can be made there. What was there before stays as it was. Save the log under "
                         "another name, or in another folder");
    save();
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not SAVE log as [" + path + "]. No file can be made there"));
}

TEST_F(SaveLog, SavesTheDetailsOfADriveTheSameWay) {
    const std::string path = inFolder("details.txt");
    choices_.choose(path);
    saveDetailsAsText("Details HALDANE.txt", "Model  HALDANE\r\n");
    EXPECT_EQ(readFile(path), "Model  HALDANE\r\n");
    EXPECT_THAT(events(), ElementsAre("SUCCESS: Details SAVED as [" + path + "]"));
}

} // namespace
} // namespace torvane::testing
