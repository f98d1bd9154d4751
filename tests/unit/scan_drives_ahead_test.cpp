#include "scan/drives_ahead.h"

#include "jobs/jobs.h"
#include "scan/scan_watch.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "tests/support/recording_main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace torvane {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using namespace std::chrono_literals;

/// Something that happens once, for which others wait.
class Event {
  public:
    void happen() {
        const std::lock_guard lock(mutex_);
        happened_ = true;
        changed_.notify_all();
    }
    /// False when it does not happen.
    bool await() {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 120s, [&] { return happened_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool happened_ = false;
};

/// Texts of several threads.
class Notes {
  public:
    void add(std::string text) {
        const std::lock_guard lock(mutex_);
        texts_.push_back(std::move(text));
    }
    [[nodiscard]] std::vector<std::string> all() const {
        const std::lock_guard lock(mutex_);
        return texts_;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> texts_;
};

class DrivesAheadTest : public ::testing::Test {
  protected:
    /// Drives of these numbers are there.
    explicit DrivesAheadTest(std::set<int> numbers = {0, 2, 19}) : numbers_(std::move(numbers)) {}

    DriveRecordPtr probe(int number) {
        asked_.add("probe " + std::to_string(number));
        if (!numbers_.contains(number)) {
            return nullptr;
        }
        LogEvent("DIAG", "probed %d", number);
        return recordOf(number);
    }
    /// Of the drive as the scan's own probe finds it.
    static DriveRecordPtr recordOf(int number) {
        DriveRecordPtr record(new DriveRecord);
        record->driveNumber = number;
        record->sizeBytes = 1000;
        record->device.descriptor = StorageDeviceTexts{};
        record->device.descriptor->serialNumber = "S" + std::to_string(number);
        record->device.identifySerial = "I" + std::to_string(number);
        return record;
    }
    ReadOnlyAnswer ask(int number) {
        asked_.add("ask " + std::to_string(number));
        LogEvent("ERROR", "asked %d", number);
        return {.loaded = true, .readOnly = number == 2, .writable = number != 2};
    }
    /// Of a drive that is listed; nothing is loaded where it has none.
    static ReadOnlyAnswer answerOf(DrivesAhead& drives, int number) {
        return drives.takeReadOnly(*recordOf(number)).value_or(ReadOnlyAnswer{});
    }
    [[nodiscard]] DriveQuestions questions() {
        return {.probe = [this](int number) { return probe(number); },
                .askReadOnly = [this](int number) { return ask(number); }};
    }
    /// As a tool that runs until it is told that nobody waits for it any more, or `mayEnd`.
    static ReadOnlyAnswer runTool(Event& begun, const std::function<bool()>& mayEnd) {
        ToolAtWork tool{.name = "diskpart", .subject = toolSubject(), .runsSince = 0ms};
        bool wanted = toolWatch()->mayBegin();
        while (wanted && !mayEnd()) {
            wanted = toolWatch()->mayGoOn(tool);
            begun.happen();
            tool.runsSince += 1000ms;
            std::this_thread::sleep_for(1ms);
        }
        toolWatch()->ended();
        LogEvent("ERROR", wanted ? "done" : "TERMINATED");
        return {.loaded = wanted, .readOnly = false, .writable = wanted};
    }
    static std::thread noRoom(const std::function<void()>& /*work*/) { return {}; }

    /// As the scan takes them.
    std::vector<std::string> takeAll(DrivesAhead& drives) {
        std::vector<std::string> taken;
        for (const int number : numbers_) {
            const std::optional<ReadOnlyAnswer> answer = drives.takeReadOnly(*recordOf(number));
            taken.push_back(std::to_string(number) + (!answer ? " not known" : "") +
                            (answer && answer->readOnly ? " read-only" : "") +
                            (answer && answer->writable ? " writable" : ""));
        }
        return taken;
    }

    std::set<int> numbers_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    Jobs jobs_;
    JobClaim claim_ = jobs_.begin(JobKind::kScan).value();
    Notes shown_;
    ScanWatch watch_{claim_, [this](const std::string& text) { shown_.add(text); }};
    Notes asked_;
};

TEST_F(DrivesAheadTest, RowsOfTheQuestionsComeInTheDrivesTurnAndThoseOfTheProbesAreTheScansOwn) {
    Event allAsked;
    DriveQuestions questions = this->questions();
    questions.askReadOnly = [&](int number) {
        const ReadOnlyAnswer answer = ask(number);
        if (number == 19) {
            allAsked.happen();
        }
        return answer;
    };
    DrivesAhead drives(questions, claim_, watch_);
    ASSERT_TRUE(allAsked.await()) << "they are asked though nobody takes an answer";
    EXPECT_THAT(view_.logRows(), IsEmpty());

    EXPECT_TRUE(answerOf(drives, 0).writable);
    EXPECT_THAT(view_.calls(), ElementsAre("log ERROR: asked 0"));
    EXPECT_TRUE(answerOf(drives, 2).readOnly);
    EXPECT_THAT(view_.calls(), ElementsAre("log ERROR: asked 0", "log ERROR: asked 2"));
    drives.finish();
    EXPECT_THAT(view_.calls(), ElementsAre("log ERROR: asked 0", "log ERROR: asked 2", "log ERROR: asked 19"))
        << "it has run, though the drive has gone";
}

TEST_F(DrivesAheadTest, NoRecordOfAProbeIsLeftWhenTheQuestionBegins) {
    static std::atomic<int> handles;
    handles = 0;
    DriveQuestions questions = this->questions();
    questions.probe = [&](int number) {
        DriveRecordPtr record = probe(number);
        if (record) {
            ++handles;
            record->handle = &handles;
            record.get_deleter().closeHandle = [](NativeHandle) { --handles; };
        }
        return record;
    };
    std::atomic<bool> left = false;
    Event lastAsked;
    questions.askReadOnly = [&](int number) {
        left = left || handles > 0;
        if (number == 19) {
            lastAsked.happen();
        }
        return ask(number);
    };
    const DrivesAhead drives(questions, claim_, watch_);
    ASSERT_TRUE(lastAsked.await());
    EXPECT_FALSE(left);
}

/// Somebody changes what is at a number after diskpart was asked about it.
class DrivesAheadOfAnother : public DrivesAheadTest, public ::testing::WithParamInterface<void (*)(DriveRecord&)> {};

TEST_P(DrivesAheadOfAnother, TheAnswerOfAnotherDriveDoesNotCount) {
    DrivesAhead drives(questions(), claim_, watch_);
    const DriveRecordPtr other = recordOf(2);
    GetParam()(*other);
    EXPECT_TRUE(drives.takeReadOnly(*other)->readOnly);
    EXPECT_TRUE(answerOf(drives, 19).writable);
    EXPECT_EQ(std::ranges::count(asked_.all(), "ask 2"), 2);
    EXPECT_EQ(std::ranges::count(asked_.all(), "ask 19"), 1);
}

INSTANTIATE_TEST_SUITE_P(Told, DrivesAheadOfAnother,
                         ::testing::Values([](DriveRecord& other) { other.device.descriptor->serialNumber = "other"; },
                                           [](DriveRecord& other) { other.device.descriptor.reset(); },
                                           [](DriveRecord& other) {
                                               other.device.descriptor->vendor = "told now, not before";
                                           },
                                           [](DriveRecord& other) { other.device.identifySerial = "other"; },
                                           [](DriveRecord& other) { other.sizeBytes = 2000; }));

TEST_F(DrivesAheadTest, ADriveThatWasNotThereIsAskedInItsTurnAndNeverBesideAnother) {
    Event thirdBegun;
    std::atomic<int> atWork = 0;
    std::atomic<bool> together = false;
    DriveQuestions questions = this->questions();
    questions.askReadOnly = [&](int number) {
        together = together || ++atWork > 1;
        if (number == 2) {
            thirdBegun.happen();
        }
        std::this_thread::sleep_for(100ms);
        const ReadOnlyAnswer answer = ask(number);
        --atWork;
        return answer;
    };
    DrivesAhead drives(questions, claim_, watch_);
    ASSERT_TRUE(thirdBegun.await());
    EXPECT_TRUE(answerOf(drives, 1).writable) << "plugged in meanwhile";
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("asked 0", "asked 1"));
    EXPECT_THAT(takeAll(drives), ElementsAre("0 writable", "2 read-only", "19 writable"));
    EXPECT_FALSE(together);
    EXPECT_EQ(std::ranges::count(asked_.all(), "ask 1"), 1);
}

TEST_F(DrivesAheadTest, AreAskedOneAfterTheOtherInTheirOrder) {
    {
        DrivesAhead drives(questions(), claim_, watch_);
        EXPECT_THAT(takeAll(drives), ElementsAre("0 writable", "2 read-only", "19 writable"));
    }
    std::vector<std::string> expected;
    for (int number = 0; number < kMaxDrives; ++number) {
        expected.push_back("probe " + std::to_string(number));
        if (numbers_.contains(number)) {
            expected.push_back("ask " + std::to_string(number));
        }
    }
    EXPECT_EQ(asked_.all(), expected);
}

TEST_F(DrivesAheadTest, WithoutRoomForAThreadAreAskedInTheirTurns) {
    DrivesAhead drives(questions(), claim_, watch_, &noRoom);
    EXPECT_THAT(asked_.all(), IsEmpty());
    EXPECT_THAT(takeAll(drives), ElementsAre("0 writable", "2 read-only", "19 writable"));
    EXPECT_THAT(asked_.all(), ElementsAre("ask 0", "ask 2", "ask 19")) << "the scan probes for itself";
}

TEST_F(DrivesAheadTest, TheToolThatTheScanWaitsForIsShownWithItsDrive) {
    watch_.enterStage("Loading");
    DriveQuestions questions = this->questions();
    Event begun;
    questions.askReadOnly = [&](int number) {
        return number != 2 ? ask(number) : runTool(begun, [&] {
            const auto texts = shown_.all();
            return std::ranges::any_of(texts, [](const std::string& text) { return text.starts_with("still"); });
        });
    };
    DrivesAhead drives(questions, claim_, watch_);
    EXPECT_THAT(takeAll(drives), ElementsAre("0 writable", "2 writable", "19 writable"));
    EXPECT_THAT(shown_.all(), Contains(::testing::StartsWith("still waiting for diskpart on drive 2, ")));
    EXPECT_EQ(shown_.all().back(), "Loading");
}

TEST_F(DrivesAheadTest, AStopEndsTheToolAtWorkAndNoOtherBegins) {
    DriveQuestions questions = this->questions();
    Event begun;
    questions.askReadOnly = [&](int number) {
        asked_.add("ask " + std::to_string(number));
        return runTool(begun, [] { return false; });
    };
    DrivesAhead drives(questions, claim_, watch_);
    ASSERT_TRUE(begun.await());
    std::thread stopping([&] {
        std::this_thread::sleep_for(200ms); // while the answer is waited for
        jobs_.askToStop();
    });
    EXPECT_FALSE(answerOf(drives, 0).loaded);
    stopping.join();
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("TERMINATED"));
    EXPECT_EQ(drives.takeReadOnly(*recordOf(2)), std::nullopt);
    drives.finish();
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("TERMINATED")) << "not asked: no row";
    EXPECT_THAT(asked_.all(), AllOf(Contains("ask 0"), Not(Contains("ask 2"))));
}

TEST_F(DrivesAheadTest, AfterAStopTheRowsOfWhatHasRunAreToldInTheDrivesOrder) {
    DriveQuestions questions = this->questions();
    Event begun;
    questions.askReadOnly = [&](int number) {
        return number < 19 ? ask(number) : runTool(begun, [] { return false; });
    };
    DrivesAhead drives(questions, claim_, watch_);
    ASSERT_TRUE(begun.await());
    jobs_.askToStop();
    EXPECT_EQ(drives.takeReadOnly(*recordOf(0)), std::nullopt) << "what comes after a stop is not known";
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("asked 0"));
    EXPECT_EQ(drives.takeReadOnly(*recordOf(2)), std::nullopt);
    EXPECT_EQ(drives.takeReadOnly(*recordOf(19)), std::nullopt);
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("asked 0", "asked 2", "TERMINATED"));
}

TEST_F(DrivesAheadTest, AfterAStopNothingIsAskedInItsTurnEither) {
    DrivesAhead drives(questions(), claim_, watch_, &noRoom);
    jobs_.askToStop();
    EXPECT_EQ(drives.takeReadOnly(*recordOf(0)), std::nullopt);
    EXPECT_THAT(asked_.all(), IsEmpty());
}

TEST_F(DrivesAheadTest, AtTheEndTheProbeAtWorkIsWaitedForAndNoQuestionBegins) {
    DriveQuestions questions = this->questions();
    Event begun;
    questions.probe = [&](int number) {
        begun.happen();
        std::this_thread::sleep_for(200ms); // four seconds for all of them
        return probe(number);
    };
    {
        const DrivesAhead drives(questions, claim_, watch_);
        ASSERT_TRUE(begun.await());
    }
    EXPECT_THAT(asked_.all(), ElementsAre("probe 0"));
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

} // namespace
} // namespace torvane
