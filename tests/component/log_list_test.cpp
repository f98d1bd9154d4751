// The log list filled from other threads than its window's.

#include "base/owned_handle.h"
#include "state/log_row.h"
#include "window/log_list_delivery.h"
#include "window/log_list_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <future>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace torvane::testing {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;
using Clock = std::chrono::steady_clock;

constexpr LocalMoment kEvening{.year = 2026, .month = 11, .day = 22, .hour = 23, .minute = 59, .second = 59};
constexpr UINT kHoldMessage = WM_APP + 100; // the window's thread waits until it is let go
constexpr UINT kLogMessage = WM_APP + 101;  // the window's thread logs a row itself; wParam: its number
constexpr UINT kAskMessage = WM_APP + 102;  // lParam: an event that the window's thread sets
constexpr UINT kEndMessage = WM_APP + 103;

/// A window with a log list, on a thread of its own.
class ListWindow {
  public:
    explicit ListWindow(bool shown = true) : shown_(shown) {
        std::promise<void> made;
        std::future<void> isMade = made.get_future();
        thread_ = std::thread([this, &made] { run(made); });
        isMade.get();
    }
    ~ListWindow() { close(); }
    ListWindow(const ListWindow&) = delete;
    ListWindow& operator=(const ListWindow&) = delete;

    [[nodiscard]] HWND window() const { return window_; }
    [[nodiscard]] int rowCount() const {
        return static_cast<int>(SendMessageA(list_.window(), LVM_GETITEMCOUNT, 0, 0));
    }
    [[nodiscard]] std::string cell(int row, int column) const {
        std::array<char, 64> text{};
        LVITEMA item{};
        item.iSubItem = column;
        item.pszText = text.data();
        item.cchTextMax = static_cast<int>(text.size());
        SendMessageA(list_.window(), LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
        return text.data();
    }
    [[nodiscard]] std::vector<std::string> messages() const {
        std::vector<std::string> all;
        const int count = rowCount();
        all.reserve(static_cast<std::size_t>(count));
        for (int row = 0; row < count; ++row) {
            all.push_back(cell(row, 3));
        }
        return all;
    }
    [[nodiscard]] bool shows(int row) const {
        const auto top = static_cast<int>(SendMessageA(list_.window(), LVM_GETTOPINDEX, 0, 0));
        const auto page = static_cast<int>(SendMessageA(list_.window(), LVM_GETCOUNTPERPAGE, 0, 0));
        return row >= top && row < top + page;
    }

    void log(int number, const std::string& category = "STATUS") { log(std::to_string(number), category); }
    void log(const std::string& message, const std::string& category) {
        delivery_.carry(window_, makeLogRow(category.c_str(), kEvening, message));
    }

    /// The window's thread does nothing until `letGo`.
    void hold() {
        ResetEvent(let_.get());
        PostMessageA(window_, kHoldMessage, 0, 0);
        WaitForSingleObject(held_.get(), INFINITE);
    }
    void letGo() const { SetEvent(let_.get()); }

    /// The list itself, as the user has chosen it.
    [[nodiscard]] bool isShown() const { return IsWindowVisible(list_.window()) != FALSE; }

    void close() {
        if (thread_.joinable()) {
            SendMessageA(window_, kEndMessage, 0, 0);
            thread_.join();
        }
    }

  private:
    void run(std::promise<void>& made) {
        WNDCLASSA type{};
        type.lpfnWndProc = &ListWindow::procedure;
        type.hInstance = GetModuleHandleA(nullptr);
        type.lpszClassName = "LogListTest";
        RegisterClassA(&type);
        window_ = CreateWindowExA(0, type.lpszClassName, "", WS_POPUP, 0, 0, 1190, 240, nullptr, nullptr,
                                  type.hInstance, nullptr);
        SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        list_.create(window_, {});
        MoveWindow(list_.window(), 0, 0, 1170, 162, FALSE);
        list_.setVisible(shown_);
        delivery_.attach(list_);
        ShowWindow(window_, SW_SHOWNA);
        made.set_value();
        MSG message{};
        while (GetMessageA(&message, nullptr, 0, 0) > 0) {
            DispatchMessageA(&message);
        }
    }
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* const self = reinterpret_cast<ListWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        switch (message) {
        case LogListDelivery::kMessage:
            self->delivery_.deliver(reinterpret_cast<const LogRow*>(lParam));
            return 0;
        case kHoldMessage:
            SetEvent(self->held_.get());
            WaitForSingleObject(self->let_.get(), INFINITE);
            return 0;
        case kLogMessage:
            self->log(static_cast<int>(wParam));
            return self->rowCount();
        case kAskMessage:
            SetEvent(reinterpret_cast<HANDLE>(lParam));
            return 0;
        case kEndMessage:
            DestroyWindow(window);
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcA(window, message, wParam, lParam);
        }
    }

    UniqueHandle held_{CreateEventA(nullptr, FALSE, FALSE, nullptr)};
    UniqueHandle let_{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
    bool shown_; ///< the list
    HWND window_ = nullptr;
    LogListView list_;
    LogListDelivery delivery_;
    std::thread thread_;
};

TEST(LogList, HasEveryColumnOfARow) {
    ListWindow window;
    window.log("text", "ERROR");
    ASSERT_EQ(window.rowCount(), 1);
    EXPECT_EQ(window.cell(0, 0), "ERROR");
    EXPECT_EQ(window.cell(0, 1), "11/22/2026");
    EXPECT_EQ(window.cell(0, 2), "23:59:59");
    EXPECT_EQ(window.cell(0, 3), "text");
}

// A job does not wait for its rows; whoever asks the list afterwards finds them.
TEST(LogList, HasTheRowsOfAWindowThatWasBusyBeforeAnythingLater) {
    ListWindow window;
    window.hold();
    window.log(0); // would not return
    window.log(1);
    window.log(2);
    std::thread([&] { window.letGo(); }).detach();
    EXPECT_THAT(window.messages(), ElementsAre("0", "1", "2"));
    EXPECT_TRUE(window.shows(2));
}

TEST(LogList, HasTheRowOfItsOwnThreadBehindThoseOfOthers) {
    ListWindow window;
    window.hold();
    window.log(0);
    // Sent, so that it comes while the first row may not have been taken yet.
    std::future<LRESULT> counted =
        std::async(std::launch::async, [&] { return SendMessageA(window.window(), kLogMessage, 1, 0); });
    window.letGo();
    EXPECT_EQ(counted.get(), 2) << "the row is there on return";
    EXPECT_THAT(window.messages(), ElementsAre("0", "1"));
}

// The panel that the user has closed stays closed, whichever way the rows come.
TEST(LogList, StaysHiddenOrShown) {
    for (const bool shown : {false, true}) {
        ListWindow window(shown);
        window.log(0);
        EXPECT_EQ(window.rowCount(), 1);
        EXPECT_EQ(window.isShown(), shown);
        window.hold();
        window.log(1);
        window.log(2);
        window.letGo();
        EXPECT_EQ(window.rowCount(), 3);
        EXPECT_EQ(window.isShown(), shown);
    }
}

TEST(LogList, LetsAJobWaitThatIsAWholeQueueAhead) {
    constexpr int kRows = 1000;
    ListWindow window;
    window.hold();
    std::atomic<int> logged = 0;
    std::thread job([&] {
        for (; logged < kRows; ++logged) {
            window.log(logged);
        }
    });
    while (logged < 256) {
        std::this_thread::sleep_for(milliseconds(10));
    }
    std::this_thread::sleep_for(milliseconds(200));
    EXPECT_EQ(logged, 256);
    window.letGo();
    job.join();
    const std::vector<std::string> messages = window.messages();
    ASSERT_EQ(messages.size(), std::size_t{kRows});
    for (int i = 0; i < kRows; ++i) {
        ASSERT_EQ(messages[static_cast<std::size_t>(i)], std::to_string(i));
    }
}

TEST(LogList, LosesAndDoublesNothingOfManyThreads) {
    constexpr int kThreads = 4;
    constexpr int kRows = 1000;
    ListWindow window;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&window, thread] {
            for (int i = 0; i < kRows; ++i) {
                window.log(i, std::to_string(thread));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_EQ(window.rowCount(), kThreads * kRows);
    std::map<std::string, int> next;
    for (int row = 0; row < kThreads * kRows; ++row) {
        const std::string thread = window.cell(row, 0);
        ASSERT_EQ(window.cell(row, 3), std::to_string(next[thread]++)) << "of thread " << thread;
    }
}

TEST(LogList, IgnoresARowWhenItsWindowHasGone) {
    ListWindow window;
    window.close();
    window.log(0);
    window.log(1);
    EXPECT_EQ(window.rowCount(), 0);
}

/// Asks the window again and again, by a message that comes behind all that are posted, and keeps how long an answer
/// took at most.
class AnswerProbe {
  public:
    explicit AnswerProbe(HWND window) : thread_([this, window] { ask(window); }) {}
    ~AnswerProbe() { end(); }
    AnswerProbe(const AnswerProbe&) = delete;
    AnswerProbe& operator=(const AnswerProbe&) = delete;

    /// Ends the questions.
    milliseconds worst() {
        end();
        return worst_;
    }

  private:
    void ask(HWND window) {
        while (!ended_) {
            const auto asked = Clock::now();
            PostMessageA(window, kAskMessage, 0, reinterpret_cast<LPARAM>(answered_.get()));
            WaitForSingleObject(answered_.get(), INFINITE);
            worst_ = std::max(worst_, std::chrono::duration_cast<milliseconds>(Clock::now() - asked));
            std::this_thread::sleep_for(milliseconds(10));
        }
    }
    void end() {
        ended_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
    }

    UniqueHandle answered_{CreateEventA(nullptr, FALSE, FALSE, nullptr)};
    std::atomic<bool> ended_ = false;
    milliseconds worst_{0};
    std::thread thread_;
};

// A night of bad blocks, by a job that does nothing but log.
TEST(LogList, TakesAHundredThousandRowsAsFastAtTheEndAsAtTheBeginning) {
    constexpr int kRows = 100'000;
    constexpr int kPart = 10'000;
    ListWindow window;
    AnswerProbe probe(window.window());
    std::vector<double> microseconds; // a row's, part by part
    microseconds.reserve(kRows / kPart);
    int logged = 0;
    while (logged < kRows) {
        const auto begin = Clock::now();
        for (int i = 0; i < kPart; ++i, ++logged) {
            window.log(logged, "ERROR");
        }
        microseconds.push_back(std::chrono::duration<double, std::micro>(Clock::now() - begin).count() / kPart);
    }
    const milliseconds worst = probe.worst();
    for (const double each : microseconds) {
        std::printf("%.1f us ", each);
    }
    std::printf("a row; the window's worst answer: %d ms\n", static_cast<int>(worst.count()));

    ASSERT_EQ(window.rowCount(), kRows);
    for (int row = 0; row < kRows; row += 997) {
        EXPECT_EQ(window.cell(row, 3), std::to_string(row));
    }
    EXPECT_TRUE(window.shows(kRows - 1));
    // A busy machine makes a part slower, never faster. A list in which each row costs what there are rows would be ten
    // times as slow.
    EXPECT_LT(*std::min_element(microseconds.end() - 3, microseconds.end()),
              4 * *std::min_element(microseconds.begin(), microseconds.begin() + 3));
    // A window that did not come to its other messages would answer when the last row is there.
    EXPECT_LT(worst, milliseconds(2000));
}

} // namespace
} // namespace torvane::testing
