// The monitoring tool misbehaves in front of the whole program: nothing hangs, nothing crashes, the log tells.

#include "tests/ui/health_bench.h"
#include "tests/ui/health_panel_reader.h"
#include "tests/ui/torvane_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>

namespace torvane::driver {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::Not;
using ::testing::StartsWith;

constexpr std::size_t kHuge = 50'000'000;

/// Each test has a fresh program folder with the drive "SOUND" on its bench, and does something to the tool in it.
class MonitoringToolTest : public ::testing::Test {
  protected:
    [[nodiscard]] std::filesystem::path folder() const { return launch_.program.parent_path(); }

    void removeTool() const { ASSERT_TRUE(std::filesystem::remove(folder() / "smartctl.exe")); }

    /// From now on the tool prints what the listing's file and "sda.out" hold, and nothing where there is none.
    void replaceTool() const {
        removeTool();
        std::filesystem::copy_file(TORVANE_SMARTCTL_PROGRAM, folder() / "smartctl.exe");
    }

    void write(const std::string& name, const std::string& text) const {
        std::ofstream file(folder() / name, std::ios::binary);
        file << text;
        ASSERT_TRUE(file.flush());
    }

    void loadDrives() {
        program_ = std::make_unique<Program>(launch_);
        torvane().loadDrives();
        ASSERT_EQ(torvane().driveList().rowCount(), 1);
        EXPECT_EQ(torvane().log().back().message, "Drive Scan Completed: [1] Drives Found");
    }

    [[nodiscard]] TorvaneWindow torvane() const { return TorvaneWindow(*program_); }

    /// The log as "TYPE: message".
    [[nodiscard]] std::vector<std::string> log() const {
        std::vector<std::string> rows;
        for (const LogEntry& entry : torvane().log()) {
            rows.push_back(entry.type + ": " + entry.message);
        }
        return rows;
    }

    void expectWhiteLamp() const {
        clickAndExpectPanel(torvane(), {"SOUND", kStandardPanel, {}, "white", ""});
        EXPECT_TRUE(program_->running()) << program_->obituary();
    }

  private:
    Launch launch_ =
        freshRun(std::string("MonitoringTool.") + ::testing::UnitTest::GetInstance()->current_test_info()->name(),
                 soundDriveBench());
    std::unique_ptr<Program> program_;
};

/// Attribute lines as smartctl -x prints them.
constexpr const char* kFailingAttributes = "ID# ATTRIBUTE_NAME          FLAGS    VALUE WORST THRESH FAIL RAW_VALUE\r\n"
                                           "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    77\r\n"
                                           "  9 Power_On_Hours          -O--CK   092   092   000    -    30000\r\n";
const std::array<NeedleValue, kDialCount> kFailingNeedles{0.5, 0.77, kBlank, kBlank, kBlank, kBlank};

std::string hugeText(const std::string& line) {
    std::string text;
    text.reserve(kHuge + line.size());
    while (text.size() < kHuge) {
        text += line;
    }
    return text;
}

TEST_F(MonitoringToolTest, AbsentLeavesTheWhiteLampAndTellsTheLog) {
    removeTool();
    loadDrives();
    EXPECT_THAT(log(), Contains("ERROR: PARSE_BuildDataFile: [Drive Data File.txt] CreateProcess FAILED"));
    EXPECT_THAT(log(), Contains("INVALID: Could not build [Drive Data File.txt]"));
    EXPECT_THAT(log(), Contains("ERROR: Could not load SMART [PHYS0.txt] File for Processing"));
    expectWhiteLamp();
}

TEST_F(MonitoringToolTest, SilentLeavesTheWhiteLampAndTellsTheLog) {
    replaceTool();
    loadDrives();
    EXPECT_THAT(log(), Contains("ERROR: Could not load SMART [PHYS0.txt] File for Processing"));
    EXPECT_THAT(log(), Each(Not(StartsWith("INVALID"))));
    expectWhiteLamp();
}

TEST_F(MonitoringToolTest, AReportOfAnEarlierScanIsReadWhereThisOneLeftNone) {
    removeTool();
    write("PHYS0.txt", kFailingAttributes);
    loadDrives();
    EXPECT_THAT(log(), Contains("INVALID: Could not build [Drive Data File.txt]"));
    EXPECT_THAT(log(), Each(Not("ERROR: Could not load SMART [PHYS0.txt] File for Processing")));
    clickAndExpectPanel(torvane(), {"SOUND", kStandardPanel, kFailingNeedles, "red", "Failing"});
}

TEST_F(MonitoringToolTest, AnEndlessReportIsReadToItsEnd) {
    replaceTool();
    write("scan.out", "/dev/sda -d ata # /dev/sda, ATA device\r\n");
    write("sda.out", hugeText("a line that says nothing about the drive's health, again and again and again\r\n") +
                         kFailingAttributes);
    loadDrives();
    EXPECT_EQ(std::filesystem::file_size(folder() / "PHYS0.txt"), std::filesystem::file_size(folder() / "sda.out"));
    clickAndExpectPanel(torvane(), {"SOUND", kStandardPanel, kFailingNeedles, "red", "Failing"});
}

TEST_F(MonitoringToolTest, AnEndlessListingIsReadToItsEnd) {
    replaceTool();
    // Names without a drive letter ask for no report.
    write("scan.out", hugeText("/dev/nvme0 -d nvme # /dev/nvme0, NVMe device, and a long comment behind it\r\n") +
                          "/dev/sda -d ata # /dev/sda, ATA device\r\n");
    write("sda.out", kFailingAttributes);
    loadDrives();
    clickAndExpectPanel(torvane(), {"SOUND", kStandardPanel, kFailingNeedles, "red", "Failing"});
}

TEST_F(MonitoringToolTest, BytesThatAreNoTextDoNoHarm) {
    replaceTool();
    std::string garbage(100'000, '\xFF');
    garbage += std::string(1000, '\0') + "%s%n%s%n" + std::string(100'000, ' ');
    write("scan.out", "/dev/sda -d ata # x\r\n" + garbage + "\r\n");
    write("sda.out", garbage);
    loadDrives();
    EXPECT_THAT(log(), Each(Not(StartsWith("ERROR: Could not load SMART"))));
    // A report, but without a single counter.
    clickAndExpectPanel(torvane(), {"SOUND", kStandardPanel, {}, "none", ""});
}

} // namespace
} // namespace torvane::driver
