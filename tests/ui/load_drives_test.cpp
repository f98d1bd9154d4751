#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <regex>
#include <set>

namespace torvane::driver {
namespace {

using ::testing::ElementsAre;

using Row = std::vector<std::string>;

/// Now, as "year/month/day hour:minute:second", which sorts by time.
std::string localTime() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04u/%02u/%02u %02u:%02u:%02u", unsigned{now.wYear}, unsigned{now.wMonth},
                  unsigned{now.wDay}, unsigned{now.wHour}, unsigned{now.wMinute}, unsigned{now.wSecond});
    return text.data();
}

class LoadDrivesTest : public UiTest {
  protected:
    [[nodiscard]] std::vector<std::string> models() const {
        std::vector<std::string> all;
        for (int row = 0; row < torvane().driveList().rowCount(); ++row) {
            all.push_back(torvane().driveList().cell(row, 0));
        }
        return all;
    }
};

/// The first scan of a fresh program, looked at from all sides.
class FirstLoadTest : public LoadDrivesTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return smallBench(); }
    void SetUp() override {
        LoadDrivesTest::SetUp();
        if (torvane().logList().rowCount() == 0) {
            torvane().loadDrives();
        }
    }

    /// The drives and volumes that the program has opened, each where it was opened first.
    [[nodiscard]] std::vector<std::string> openedDevices() const {
        const std::regex device(R"re(path="\\\\\\\\\.\\\\(PhysicalDrive\d+|[A-Z]:)")re");
        std::vector<std::string> names;
        for (const std::string& line : program().benchLog({"program=Torvane.exe", "request=open"})) {
            std::smatch match;
            if (std::regex_search(line, match, device) &&
                std::find(names.begin(), names.end(), match[1].str()) == names.end()) {
                names.push_back(match[1]);
            }
        }
        return names;
    }
};

TEST_F(FirstLoadTest, DriveListHasItsColumns) {
    const ListView list = torvane().driveList();
    const std::vector<std::pair<std::string, int>> columns{{"Model", 250},       {"Serial Number", 150},
                                                           {"Size Sectors", 90}, {"Size GB", 85},
                                                           {"Interface", 120},   {"Status", 460}};
    ASSERT_EQ(list.columnCount(), static_cast<int>(columns.size()));
    for (int column = 0; column < list.columnCount(); ++column) {
        EXPECT_EQ(list.heading(column), columns[static_cast<std::size_t>(column)].first);
        EXPECT_EQ(list.columnWidth(column), columns[static_cast<std::size_t>(column)].second);
    }
}

TEST_F(FirstLoadTest, ListsEveryDriveInProbeOrder) {
    const ListView list = torvane().driveList();
    ASSERT_EQ(list.rowCount(), 4);
    EXPECT_EQ(list.row(0), (Row{"HALDANE HD5000", "HD5-000117", "1073741824", "512.00", "SATA", "Idle"}));
    EXPECT_EQ(list.row(1), (Row{"Tarn N256", "TN256-0042", "536870912", "256.00", "NVME", "Idle"}));
    // The bridge tells its own name; model and serial number are those of the disk behind it.
    EXPECT_EQ(list.row(2), (Row{"CORVINA PD64", "CV-77120", "134217728", "64.00", "SATA USB", "Idle"}));
    EXPECT_EQ(list.row(3), (Row{"BRANDT 4KN-1000", "BR4K-9001", "268435456", "1024.00", "SATA", "Idle"}));
    for (int row = 0; row < list.rowCount(); ++row) {
        EXPECT_FALSE(list.ticked(row));
        EXPECT_FALSE(list.selected(row));
    }
}

TEST_F(FirstLoadTest, LogTellsTheScan) {
    const std::vector<LogEntry> log = torvane().log();
    ASSERT_GE(log.size(), 3U);
    EXPECT_EQ(log.front().type, "STATUS");
    EXPECT_EQ(log.front().message, "Beginning Drive Scan");
    EXPECT_EQ(log.back().type, "STATUS");
    EXPECT_EQ(log.back().message, "Drive Scan Completed: [4] Drives Found");
    EXPECT_THAT(torvane().logMessages("DIAG"), ElementsAre(R"(USB PHYS [\\.\PhysicalDrive2])"));
    EXPECT_THAT(torvane().logMessages("FAILURE"), ElementsAre());
}

TEST_F(FirstLoadTest, ProbesTwentyNumbersThenTheLettersFromC) {
    std::vector<std::string> expected;
    expected.reserve(44);
    for (int number = 0; number < 20; ++number) {
        expected.push_back("PhysicalDrive" + std::to_string(number));
    }
    for (char letter = 'C'; letter <= 'Z'; ++letter) {
        expected.push_back(std::string{letter, ':'});
    }
    EXPECT_EQ(openedDevices(), expected);
}

TEST_F(FirstLoadTest, AsksDiskpartForTheReadOnlyAttributeOfEachDrive) {
    const std::vector<std::string> lines = program().benchLog({"request=diskpart", "script-line=\"select disk"});
    std::vector<std::string> asked;
    asked.reserve(lines.size());
    for (const std::string& line : lines) {
        asked.push_back(line.substr(line.find("select disk"), 13));
    }
    EXPECT_THAT(asked, ElementsAre("select disk 0", "select disk 1", "select disk 2", "select disk 3"));
}

TEST_F(LoadDrivesTest, LogRowsCarryLocalDateAndTime) {
    const std::string before = localTime();
    torvane().loadDrives();
    const std::string after = localTime();
    for (const LogEntry& entry : torvane().log()) {
        EXPECT_TRUE(std::regex_match(entry.date, std::regex(R"(\d\d/\d\d/\d{4})"))) << entry.date;
        EXPECT_TRUE(std::regex_match(entry.time, std::regex(R"(\d\d:\d\d:\d\d)"))) << entry.time;
    }
    const LogEntry last = torvane().log().back();
    const std::string logged = last.date.substr(6) + "/" + last.date.substr(0, 5) + " " + last.time;
    EXPECT_GE(logged, before);
    EXPECT_LE(logged, after);
}

TEST_F(LoadDrivesTest, LoadingAgainBeginsAnewWithTheDrivesThatAreThereNow) {
    leaveProgramUsed(); // a drive of its bench is unplugged
    torvane().loadDrives();
    torvane().driveList().setTicked(1, true);
    torvane().driveList().click(1);
    torvane().loadDrives();
    EXPECT_THAT(models(), ElementsAre("HALDANE HD5000", "Tarn N256")) << "each drive once";
    EXPECT_FALSE(torvane().driveList().ticked(1)) << "a tick of the last scan is still there";
    torvane().press(kCreateReport);
    expectStopBox("***** NO ACTIVE DRIVE *****", "Load Drives, and click on drive to make ACTIVE for report.");

    program().unplug(1);
    torvane().loadDrives();
    EXPECT_THAT(models(), ElementsAre("HALDANE HD5000"));
    program().plug(1);
    torvane().loadDrives();
    EXPECT_THAT(models(), ElementsAre("HALDANE HD5000", "Tarn N256"));
}

/// A scan that goes on until it is let go.
class HeldScanTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return heldBench(); }
    void SetUp() override {
        UiTest::SetUp();
        program().takeTime();
    }
    void letScanEnd() const {
        program().hurry();
        torvane().awaitLoaded();
    }
};

TEST_F(HeldScanTest, LoadDrivesIsDeafWhileAScanRuns) {
    const auto scansBegun = [this] {
        const std::vector<LogEntry> log = torvane().log();
        return std::count_if(log.begin(), log.end(),
                             [](const LogEntry& entry) { return entry.message == "Beginning Drive Scan"; });
    };
    const auto before = scansBegun();
    torvane().startLoading();
    const std::size_t rows = torvane().log().size();
    torvane().press(kLoadDrives);
    expectNoBox();
    torvane().command(kMenuLoadDrives);
    expectNoBox();
    letScanEnd();
    EXPECT_EQ(scansBegun(), before + 1);
    EXPECT_GT(torvane().log().size(), rows);
    EXPECT_EQ(torvane().driveList().rowCount(), 2);
}

TEST_F(HeldScanTest, WindowAnswersWhileTheScanRuns) {
    torvane().startLoading();
    torvane().press(kLogToggle);
    const bool open = torvane().logOpen();
    torvane().press(kLogToggle);
    EXPECT_NE(torvane().logOpen(), open);
    torvane().press(kQuickDiskView);
    expectStopBox("***** NO ACTIVE DRIVE *****", "Please choose a drive to view");
    letScanEnd();
}

TEST_F(HeldScanTest, ProgressShowsTheStagesWithoutTheFourthAndHides) {
    torvane().startLoading();
    const Window bar = torvane().control(kScanProgress);
    const Window status = torvane().control(kScanStatus);
    await("the progress bar shows", [&] { return bar.visible(); });
    std::set<LRESULT> positions;
    std::vector<std::string> texts;
    const auto look = [&] {
        positions.insert(bar.send(PBM_GETPOS));
        const std::string text = status.text();
        if (!text.empty() && (texts.empty() || texts.back() != text)) {
            texts.push_back(text);
        }
    };
    await("the longest stage is shown", [&] {
        look();
        return positions.contains(2);
    });
    program().hurry();
    await(
        "the progress bar hides again",
        [&] {
            look();
            return !bar.visible();
        },
        std::chrono::seconds(120));
    await("the status hides with it", [&] { return !status.visible(); });
    EXPECT_EQ(bar.send(PBM_GETRANGE, FALSE), 5);
    EXPECT_EQ(bar.send(PBM_GETRANGE, TRUE), 0);
    EXPECT_EQ(positions.count(4), 0U);
    EXPECT_EQ(*positions.rbegin(), 5);
    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(texts.back(), "Scan Complete");
    EXPECT_THAT(texts, ::testing::Contains("Loading Physical Devices"));
}

} // namespace
} // namespace torvane::driver
