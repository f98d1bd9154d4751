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
        runProgram({.startSockets =
                        [&] {
                            steps_.emplace_back("sockets");
                            return socketsStart;
                        },
                    .endSockets = [&] { steps_.emplace_back("sockets' end"); },
                    .socketsFailedText = [] { return std::string("Windows sockets initialization failed."); },
                    .runMainDialog = [&] { steps_.emplace_back("main dialog"); }});
    }

    testing::ScriptedPrompts user_;
    std::vector<std::string> steps_;
};

TEST_F(StartUp, RunsTheMainDialogBetweenTheSocketsStartAndTheirEnd) {
    run(true);
    EXPECT_THAT(steps_, ElementsAre("sockets", "main dialog", "sockets' end"));
}

TEST_F(StartUp, WithoutSocketsTellsTheUserAndEndsWithoutAWindow) {
    user_.expectWarn("Torvane", "Windows sockets initialization failed.");
    run(false);
    EXPECT_THAT(steps_, ElementsAre("sockets"));
}

} // namespace
} // namespace torvane
