#include "tests/unit/surface_scripted_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace torvane {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using testing::ReadRequest;
using testing::ScriptedReadTest;

constexpr std::uint64_t kSize = std::uint64_t{20} << 30;

/// One of the three tests, and where its drive's record tells of it.
struct Kind {
    ReadTestKind kind;
    std::uint32_t (*run)(ReadTestJob&);
    const char* name;
    SharedNumber<std::int32_t> ReadTestsAtWork::*runs;
    SharedNumber<ReadTestResult> DriveRecord::*result;
};

class ReadTestOfAnyKind : public ::testing::TestWithParam<Kind> {
  protected:
    ReadTestOfAnyKind() {
        test_.drive.driveNumber = 3;
        test_.drive.model.assign("HALDANE");
        test_.drive.serialNumber.assign("HD5");
    }
    void run() { test_.run(GetParam().kind, GetParam().run); }
    [[nodiscard]] std::int32_t runs() const { return test_.drive.readTestsAtWork.*GetParam().runs; }
    /// The row of the day's log file, of this test.
    [[nodiscard]] static std::string row(const std::string& end) {
        return std::string(GetParam().name) + " of disk 003 - HALDANE HD5, 21474836480 bytes" + end;
    }

    ScriptedReadTest test_{kSize};
};

TEST_P(ReadTestOfAnyKind, IsAtWorkUntilItShowsHowItEnded) {
    std::vector<std::int32_t> whileReading;
    std::vector<std::pair<std::int32_t, std::string>> whileShowing;
    test_.afterRead = [&] { whileReading.push_back(runs()); };
    test_.onStatus = [&](std::string_view text) { whileShowing.emplace_back(runs(), text); };
    run();
    EXPECT_THAT(whileReading, Each(1));
    EXPECT_EQ(runs(), 0);
    ASSERT_FALSE(whileShowing.empty());
    EXPECT_EQ(whileShowing.back().first, 0) << whileShowing.back().second << ": a report says the same by then";
}

TEST_P(ReadTestOfAnyKind, IsOverWhenItFails) {
    test_.readFails = [](const ReadRequest&) { return true; };
    std::int32_t atItsEnd = 1;
    test_.onStatus = [&](std::string_view) { atItsEnd = runs(); };
    run();
    EXPECT_EQ(atItsEnd, 0);
    EXPECT_EQ(runs(), 0);
    EXPECT_EQ(test_.drive.*GetParam().result, ReadTestResult::kFailed);
}

TEST_P(ReadTestOfAnyKind, TouchesNoOthersCount) {
    test_.afterRead = [&] {
        const ReadTestsAtWork& atWork = test_.drive.readTestsAtWork;
        EXPECT_EQ(atWork.shortTests + atWork.criticalTests + atWork.nistTests, 1);
    };
    run();
}

TEST_P(ReadTestOfAnyKind, TellsItsBeginningAndItsEndInTheFile) {
    run();
    EXPECT_THAT(test_.jobRows,
                ElementsAre(row(" begins"), row(" ended: COMPLETED " + std::string(GetParam().name) + " PASSED")));
}

TEST_P(ReadTestOfAnyKind, TellsInTheFileWhereItFailed) {
    test_.readFails = [](const ReadRequest&) { return true; };
    run();
    ASSERT_EQ(test_.jobRows.size(), 2U);
    EXPECT_THAT(test_.jobRows[1],
                ::testing::StartsWith(row(" ended: BAD " + std::string(GetParam().name) + " FAILED at sector ")));
}

INSTANTIATE_TEST_SUITE_P(All, ReadTestOfAnyKind,
                         ::testing::Values(Kind{kShortReadTest, runShortTest, "Short Read Test",
                                                &ReadTestsAtWork::shortTests, &DriveRecord::shortTestResult},
                                           Kind{kCriticalReadTest, runCriticalTest, "Critical Read Test",
                                                &ReadTestsAtWork::criticalTests, &DriveRecord::criticalTestResult},
                                           Kind{kNistReadTest, runNistTest, "NIST Read Test",
                                                &ReadTestsAtWork::nistTests, &DriveRecord::nistTestResult}),
                         [](const auto& test) { return std::string(test.param.name).substr(0, 4); });

// Two runs of a Short test may go on at once: the record is not over when the first of them is.
TEST(ReadTestAtWork, CountsEveryRun) {
    DriveRecord drive;
    const ReadTestAtWork first(drive, kShortReadTest);
    {
        const ReadTestAtWork second(drive, kShortReadTest);
        EXPECT_EQ(drive.readTestsAtWork.shortTests, 2);
    }
    EXPECT_EQ(drive.readTestsAtWork.shortTests, 1);
}

} // namespace
} // namespace torvane
