#include "monitoring/started_ahead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class StartedAheadTest : public ::testing::Test {
  protected:
    struct Command {
        int number;
        const std::set<int>* done;
        [[nodiscard]] bool hasEnded() const { return done->contains(number); }
    };
    using Ahead = StartedAhead<int, Command>;

    [[nodiscard]] Ahead ahead(int mostAtOnce) {
        return {{1, 2, 3, 4, 5}, mostAtOnce, [this](int number) -> std::optional<Command> {
                    tried_.push_back(number);
                    return fails_.contains(number) ? std::nullopt : std::optional<Command>({number, &done_});
                }};
    }
    static Command* find(Ahead& ahead, int number) {
        return ahead.find([&](int plan) { return plan == number; });
    }

    std::vector<int> tried_;
    std::set<int> fails_;
    std::set<int> done_;
};

TEST_F(StartedAheadTest, StartsNoMoreThanMayRunAtOnceInTheirOrder) {
    Ahead commands = ahead(2);
    EXPECT_THAT(tried_, IsEmpty());
    commands.startMore();
    commands.startMore();
    EXPECT_THAT(tried_, ElementsAre(1, 2));
}

TEST_F(StartedAheadTest, StartsTheNextOneWhenAnyHasEnded) {
    Ahead commands = ahead(2);
    commands.startMore();
    done_ = {2};
    commands.startMore();
    EXPECT_THAT(tried_, ElementsAre(1, 2, 3));
    done_ = {1, 2, 3};
    commands.startMore();
    EXPECT_THAT(tried_, ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(StartedAheadTest, StartsEachOnce) {
    Ahead commands = ahead(9);
    commands.startMore();
    done_ = {1, 2, 3, 4, 5};
    commands.startMore();
    EXPECT_THAT(tried_, ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(StartedAheadTest, FindsWhatWasStartedWhetherItRunsOrNot) {
    Ahead commands = ahead(2);
    commands.startMore();
    done_ = {1};
    ASSERT_NE(find(commands, 1), nullptr);
    EXPECT_EQ(find(commands, 1)->number, 1);
    EXPECT_EQ(find(commands, 2)->number, 2);
    EXPECT_EQ(find(commands, 3), nullptr) << "its turn has not come";
    EXPECT_EQ(find(commands, 9), nullptr) << "nobody has planned it";
}

TEST_F(StartedAheadTest, BehindOneThatCannotBeStartedNoneIs) {
    fails_ = {2};
    Ahead commands = ahead(9);
    commands.startMore();
    done_ = {1};
    commands.startMore();
    EXPECT_THAT(tried_, ElementsAre(1, 2));
    EXPECT_EQ(find(commands, 2), nullptr);
    EXPECT_EQ(find(commands, 3), nullptr);
}

TEST_F(StartedAheadTest, GoesThroughAllThatWereStarted) {
    fails_ = {4};
    Ahead commands = ahead(9);
    commands.startMore();
    std::vector<int> seen;
    commands.forEach([&](const Command& command) { seen.push_back(command.number); });
    EXPECT_THAT(seen, ElementsAre(1, 2, 3));
}

} // namespace
} // namespace torvane
