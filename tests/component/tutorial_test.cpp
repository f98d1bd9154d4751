#include "settings/tutorial.h"

#include "tests/component/scratch_folder.h"
#include "ui/owned.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

using testing::readFile;
using testing::writeFile;

// A file that can only be read is as good as none: what the user would tick could not be kept either.
TEST(TutorialOnWindows, IsShownWhateverAFileHoldsThatCanOnlyBeRead) {
    const testing::ScratchFolder folder;
    const std::string holds0("\0\0\0\0", 4);
    writeFile(kTutorialFileName, holds0);
    {
        // Held open instead of marked read-only: Wine lets an administrator write to what is marked so.
        const UniqueFile reader{
            CreateFileA(kTutorialFileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)};
        ASSERT_TRUE(reader);
        EXPECT_EQ(loadTutorialFlag(kTutorialFileName), kTutorialShown);
        EXPECT_EQ(saveTutorialFlag(kTutorialFileName, kTutorialShown), 0);
        EXPECT_EQ(readFile(kTutorialFileName), holds0) << "and stays as it is";
    }
    EXPECT_EQ(loadTutorialFlag(kTutorialFileName), kTutorialHidden) << "writable again, it counts again";
}

} // namespace
} // namespace torvane
