#include "base/worker_thread.h"

#include <gtest/gtest.h>

#include <memory>

namespace torvane {
namespace {

TEST(WorkerThread, ExitsWithWhatItsWorkReturns) {
    const UniqueHandle thread = startThread([]() -> DWORD { return 77; });
    ASSERT_EQ(WaitForSingleObject(thread.get(), 60000), WAIT_OBJECT_0);
    DWORD exitCode = 0;
    ASSERT_TRUE(GetExitCodeThread(thread.get(), &exitCode));
    EXPECT_EQ(exitCode, 77U);
}

TEST(WorkerThread, LetsItsWorkGoBeforeItEnds) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    const UniqueHandle thread = startThread([held = std::move(held)]() -> DWORD { return *held == 1 ? 1 : 0; });
    ASSERT_EQ(WaitForSingleObject(thread.get(), 60000), WAIT_OBJECT_0);
    EXPECT_TRUE(watched.expired());
}

} // namespace
} // namespace torvane
