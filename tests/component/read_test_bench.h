#pragma once

#include "base/shared_number.h"
#include "discovery/physical_drive_probe.h"
#include "state/app_state.h"
#include "surface/read_test_workers.h"
#include "tests/component/started_threads.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <mutex>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::testing {

/// A test's dialog without a window: keeps what the test showed. `onStatus` runs at every status text, in the test's
/// thread.
class RecordingReadTestDisplay : public ReadTestDisplay {
  public:
    void setStatus(std::string_view text) override {
        {
            const std::lock_guard lock(mutex_);
            statuses_.emplace_back(text);
        }
        if (onStatus) {
            onStatus(text);
        }
    }
    void startProgress(int maximum) override { note("0.." + std::to_string(maximum)); }
    void setProgress(int position) override { note(std::to_string(position)); }

    [[nodiscard]] std::vector<std::string> statuses() const {
        const std::lock_guard lock(mutex_);
        return statuses_;
    }
    [[nodiscard]] std::string lastStatus() const {
        const std::lock_guard lock(mutex_);
        return statuses_.empty() ? "" : statuses_.back();
    }
    [[nodiscard]] std::vector<std::string> progress() const {
        const std::lock_guard lock(mutex_);
        return progress_;
    }

    std::function<void(std::string_view)> onStatus;

  private:
    void note(std::string text) {
        const std::lock_guard lock(mutex_);
        progress_.push_back(std::move(text));
    }

    mutable std::mutex mutex_;
    std::vector<std::string> statuses_;
    std::vector<std::string> progress_;
};

/// One read in the bench's log. Bytes.
struct LoggedRead {
    std::uint64_t offset;
    std::uint64_t length;

    bool operator==(const LoggedRead&) const = default;
    friend std::ostream& operator<<(std::ostream& stream, const LoggedRead& read) {
        return stream << "{" << read.offset << ", " << read.length << "}";
    }
};

/// Read tests on bench drives, each on a thread of its own as the program starts it.
class ReadTestBench : public ::testing::Test {
  protected:
    ReadTestBench() {
        state().activeDrive = nullptr;
        state().activeDriveChosen = 0;
    }
    ~ReadTestBench() override {
        StartedThreads::awaitAll();
        EXPECT_TRUE(state().jobs.atWork().empty());
        EXPECT_FALSE(state().jobs.active());
    }

    static AppState& state() { return appState(); }

    /// Describes drive 1, opens the bench and probes the drive. `more`: further fields in JSON, beginning with a comma.
    DriveRecord& openDrive(const std::string& size, const std::string& more = "", const std::string& pattern = "zero") {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "identity": {"product": "Under Test", "serial": "U1"},
                            "backing": {"pattern": ")" +
                        pattern + R"("}, "size": ")" + size + "\"" + more + "}");
        bench_.open();
        record_ = ProbePhysicalDrive(1);
        if (!record_) {
            throw std::runtime_error("the bench has no such drive"); // ends the test
        }
        return *record_;
    }

    /// Starts the test; its thread's handle is the caller's too.
    UniqueHandle start(ReadTestKind kind) {
        EXPECT_TRUE(startReadTest(state(), kind, *record_, display_));
        return StartedThreads::last();
    }
    static DWORD awaitEnd(const UniqueHandle& thread) {
        EXPECT_EQ(WaitForSingleObject(thread.get(), kPatienceMilliseconds), WAIT_OBJECT_0);
        DWORD code = 0;
        GetExitCodeThread(thread.get(), &code);
        return code;
    }
    /// Runs the test to its end.
    DWORD run(ReadTestKind kind) { return awaitEnd(start(kind)); }

    /// Every read of drive 1, in order, failed ones included.
    [[nodiscard]] std::vector<LoggedRead> reads() const {
        std::vector<LoggedRead> found;
        for (const std::string& line : bench_.log("target=drive:1 request=read")) {
            found.push_back({number(line, " offset="), number(line, " length=")});
        }
        return found;
    }

    /// The event log as "CATEGORY: message".
    [[nodiscard]] std::vector<std::string> events() const {
        std::vector<std::string> rows;
        for (const LogRow& row : view_.logRows()) {
            rows.push_back(row.category + ": " + row.message);
        }
        return rows;
    }
    [[nodiscard]] std::string driveStatus() const {
        const auto all = view_.driveStatuses(*record_);
        return all.empty() ? "" : all.back();
    }

    static constexpr DWORD kPatienceMilliseconds = 120000;

    TestBench bench_;
    RecordingMainView view_;
    ViewInstalled installed_{appState(), view_};
    ScriptedPrompts user_;
    StartedThreads threads_;
    std::shared_ptr<RecordingReadTestDisplay> display_ = std::make_shared<RecordingReadTestDisplay>();
    DriveRecordPtr record_; // closed before the bench

  private:
    static std::uint64_t number(const std::string& line, const std::string& field) {
        return std::stoull(line.substr(line.find(field) + field.size()));
    }
};

} // namespace torvane::testing
