#include "ui/task_bar_button.h"

#include "copy/dialogs/task_bar_progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecordingTaskBar : public TaskBar {
  public:
    explicit RecordingTaskBar(std::vector<std::string>& calls) : calls_(calls) {}
    void setState(TaskBarState state) override {
        static constexpr const char* kNames[] = {"none", "normal", "error"};
        calls_.emplace_back(kNames[static_cast<int>(state)]);
    }
    void setValue(std::uint64_t done, std::uint64_t total) override {
        calls_.push_back(std::to_string(done) + " of " + std::to_string(total));
    }

  private:
    std::vector<std::string>& calls_;
};

class TaskBarButtonTest : public ::testing::Test {
  protected:
    void attach() { button_.attach(std::make_unique<RecordingTaskBar>(calls_)); }
    std::vector<std::string> takeCalls() { return std::exchange(calls_, {}); }

    TaskBarButton button_;

  private:
    std::vector<std::string> calls_;
};

TEST_F(TaskBarButtonTest, ShowsNothingBeforeItIsThereAndThenWhatIsWanted) {
    button_.show({TaskBarState::kNormal, 1, 8});
    button_.show({TaskBarState::kNormal, 2, 8});
    EXPECT_THAT(takeCalls(), IsEmpty());
    attach();
    EXPECT_THAT(takeCalls(), ElementsAre("normal", "2 of 8"));
}

TEST_F(TaskBarButtonTest, TellsWhatHasChangedAlone) {
    attach();
    EXPECT_THAT(takeCalls(), IsEmpty());
    button_.show({TaskBarState::kNormal, 1, 8});
    EXPECT_THAT(takeCalls(), ElementsAre("normal", "1 of 8"));
    button_.show({TaskBarState::kNormal, 1, 8});
    EXPECT_THAT(takeCalls(), IsEmpty());
    button_.show({TaskBarState::kNormal, 2, 8});
    EXPECT_THAT(takeCalls(), ElementsAre("2 of 8"));
    button_.show({TaskBarState::kError, 3, 8});
    EXPECT_THAT(takeCalls(), ElementsAre("error", "3 of 8"));
    button_.show({});
    EXPECT_THAT(takeCalls(), ElementsAre("none"));
}

TEST_F(TaskBarButtonTest, IsToldAnewWhenTheTaskBarCameAgainAndNothingOnceItHasGone) {
    attach();
    button_.show({TaskBarState::kError, 3, 8});
    EXPECT_THAT(takeCalls(), ElementsAre("error", "3 of 8"));
    attach();
    EXPECT_THAT(takeCalls(), ElementsAre("error", "3 of 8"));
    button_.attach(nullptr);
    button_.show({TaskBarState::kNormal, 1, 8});
    EXPECT_THAT(takeCalls(), IsEmpty());
}

TEST(TaskBarProgress, OfARunIsRedAsSoonAsSomethingIsLost) {
    EXPECT_EQ(taskBarProgressOf({.done = 3, .total = 8, .losses = {.bytesNotCopied = 5}}),
              (TaskBarProgress{TaskBarState::kNormal, 3, 8}));
    EXPECT_EQ(taskBarProgressOf({.done = 3, .total = 8, .losses = {.failedWrites = 1}}),
              (TaskBarProgress{TaskBarState::kError, 3, 8}));
    EXPECT_EQ(taskBarProgressOf({}), (TaskBarProgress{TaskBarState::kNormal, 1, 1})) << "nothing to do is done";
}

TEST(TaskBarProgress, IsClearedAtAGoodEndAndStaysRedAtABadOne) {
    constexpr TaskBarProgress kRunning{TaskBarState::kNormal, 3, 8};
    EXPECT_EQ(taskBarProgressAtEnd(kRunning, true), TaskBarProgress{});
    EXPECT_EQ(taskBarProgressAtEnd(kRunning, false), (TaskBarProgress{TaskBarState::kError, 3, 8}));
    EXPECT_EQ(taskBarProgressAtEnd({}, false), (TaskBarProgress{TaskBarState::kError, 1, 1}));
}

} // namespace
} // namespace torvane
