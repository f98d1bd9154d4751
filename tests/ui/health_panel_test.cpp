#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/resource_counts.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/health_bench.h"
#include "tests/ui/health_panel_reader.h"
#include "tests/ui/ui_test.h"

#include <vector>

namespace torvane::driver {
namespace {

constexpr int kHealthMessage = 1053;
constexpr int kGaugeText = 1055;
constexpr int kFirstValueText = 1056;

constexpr double hours(int count) {
    return count / 60000.0;
}
constexpr double flashHours(int count) {
    return count / 2000000.0;
}
constexpr double errors(int count) {
    return count / 100.0;
}
constexpr double gigabytes(int count) {
    return count / 1024.0 / 7000.0;
}
constexpr double kPass = 0.0;
constexpr double kFail = 1.0;

// Dials: hours or gigabytes, then moved, slow, pending, uncorrectable, reported; or the five warnings.
const std::vector<ExpectedPanel> kPanels{
    {"SOUND",
     kStandardPanel,
     {hours(12000), 0, 0, 0, 0, 0},
     "green",
     "No sign of trouble",
     counterTexts({12000, 0, 0, 0, 0, 0})},
    {"AGEING",
     kStandardPanel,
     {hours(30000), 0, kBlank, 0, 0, 0},
     "blue",
     "Early wear",
     counterTexts({30000, 0, -1, 0, 0, 0})},
    {"WEARING",
     kStandardPanel,
     {hours(12000), errors(1), 0, errors(9), 0, 0},
     "yellow",
     "Wearing out",
     counterTexts({12000, 1, 0, 9, 0, 0})},
    {"FAILING",
     kStandardPanel,
     {hours(45000), errors(250), errors(19), errors(20), errors(50), errors(80)},
     "red",
     "Failing",
     counterTexts({45000, 250, 19, 20, 50, 80})},
    // The reports of solid-state drives name their errors to the host in another way.
    {"FLASH",
     kSsdPanel,
     {flashHours(20000), errors(1), 0, 0, 0, kBlank},
     "none",
     "Wearing out",
     ssdCounterTexts({20000, 1, 0, 0, 0, 0})},
    {"FLASH IN A CASE",
     kSsdPanel,
     {flashHours(60000), errors(60), errors(25), errors(90), 0, kBlank},
     "none",
     "Failing",
     ssdCounterTexts({60000, 60, 25, 90, 0, 0})},
    {"DISK IN A CASE",
     kStandardPanel,
     {hours(43800), 0, 0, 0, 0, 0},
     "yellow",
     "Wearing out",
     counterTexts({43800, 0, 0, 0, 0, 0})},
    {"UNREADABLE", kStandardPanel, {}, "white", "SMART could not be read."},
    {"SILENT", kStandardPanel, {}, "none", "The drive reports none of the counters"},
    {"PELHAM", kUnknownPanel, {}, "none", "This interface reports no monitoring data"},
    {"TARN",
     kNvmePanel,
     {gigabytes(953), kFail, kPass, kFail, kPass, kPass},
     "none",
     "Failing",
     {"Total Bytes Written 953 GB is 0.01 percent of threshold", "FAILED 003 010", "RESULT", "RESULT", "RESULT",
      "RESULT"}},
    {"TARN RAID",
     kNvmePanel,
     {gigabytes(5006790), kPass, kFail, kPass, kFail, kFail},
     "none",
     "Failing",
     {"Total Bytes Written 5,006,790 GB is 69.85 percent of threshold", "RESULTS", "RESULT", "RESULT", "RESULT",
      "RESULT"}},
    {"TARN BRIDGE",
     kNvmePanel,
     {gigabytes(0), kFail, kPass, kPass, kPass, kPass},
     "none",
     "Failing",
     {"Total Bytes Written 0 GB is 0.00 percent of threshold", "FAILED 072 127", "RESULT", "RESULT", "RESULT",
      "RESULT"}},
    // What remains is its failed report: an NVMe drive answers no ATA command.
    {"TARN MUTE", kStandardPanel, {}, "white", "This controller passes no SMART on"},
};

class HealthPanelTest : public UiTest {
  protected:
    /// Its scans are held when the bench is told to take its time.
    [[nodiscard]] BenchFolder layOutBench() const override {
        return healthBench().bench(R"({"tools": {"diskpart": {"delayMilliseconds": 600000}}})");
    }
    void SetUp() override {
        UiTest::SetUp();
        program().hurry();
        if (torvane().driveList().rowCount() == 0) {
            torvane().loadDrives();
            torvane().awaitProgressHidden();
        }
    }

    void pick(const std::string& model) const {
        const ListView list = torvane().driveList();
        list.click(list.rowWith(0, model));
        torvane().window().awaitPainted();
    }

    [[nodiscard]] std::string text(int id) const { return torvane().control(id).text(); }
};

TEST_F(HealthPanelTest, EveryDriveShowsItsCondition) {
    ASSERT_EQ(torvane().driveList().rowCount(), static_cast<int>(kPanels.size()));
    for (const ExpectedPanel& panel : kPanels) {
        clickAndExpectPanel(torvane(), panel);
    }
}

TEST_F(HealthPanelTest, EveryShippedMessageStandsOnOneLineInLargeLetters) {
    for (const char* model : {"SOUND", "AGEING", "WEARING", "FAILING"}) {
        pick(model);
        parkMouse();
        const Window message = torvane().control(kHealthMessage);
        expectSoon([&] {
            const RECT written = healthMessageInk(torvane());
            EXPECT_GT(width(written), 400) << message.text();
            EXPECT_LT(written.right, width(message.rect()) - 30) << message.text() << " may be cut";
            EXPECT_LE(height(written), 18) << message.text();
            EXPECT_GE(written.top, 2) << "letters touch the captions";
        });
    }
}

TEST_F(HealthPanelTest, TickingAnotherRowChangesNothing) {
    clickAndExpectPanel(torvane(), kPanels[3]);
    const ListView list = torvane().driveList();
    const int other = list.rowWith(0, "SOUND");
    list.setTicked(other, true);
    expectPanel(torvane(), kPanels[3]);
    list.setTicked(other, false);
    expectPanel(torvane(), kPanels[3]);
    EXPECT_TRUE(list.selected(list.rowWith(0, "FAILING")));
}

TEST_F(HealthPanelTest, RepaintingNeverShowsAnEmptyPanel) {
    pick("SOUND");
    const Window window = torvane().window();
    const RECT area = window.clientRect();
    const RECT hub{area.left + 430, area.top + 194, area.left + 431, area.top + 195};
    const auto shown = [&] { return distance(Picture::ofScreen(hub).at(0, 0), RGB(0, 0, 0)) <= 90; };
    await("the needle's hub is there", shown);
    int looks = 0;
    int gone = 0;
    for (int repaint = 0; repaint < 60; ++repaint) {
        InvalidateRect(window.handle(), nullptr, TRUE);
        for (int i = 0; i < 20; ++i) {
            ++looks;
            gone += shown() ? 0 : 1;
        }
    }
    EXPECT_EQ(gone, 0) << "times of " << looks << " the needle's hub was not there";
}

TEST_F(HealthPanelTest, SixtyRepaintsLeaveNothingBehind) {
    const auto repaint = [this](int times) {
        for (int i = 0; i < times; ++i) {
            RedrawWindow(torvane().window().handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
            torvane().window().awaitPainted();
        }
    };
    pick("FAILING");
    repaint(3); // what the system keeps for itself after the first use
    const ResourceCounts before = countResources(program().processId());
    ASSERT_GT(before.gdiObjects, 0);
    repaint(60);
    expectSoon([&] {
        const ResourceCounts after = countResources(program().processId());
        EXPECT_LE(after.gdiObjects, before.gdiObjects);
        EXPECT_LE(after.kernelHandles, before.kernelHandles + 6) << before << " became " << after;
        EXPECT_LE(after.windows, before.windows) << before << " became " << after;
    });
}

TEST_F(HealthPanelTest, ANewScanClearsThePanelAtOnce) {
    pick("TARN");
    ASSERT_EQ(text(kFirstValueText + 1), "FAILED 003 010");
    program().takeTime();
    torvane().startLoading();
    EXPECT_EQ(text(kGaugeText), "00 00 00 00 00");
    const ExpectedPanel nothingChosen{"no drive", kStandardPanel, {}, "white", ""};
    expectPanel(torvane(), nothingChosen);
    program().hurry();
    torvane().awaitLoaded();
    torvane().awaitProgressHidden();
    expectPanel(torvane(), nothingChosen);
    pick("FAILING");
    ASSERT_TRUE(text(kHealthMessage).starts_with("Failing"));
    program().takeTime();
    torvane().startLoading();
    expectPanel(torvane(), nothingChosen);
    leaveProgramUsed(); // in the middle of a scan
}

/// A hard disk with sound counters whose own verdict is that it fails.
class OwnVerdictTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return BenchFolder().drive("0", R"({"number": 0, "bus": "sata", "road": "ata", "size": "64 MiB",
            "identity": {"product": "DOOMED", "revision": "1", "serial": "D-0"},
            "ata": {"model": "DOOMED", "serial": "D-0", "smart": {"health": "failed", "attributes": [{"id": 5, "raw": 0}, {"id": 9, "raw": 100}]}}})");
    }
};

TEST_F(OwnVerdictTest, StandsBesideTheAdviceOfTheCounters) {
    constexpr int kOwnVerdict = 1390;
    torvane().loadDrives();
    clickAndExpectPanel(torvane(), {"DOOMED",
                                    kStandardPanel,
                                    {hours(100), 0, kBlank, kBlank, kBlank, kBlank},
                                    "green",
                                    "No sign of trouble",
                                    counterTexts({100, 0, -1, -1, -1, -1})});
    const Window own = torvane().window().child(kOwnVerdict);
    expectSoon([&] {
        EXPECT_TRUE(own.visible());
        EXPECT_EQ(own.text(), "The drive itself says that it is FAILING: copy it at once, then replace it.");
    });
}

} // namespace
} // namespace torvane::driver
