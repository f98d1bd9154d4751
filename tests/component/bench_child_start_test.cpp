#include "workbench/hooks/start_again.h"

#include <gtest/gtest.h>

namespace torvane::bench {
namespace {

/// Fails with `error` until it was called `failures` times; counts its calls.
struct FailingStart {
    int failures;
    DWORD error;
    int& calls;
    DWORD operator()() const { return calls++ < failures ? error : 0; }
};

TEST(BenchChildStart, AChildThatWasLostIsStartedAgain) {
    int calls = 0;
    EXPECT_EQ(startAgainWhenLost(FailingStart{3, ERROR_INTERNAL_ERROR, calls}), 0U);
    EXPECT_EQ(calls, 4);
}

TEST(BenchChildStart, AChildThatIsLostOverAndOverIsGivenUp) {
    int calls = 0;
    EXPECT_EQ(startAgainWhenLost(FailingStart{99, ERROR_INTERNAL_ERROR, calls}),
              static_cast<DWORD>(ERROR_INTERNAL_ERROR));
    EXPECT_EQ(calls, 4);
}

TEST(BenchChildStart, AChildThatStartsOrFailsOtherwiseIsStartedOnce) {
    int calls = 0;
    EXPECT_EQ(startAgainWhenLost(FailingStart{0, 0, calls}), 0U);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(startAgainWhenLost(FailingStart{99, ERROR_FILE_NOT_FOUND, calls}),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(calls, 2);
}

} // namespace
} // namespace torvane::bench
