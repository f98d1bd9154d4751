#include "tests/ui/health_panel_reader.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <array>
#include <vector>

namespace torvane::driver {
namespace {

using ::testing::Contains;

/// The bench that is shown to everybody: workbench/benches/demo.
class DemoBenchTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return BenchFolder::demo(); }
    void SetUp() override {
        UiTest::SetUp();
        torvane().loadDrivesOnce();
    }
};

TEST_F(DemoBenchTest, EveryUsableDriveIsListed) {
    struct Drive {
        const char* model;
        const char* serialNumber;
        const char* sectors;
        const char* interfaceName;
    };
    const std::array<Drive, 12> expected{{
        {"Northwind HD500 Platter", "NW5K00123417", "976773168", "SATA"},
        {"Quillmark SX240 Solid", "QM240S7781055", "468862128", "SSD"},
        {"Tidewell TW1G Laptop Disk", "TWC4118A", "2097152", "SATA USB"},
        {"Harrowgate N512 Sprint", "0231_DCD7_F59C_5242.", "1000215216", "NVME"}, // as its descriptor tells
        {"Cindergate NR256 Cache", "CG256R0419", "536870912", "Intel RST NVME"},
        {"PELHAM PX-73 Server", "PX7300A7F1", "143374744", "SATA"},
        {"Northwind HD4T Native", "NX4T00998213", "976754646", "SATA"},
        {"Nameless", "Not Available", "131072", "USB"}, // its serial number is not printable
        {"Northwind HD1T Platter", "NW1T00450019", "1953525168", "SATA"},
        {"100%  Hosti", "Not Available", "262144", "SATA"}, // its texts are full of percent signs
        {"Fennick F128 Pocket", "FK128P0031", "196608", "JMicron USB NVME"},
        {"Fennick F128 Spare", "FK128P0077", "262144", "JMicron USB NVME"},
    }};
    const ListView list = torvane().driveList();
    ASSERT_EQ(list.rowCount(), static_cast<int>(expected.size()));
    for (int row = 0; row < list.rowCount(); ++row) {
        const Drive& drive = expected.at(static_cast<std::size_t>(row));
        EXPECT_EQ(list.cell(row, 0), drive.model);
        EXPECT_EQ(list.cell(row, 1), drive.serialNumber) << drive.model;
        EXPECT_EQ(list.cell(row, 2), drive.sectors) << drive.model;
        EXPECT_EQ(list.cell(row, 4), drive.interfaceName) << drive.model;
        EXPECT_EQ(list.cell(row, 5), "Idle") << drive.model;
    }
}

TEST_F(DemoBenchTest, UnusableDrivesAreLogged) {
    EXPECT_THAT(torvane().logMessages("FAILURE"),
                ::testing::ElementsAre("Unsupported Bus Type [iSCSI] BUS: [9] for Physical Device [7]",
                                       "Unsupported Bus Type [Secure Digital] BUS: [12] for Physical Device [8]"));
    EXPECT_THAT(torvane().logMessages("STATUS"), Contains("Drive Scan Completed: [12] Drives Found"));
}

TEST_F(DemoBenchTest, EveryVolumeIsAskedOnceForItsExtents) {
    const auto asked = [this](const std::string& what) {
        return program().benchLog({"program=Torvane.exe", "request=IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS", what});
    };
    for (const char letter : {'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L'}) {
        EXPECT_EQ(asked(std::string("target=volume:") + letter + " ").size(), 1U) << letter;
    }
    // H: spans two disks; the optical drive K: has no extents.
    EXPECT_THAT(asked("target=volume:H").front(), ::testing::HasSubstr("result=ok bytes=56"));
    EXPECT_THAT(asked("target=volume:K").front(), ::testing::HasSubstr("result=ERROR_INVALID_FUNCTION"));
}

TEST_F(DemoBenchTest, EveryDriveShowsItsCondition) {
    constexpr double kHours = 60000;
    constexpr double kFlashHours = 2000000;
    constexpr double kErrors = 100;
    constexpr double kGigabytes = 1024.0 * 7000;
    constexpr double kPass = 0;
    constexpr double kFail = 1;
    constexpr const char* kResult = "RESULT";
    // Dials: hours or gigabytes, then moved, slow, pending, uncorrectable, reported; or the five warnings.
    const std::vector<ExpectedPanel> panels{
        {"Northwind HD500 Platter",
         kStandardPanel,
         {8123 / kHours, 0, 0, 0, 0, 0},
         "green",
         "No sign of trouble",
         counterTexts({8123, 0, 0, 0, 0, 0})},
        {"Quillmark SX240 Solid",
         kSsdPanel,
         {4210 / kFlashHours, 0, 0, 0, 0, kBlank},
         "none",
         "No sign of trouble",
         ssdCounterTexts({4210, 0, 0, 0, 0, 0})},
        {"Tidewell TW1G Laptop Disk",
         kStandardPanel,
         {31877 / kHours, 214 / kErrors, 19 / kErrors, 12 / kErrors, 7 / kErrors, 41 / kErrors},
         "red",
         "Failing",
         counterTexts({31877, 214, 19, 12, 7, 41})},
        {"Harrowgate N512 Sprint",
         kNvmePanel,
         {11687 / kGigabytes, kPass, kPass, kPass, kPass, kPass},
         "none",
         "No sign of trouble",
         {"Total Bytes Written 11,687 GB is 0.16 percent of threshold", "RESULTS", kResult, kResult, kResult, kResult}},
        {"Cindergate NR256 Cache",
         kNvmePanel,
         {57699 / kGigabytes, kPass, kPass, kPass, kPass, kPass},
         "none",
         "It has lost data before: Wearing out",
         {"Total Bytes Written 57,699 GB is 0.80 percent of threshold", "RESULTS", kResult, kResult, kResult, kResult}},
        {"PELHAM PX-73 Server", kUnknownPanel, {}, "none", "From its report: Wearing out"},
        {"Northwind HD4T Native",
         kStandardPanel,
         {15290 / kHours, 0, 0, 0, 0, 0},
         "green",
         "No sign of trouble",
         counterTexts({15290, 0, 0, 0, 0, 0})},
        {"Nameless", kSsdPanel, {}, "none", "The drive says that it keeps no SMART data"},
        {"Northwind HD1T Platter",
         kStandardPanel,
         {61022 / kHours, 4012 / kErrors, 212 / kErrors, 88 / kErrors, 64 / kErrors, 380 / kErrors},
         "red",
         "Failing",
         counterTexts({61022, 4012, 212, 88, 64, 380})},
        {"100%  Hosti", kStandardPanel, {}, "white", "This controller passes no SMART on"},
        {"Fennick F128 Pocket",
         kNvmePanel,
         {26283 / kGigabytes, kFail, kPass, kPass, kPass, kPass},
         "none",
         "Failing",
         {"Total Bytes Written 26,283 GB is 0.37 percent of threshold", "FAILED 003 010", kResult, kResult, kResult,
          kResult}},
        {"Fennick F128 Spare",
         kNvmePanel,
         {1204 / kGigabytes, kPass, kPass, kPass, kPass, kPass},
         "none",
         "No sign of trouble",
         {"Total Bytes Written 1,204 GB is 0.02 percent of threshold", "RESULTS", kResult, kResult, kResult, kResult}},
    };
    torvane().awaitProgressHidden();
    ASSERT_EQ(torvane().driveList().rowCount(), static_cast<int>(panels.size()));
    for (const ExpectedPanel& panel : panels) {
        clickAndExpectPanel(torvane(), panel);
    }
}

} // namespace
} // namespace torvane::driver
