// The monitoring tool fails in front of the whole program: nothing hangs, nothing crashes, the log tells.

#include "tests/support/leftover_report.h"
#include "tests/ui/health_bench.h"
#include "tests/ui/health_panel_reader.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

namespace torvane::driver {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::Not;
using ::testing::StartsWith;

/// Each test begins with the shipped tool and without a report, and does something to the tool in the program's folder.
class MonitoringToolTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return soundDriveBench(); }
    void SetUp() override {
        UiTest::SetUp();
        std::filesystem::remove(folder() / "smartctl.exe");
        std::filesystem::copy_file(packageFolder() / "smartctl.exe", folder() / "smartctl.exe");
        std::filesystem::remove(folder() / "PHYS0.txt");
        rowsBefore_ = torvane().logList().rowCount();
    }

    [[nodiscard]] std::filesystem::path folder() const { return program().folder(); }

    void removeTool() const { ASSERT_TRUE(std::filesystem::remove(folder() / "smartctl.exe")); }

    /// From now on the tool prints nothing.
    void silenceTool() const {
        removeTool();
        std::filesystem::copy_file(TORVANE_SMARTCTL_PROGRAM, folder() / "smartctl.exe");
    }

    void loadDrives() const {
        torvane().loadDrives();
        ASSERT_EQ(torvane().driveList().rowCount(), 1);
        EXPECT_EQ(torvane().log().back().message, "Drive Scan Completed: [1] Drives Found");
    }

    /// What the log has got since the test began, as "TYPE: message".
    [[nodiscard]] std::vector<std::string> log() const { return torvane().logRowsFrom(rowsBefore_); }

    void expectWhiteLamp(const char* sentence = "SMART could not be read.") const {
        clickAndExpectPanel(torvane(), {"SOUND", kStandardPanel, {}, "white", sentence});
    }

  private:
    int rowsBefore_ = 0;
};

/// Attribute lines as smartctl -x prints them.
constexpr const char* kFailingAttributes = "ID# ATTRIBUTE_NAME          FLAGS    VALUE WORST THRESH FAIL RAW_VALUE\r\n"
                                           "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    77\r\n"
                                           "  9 Power_On_Hours          -O--CK   092   092   000    -    30000\r\n";
const std::array<NeedleValue, kDialCount> kFailingNeedles{0.5, 0.77, kBlank, kBlank, kBlank, kBlank};

TEST_F(MonitoringToolTest, AbsentLeavesTheWhiteLampAndTellsTheLog) {
    removeTool();
    loadDrives();
    EXPECT_THAT(log(), Contains("ERROR: PARSE_BuildDataFile: [Drive Data File.txt] CreateProcess FAILED"));
    EXPECT_THAT(log(), Contains("INVALID: Could not build [Drive Data File.txt]"));
    EXPECT_THAT(log(), Contains("ERROR: Could not load SMART [PHYS0.txt] File for Processing"));
    expectWhiteLamp("SMART could not be read: smartctl.exe is missing.");
}

TEST_F(MonitoringToolTest, SilentLeavesTheWhiteLampAndTellsTheLog) {
    silenceTool();
    loadDrives();
    EXPECT_THAT(log(), Contains("ERROR: Could not load SMART [PHYS0.txt] File for Processing"));
    EXPECT_THAT(log(), Each(Not(StartsWith("INVALID"))));
    expectWhiteLamp();
}

TEST_F(MonitoringToolTest, AReportOfAnEarlierScanIsReadWhereThisOneLeftNone) {
    removeTool();
    testing::leaveReport(folder(), 0, "S-0", kFailingAttributes);
    loadDrives();
    EXPECT_THAT(log(), Contains("INVALID: Could not build [Drive Data File.txt]"));
    EXPECT_THAT(log(), Each(Not("ERROR: Could not load SMART [PHYS0.txt] File for Processing")));
    clickAndExpectPanel(torvane(), {"Left over", kStandardPanel, kFailingNeedles, "red", "Failing",
                                    counterTexts({30000, 77, -1, -1, -1, -1})});
}

TEST_F(MonitoringToolTest, AnotherDrivesReportOfAnEarlierScanIsNotUsed) {
    removeTool();
    testing::leaveReport(folder(), 0, "ANOTHER", kFailingAttributes);
    loadDrives();
    EXPECT_THAT(log(), Contains("ERROR: PHYS0.txt is of an earlier scan and of another drive: not used"));
    expectWhiteLamp("SMART could not be read: smartctl.exe is missing.");
}

} // namespace
} // namespace torvane::driver
