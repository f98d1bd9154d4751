#include "copy/dialogs/destination_folder.h"

#include "state/app_state.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_choosers.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace torvane {
namespace {

using ::testing::ElementsAre;

constexpr const char* kFolderCaption = "*** ERROR ***";

class CopyChoices : public ::testing::Test {
  protected:
    static std::string here() { return std::filesystem::current_path().string(); }

    testing::ScratchFolder scratch_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    testing::ScriptedPrompts user_;
    testing::ScriptedChoosers choosers_;
};

TEST_F(CopyChoices, AFolderIsChosenWithoutMakingItTheCurrentOne) {
    const std::string before = here();
    choosers_.choose("C:\\");
    FixedText<1024> folder;
    EXPECT_EQ(ChooseDestinationFolder(folder, false), 1);
    EXPECT_EQ(folder.view(), "C:\\");
    EXPECT_EQ(here(), before);
    EXPECT_THAT(choosers_.shown(), ElementsAre("Choose Destination Folder"));
}

TEST_F(CopyChoices, AFolderCanBecomeTheCurrentOne) {
    const std::string before = here();
    std::filesystem::create_directory("chosen");
    choosers_.choose(before + "\\chosen");
    FixedText<1024> folder;
    EXPECT_EQ(ChooseDestinationFolder(folder, true), 1);
    EXPECT_EQ(here(), before + "\\chosen");
    std::filesystem::current_path(before);
}

TEST_F(CopyChoices, ACancelledFolderIsNone) {
    choosers_.choose(std::nullopt);
    user_.expectStop(kFolderCaption, "Please choose a destination folder.");
    FixedText<1024> folder;
    EXPECT_EQ(ChooseDestinationFolder(folder, true), 0);
}

TEST_F(CopyChoices, AFolderThatCannotBecomeTheCurrentOneIsTold) {
    const std::string before = here();
    const std::string missing = before + "\\100%s missing";
    choosers_.choose(missing);
    user_.expectStop(kFolderCaption, "Could not set destination directory to <" + missing + ">");
    FixedText<1024> folder;
    EXPECT_EQ(ChooseDestinationFolder(folder, true), 0);
    EXPECT_EQ(here(), before);
}

} // namespace
} // namespace torvane
