#include "window/start_up.h"

#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::ElementsAre;

class StartUp : public ::testing::Test {
  protected:
    void run(bool socketsStart) {
        runProgram({.provideFiles = [&] { steps_.emplace_back("files"); },
                    .chooseFolder = [&] { steps_.emplace_back("folder"); },
                    .startSockets =
                        [&] {
                            steps_.emplace_back("sockets");
                            return socketsStart;
                        },
                    .endSockets = [&] { steps_.emplace_back("sockets' end"); },
                    .socketsFailedText = [] { return std::string("Windows sockets initialization failed."); },
                    .codePage = [&] { return codePage_; },
                    .runMainDialog = [&] { steps_.emplace_back("main dialog"); }});
    }

    testing::ScriptedPrompts user_;
    std::uint32_t codePage_ = 65001;
    std::vector<std::string> steps_;
};

TEST_F(StartUp, RunsTheMainDialogBetweenTheSocketsStartAndTheirEnd) {
    run(true);
    EXPECT_THAT(steps_, ElementsAre("files", "folder", "sockets", "main dialog", "sockets' end"));
}

TEST_F(StartUp, WithoutSocketsTellsTheUserAndEndsWithoutAWindow) {
    user_.expectWarn("Torvane", "Windows sockets initialization failed.");
    run(false);
    EXPECT_THAT(steps_, ElementsAre("files", "folder", "sockets"));
}

TEST_F(StartUp, WhereTheCodePageIsNotUtf8TellsWhatThatMeansAndGoesOn) {
    codePage_ = 1252;
    user_.expectWarn("***** OLD WINDOWS *****",
                     "This Windows does not let Torvane work in UTF-8 (its code page is 1252). Windows 10 from version "
                     "1903 on does.\n\nTorvane works all the same. But characters outside ASCII may be shown wrongly, "
                     "and images, reports and folders whose names have such characters may not be opened. Please use "
                     "names of plain letters and digits.");
    run(true);
    EXPECT_THAT(steps_, ElementsAre("files", "folder", "sockets", "main dialog", "sockets' end"));
}

} // namespace
} // namespace torvane
