#include "window/log_row_queue.h"

#include "state/main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace torvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

LogRow row(const std::string& message, const std::string& category = "STATUS") {
    return {category, "11/22/2026", "23:59:59", message};
}

std::vector<std::string> messagesOf(const std::vector<LogRow>& rows) {
    std::vector<std::string> messages;
    messages.reserve(rows.size());
    for (const LogRow& each : rows) {
        messages.push_back(each.message);
    }
    return messages;
}

class LogRowQueueTest : public ::testing::Test {
  protected:
    bool put(const std::string& message) {
        return queue_.put(row(message), [this] {
            ++announced_;
            return true;
        });
    }

    LogRowQueue queue_{3};
    int announced_ = 0;
};

TEST_F(LogRowQueueTest, GivesTheRowsInTheirOrderOnce) {
    EXPECT_TRUE(put("first"));
    EXPECT_TRUE(put("second"));
    EXPECT_THAT(messagesOf(queue_.takeAll()), ElementsAre("first", "second"));
    EXPECT_THAT(queue_.takeAll(), IsEmpty());
}

TEST_F(LogRowQueueTest, AnnouncesAnewWhereTheTakerIsHeldUp) {
    EXPECT_TRUE(put("first"));
    std::this_thread::sleep_for(LogRowQueue::kPatience);
    EXPECT_TRUE(put("second"));
    EXPECT_EQ(announced_, 2);
    EXPECT_THAT(messagesOf(queue_.takeAll()), ElementsAre("first", "second"));
}

TEST_F(LogRowQueueTest, KeepsEveryColumn) {
    EXPECT_TRUE(queue_.put({"ERROR", "01/02/2026", "03:04:05", "text"}, [] { return true; }));
    const std::vector<LogRow> rows = queue_.takeAll();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].category, "ERROR");
    EXPECT_EQ(rows[0].date, "01/02/2026");
    EXPECT_EQ(rows[0].time, "03:04:05");
    EXPECT_EQ(rows[0].message, "text");
}

TEST_F(LogRowQueueTest, AnnouncesARowWhenTheTakerDoesNotComeByHimself) {
    put("first");
    put("second");
    EXPECT_EQ(announced_, 1);
    EXPECT_THAT(messagesOf(queue_.takeAllOrRest()), ElementsAre("first", "second"));
    put("third");
    EXPECT_EQ(announced_, 1) << "he comes again";
    // Another takes what is there in between.
    EXPECT_THAT(messagesOf(queue_.takeAll()), ElementsAre("third"));
    put("fourth");
    EXPECT_EQ(announced_, 1);
    EXPECT_THAT(messagesOf(queue_.takeAllOrRest()), ElementsAre("fourth"));
    EXPECT_THAT(queue_.takeAllOrRest(), IsEmpty());
    put("fifth");
    EXPECT_EQ(announced_, 2);
}

TEST_F(LogRowQueueTest, TakesNoMoreThanItHolds) {
    EXPECT_TRUE(put("1"));
    EXPECT_TRUE(put("2"));
    EXPECT_TRUE(put("3"));
    EXPECT_FALSE(put("4"));
    EXPECT_THAT(messagesOf(queue_.takeAll()), ElementsAre("1", "2", "3"));
    EXPECT_TRUE(put("5"));
    EXPECT_THAT(messagesOf(queue_.takeAll()), ElementsAre("5"));
}

// Nobody would ever take it.
TEST_F(LogRowQueueTest, DoesNotTakeARowThatCouldNotBeAnnounced) {
    EXPECT_FALSE(queue_.put(row("lost"), [] { return false; }));
    EXPECT_THAT(queue_.takeAll(), IsEmpty());
    EXPECT_TRUE(put("next"));
    EXPECT_EQ(announced_, 1);
}

/// Takes what is announced, as the window's thread does.
class Taker {
  public:
    explicit Taker(LogRowQueue& queue) : queue_(queue) {}

    bool announce() {
        ++announcements_;
        return true;
    }

    /// Until `count` rows have come: waits for an announcement, then takes until there are none.
    void take(std::size_t count) {
        int seen = 0;
        while (taken_.size() < count) {
            while (announcements_ == seen) {
                std::this_thread::yield();
            }
            seen = announcements_;
            while (takeOrRest()) {
            }
        }
    }
    [[nodiscard]] const std::vector<LogRow>& taken() const { return taken_; }

  private:
    bool takeOrRest() {
        const std::vector<LogRow> rows = queue_.takeAllOrRest();
        taken_.insert(taken_.end(), rows.begin(), rows.end());
        return !rows.empty();
    }

    LogRowQueue& queue_;
    std::atomic<int> announcements_{0};
    std::vector<LogRow> taken_;
};

TEST(LogRowQueueThreads, LoseAndDoubleNothingAndKeepTheOrderOfEach) {
    constexpr int kThreads = 4;
    constexpr int kRows = 2000;
    LogRowQueue queue(16);
    Taker taker(queue);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < kRows; ++i) {
                while (!queue.put(row(std::to_string(i), std::to_string(thread)), [&] { return taker.announce(); })) {
                    std::this_thread::yield();
                }
            }
        });
    }
    taker.take(std::size_t{kThreads} * kRows);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(queue.takeAll(), IsEmpty());
    EXPECT_EQ(taker.taken().size(), std::size_t{kThreads} * kRows);
    std::map<std::string, int> next;
    for (const LogRow& each : taker.taken()) {
        ASSERT_EQ(each.message, std::to_string(next[each.category]++)) << "of thread " << each.category;
    }
}

} // namespace
} // namespace torvane::testing
