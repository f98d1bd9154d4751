#include "scan/scan_job.h"

#include "discovery/drive_volumes.h"
#include "monitoring/smart_scan.h"
#include "state/app_state.h"
#include "state/still_at_work.h"
#include "tests/component/test_bench.h"
#include "tests/support/leftover_report.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace torvane {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSubsetOf;
using ::testing::Not;
using ::testing::SizeIs;
using namespace std::chrono_literals;

bool waitFor(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + 120s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

/// Notes the scan's stage at every status text.
class StageNotingView : public testing::RecordingMainView {
  public:
    void setScanStatus(std::string_view text) override {
        stages_.push_back(appState().scan.stage);
        RecordingMainView::setScanStatus(text);
    }
    [[nodiscard]] const std::vector<int>& stages() const { return stages_; }

  private:
    std::vector<int> stages_; // one worker writes them
};

class ScanJob : public ::testing::Test {
  protected:
    ScanJob() { reset(); }
    ~ScanJob() override { reset(); }

    static AppState& state() { return appState(); }
    static const DriveRecord& drive(std::size_t slot) { return *state().scan.drives[slot]; }

    static void reset() {
        EXPECT_TRUE(state().jobs.atWork().empty());
        EXPECT_FALSE(state().jobs.active());
        state().activeDriveChosen = 0;
        state().activeDrive = nullptr;
        state().scan.stage = 0;
        state().scan.driveCount = 0;
        for (DriveRecordPtr& record : state().scan.drives) {
            record.reset();
        }
    }

    void addDrive(int number, const std::string& bus, const std::string& more = "") {
        bench_.addDrive(R"({"size": "16 MiB", "number": )" + std::to_string(number) + R"(, "bus": ")" + bus + "\"" +
                        (more.empty() ? "" : ", " + more) + "}");
    }

    void describeHeldDiskpart() {
        bench_.describe(std::string(R"({"tools": {"diskpart": {"delayMilliseconds": )") + testing::kUntilToldToHurry +
                        "}}}");
    }

    /// Presses Load Drives, which starts a scan, and waits until the scan's progress is shown: by then its thread knows
    /// the scan from a later one.
    void loadDrives() {
        LoadDrives(state());
        ++scans_;
        ASSERT_TRUE(waitFor([this] {
            const auto calls = view_.calls();
            return std::count(calls.begin(), calls.end(), "show progress 0..5") == scans_;
        }));
    }
    /// Presses Load Drives and waits until both threads are done with the window.
    void loadDrivesAndWait() {
        loadDrives();
        awaitScan();
        awaitProgressEnd();
    }
    static JobClaim begin(JobKind kind) { return state().jobs.begin(kind).value(); }
    /// The scan on this thread.
    static DWORD scan() {
        JobClaim claim = begin(JobKind::kScan);
        return runDriveScan(state(), claim);
    }
    void awaitScan() {
        ASSERT_TRUE(waitFor([] { return state().jobs.atWork().empty(); }));
    }
    void awaitProgressEnd() {
        ASSERT_TRUE(waitFor([this] { return !view_.progressVisible(); }));
    }

    [[nodiscard]] std::vector<std::string> callsStartingWith(const std::vector<std::string>& beginnings) const {
        std::vector<std::string> found;
        for (const std::string& call : view_.calls()) {
            if (std::any_of(beginnings.begin(), beginnings.end(),
                            [&](const std::string& beginning) { return call.starts_with(beginning); })) {
                found.push_back(call);
            }
        }
        return found;
    }

    testing::TestBench bench_;
    StageNotingView view_;
    testing::ViewInstalled installed_{appState(), view_};
    testing::ScriptedPrompts user_;
    int scans_ = 0;
};

// --- guards

TEST_F(ScanJob, LoadDrivesWhileAJobRunsDoesNothingAndShowsNothing) {
    const JobClaim shortTest = begin(JobKind::kShortTest);
    JobClaim job = begin(JobKind::kMounting);
    ASSERT_TRUE(job.raise());
    state().activeDriveChosen = 1;
    LoadDrives(state());
    EXPECT_THAT(view_.calls(), IsEmpty());
    EXPECT_THAT(user_.shown(), IsEmpty());
    EXPECT_EQ(state().activeDriveChosen, 1);
}

TEST_F(ScanJob, LoadDrivesWhileAStoppedCopyStillReadsSaysSoAndKeepsItsRecords) {
    state().scan.drives[0] = DriveRecordPtr(new DriveRecord);
    const JobClaim copy = begin(JobKind::kClone);
    user_.expectStop("***** Working *****", stillAtWorkText({.kinds = {JobKind::kClone}}));
    LoadDrives(state());
    EXPECT_NE(state().scan.drives[0], nullptr);
    EXPECT_THAT(view_.calls(), IsEmpty());
}

TEST_F(ScanJob, LoadDrivesWhileTheLoaderWorksSaysSo) {
    const JobClaim scan = begin(JobKind::kScan);
    state().jobs.askToStop();
    user_.expectStop("***** Working *****", "Drive Loader is Working");
    LoadDrives(state());
    EXPECT_THAT(view_.calls(), IsEmpty());
}

TEST_F(ScanJob, LoadDrivesDuringTheShortTestSaysSoAndLeavesTheListAsItWas) {
    DriveRecord listed;
    view_.addDriveRow(listed);
    state().activeDrive = &listed;
    state().activeDriveChosen = 1;
    const JobClaim shortTest = begin(JobKind::kShortTest);
    user_.expectStop("***** Load Drives *****", "Short Test is Running");
    LoadDrives(state());
    EXPECT_THAT(view_.driveRows(), ElementsAre(&listed));
    EXPECT_EQ(state().activeDrive.load(), &listed);
    EXPECT_EQ(state().activeDriveChosen, 1);
}

TEST_F(ScanJob, ASecondPressDuringTheScanDoesNothingAndShowsNothing) {
    addDrive(0, "nvme");
    describeHeldDiskpart();
    bench_.open();
    loadDrives();
    LoadDrives(state());
    bench_.hurry();
    awaitScan();
    awaitProgressEnd();
    EXPECT_THAT(view_.messages("STATUS"),
                ElementsAre("Beginning Drive Scan", "Drive Scan Completed: [1] Drives Found"));
}

TEST_F(ScanJob, AnEmptySlotOfAReaderIsAGapAndTheNumbersStayRight) {
    constexpr const char* kEmptySlot = R"("removable": true, "empty": true, "identity": {"vendor": "Slot"})";
    addDrive(0, "usb", kEmptySlot);
    addDrive(1, "sata", R"("road": "ata", "identity": {"product": "System", "serial": "S1"},
        "volumes": [{"letter": "C", "extents": [{"offset": "1 MiB", "length": "4 MiB"}]}])");
    addDrive(2, "usb", kEmptySlot);
    addDrive(3, "sata", R"("road": "ata", "readOnly": true, "identity": {"product": "Other", "serial": "S3"},
        "volumes": [{"letter": "K", "extents": [{"offset": "1 MiB", "length": "4 MiB"}]}])");
    testing::TestBench::provideSmartctl();
    bench_.open();
    EXPECT_EQ(scan(), 1U);
    ASSERT_EQ(state().scan.driveCount, 2);
    EXPECT_EQ(view_.driveRows().size(), 2U);
    EXPECT_EQ(drive(0).driveNumber, 1);
    EXPECT_EQ(drive(0).serialNumber.view(), "S1");
    EXPECT_EQ(drive(1).driveNumber, 3);
    EXPECT_EQ(drive(1).serialNumber.view(), "S3");
    EXPECT_THAT(drive(0).smartText, HasSubstr("Serial Number:    S1")) << "of PHYS1.txt";
    EXPECT_THAT(drive(1).smartText, HasSubstr("Serial Number:    S3")) << "of PHYS3.txt";
    EXPECT_EQ(drive(0).readOnly, 0);
    EXPECT_EQ(drive(1).readOnly, 1) << "diskpart was asked for disk 3";
    EXPECT_TRUE(holdsVolume(drive(0), state().scan.volumes, 'C'));
    EXPECT_TRUE(holdsVolume(drive(1), state().scan.volumes, 'K'));
    EXPECT_THAT(
        bench_.log(
            "request=IOCTL_DISK_GET_DRIVE_GEOMETRY_EX result=ERROR_NOT_READY program=torvane_component_tests.exe"),
        SizeIs(4))
        << "two slots, each looked at ahead and in its turn";
    EXPECT_TRUE(view_.messages("FAILURE").empty());
}

TEST_F(ScanJob, TerminatingDuringTheScanLeavesTheLoaderWorkingUntilItsToolIsDone) {
    addDrive(0, "nvme");
    describeHeldDiskpart();
    bench_.open();
    loadDrives();
    EXPECT_TRUE(waitFor([] { return state().scan.stage == 2; }));
    state().jobs.askToStop();
    user_.expectStop("***** Working *****", "Drive Loader is Working");
    LoadDrives(state());
    bench_.hurry();
    awaitScan();
    awaitProgressEnd();
    EXPECT_TRUE(view_.hasLog("STATUS", "Drive Scan Completed: [1] Drives Found"));
}

TEST_F(ScanJob, TerminatingEndsAToolThatNeverEndsAndTheScanEndsWithWhatItHas) {
    addDrive(0, "nvme");
    addDrive(1, "nvme");
    describeHeldDiskpart();
    bench_.open();
    loadDrives();
    // Not the first start in the log: that is of the tool that lists the devices.
    EXPECT_TRUE(waitFor([this] {
        const auto starts = bench_.log("request=start");
        return std::any_of(starts.begin(), starts.end(),
                           [](const std::string& row) { return row.find("diskpart") != std::string::npos; });
    }));
    // The test lets nothing go: it is the scan that ends the tool.
    state().jobs.askToStop();
    awaitScan();
    awaitProgressEnd();
    EXPECT_EQ(state().scan.driveCount, 2);
    EXPECT_EQ(view_.driveRows().size(), 2U);
    EXPECT_EQ(drive(1).readOnly, 1) << "not known";
    EXPECT_THAT(bench_.log("program=diskpart.exe request=diskpart"), SizeIs(::testing::Le(1U))) << "no other began";
    EXPECT_TRUE(
        view_.hasLog("ERROR", "PARSE_BuildDataFile: [DISKPART Results.txt] TERMINATED before the tool was done"));
    EXPECT_TRUE(view_.hasLog("ERROR",
                             "Drive Scan TERMINATED: tools that had not been asked for a drive's data were not "
                             "asked"));
    EXPECT_TRUE(view_.hasLog("STATUS", "Drive Scan Completed: [2] Drives Found"));
}

TEST_F(ScanJob, AToolThatTakesLongIsNamedInTheStatusWithItsDrive) {
    addDrive(0, "nvme");
    describeHeldDiskpart();
    bench_.open();
    loadDrives();
    EXPECT_TRUE(waitFor([this] {
        const auto texts = view_.statuses();
        return std::ranges::find(texts, "still waiting for diskpart on drive 0, 6 s") != texts.end();
    }));
    bench_.hurry();
    awaitScan();
    awaitProgressEnd();
    EXPECT_EQ(view_.statuses().back(), "Scan Complete");
}

// --- Load Drives

TEST_F(ScanJob, LoadDrivesForgetsTheActiveDriveAndTheListBeforeTheScanBegins) {
    addDrive(0, "nvme");
    bench_.open();
    loadDrivesAndWait();
    state().activeDrive = state().scan.drives[0].get();
    state().activeDriveChosen = 1;
    loadDrives();
    EXPECT_EQ(state().activeDrive.load(), nullptr);
    EXPECT_EQ(state().activeDriveChosen, 0);
    awaitScan();
    awaitProgressEnd();
    EXPECT_THAT(callsStartingWith({"clear", "delete", "log STATUS", "add drive"}),
                ElementsAre("clear health panel", "delete drives", "log STATUS: Beginning Drive Scan", HasSubstr("add"),
                            "log STATUS: Drive Scan Completed: [1] Drives Found", "clear health panel", "delete drives",
                            "log STATUS: Beginning Drive Scan", HasSubstr("add"),
                            "log STATUS: Drive Scan Completed: [1] Drives Found"));
    EXPECT_THAT(view_.driveRows(), ElementsAre(state().scan.drives[0].get()));
}

TEST_F(ScanJob, ANewScanClosesTheHandlesOfTheLastOne) {
    addDrive(0, "usb");
    bench_.open();
    const auto handlesOpen = [this] {
        return bench_.log("target=drive:0 request=open result=ok").size() -
               bench_.log("target=drive:0 request=close").size();
    };
    loadDrivesAndWait();
    EXPECT_EQ(handlesOpen(), 1U);
    loadDrives();
    awaitScan();
    EXPECT_EQ(handlesOpen(), 1U);
    awaitProgressEnd();
}

TEST_F(ScanJob, ANewScanLetsGoOfDrivesThatAreGone) {
    addDrive(0, "usb");
    addDrive(1, "usb");
    addDrive(2, "usb");
    bench_.open();
    loadDrivesAndWait();
    ASSERT_EQ(state().scan.driveCount, 3);
    bench_.unplug(1);
    bench_.unplug(2);
    loadDrives();
    awaitScan();
    EXPECT_EQ(state().scan.driveCount, 1);
    EXPECT_EQ(state().scan.drives[2], nullptr);
    EXPECT_EQ(bench_.log("target=drive:2 request=close").size(),
              bench_.log("target=drive:2 request=open result=ok").size());
    awaitProgressEnd();
}

TEST_F(ScanJob, FiftyScansLeaveAsManyHandlesAsOne) {
    addDrive(0, "sata", R"("road": "ata")");
    addDrive(1, "iscsi");
    addDrive(3, "usb");
    bench_.describe(R"({"tools": {"diskpart": {"missing": true}}})");
    bench_.open();
    const auto loadOnce = [this] {
        loadDrives();
        awaitScan();
    };
    loadOnce();
    const DWORD before = testing::openHandleCount();
    for (int i = 0; i < 50; ++i) {
        loadOnce();
    }
    // Threads of the last scans that are about to end may hold one or two; a handle left by each scan makes fifty.
    EXPECT_LT(testing::lowestHandleCount(before + 9), before + 10);
    EXPECT_EQ(state().scan.driveCount, 2);
    awaitProgressEnd();
}

TEST_F(ScanJob, ScansWithAllToolsLeaveNoHandles) {
    addDrive(0, "sata", R"("road": "ata")");
    addDrive(1, "nvme", R"("road": "nvme-query")");
    testing::TestBench::provideSmartctl();
    bench_.open();
    testing::expectNoHandleLost([] { scan(); });
}

// --- the scan

TEST_F(ScanJob, TheStepsComeInTheirOrder) {
    addDrive(0, "nvme", R"("road": "nvme-query", "identity": {"product": "FIRST"})");
    addDrive(1, "iscsi");
    addDrive(2, "usb", R"("identity": {"vendor": "SECOND"})");
    bench_.open();
    EXPECT_EQ(scan(), 1U);
    EXPECT_THAT(callsStartingWith({"log STATUS", "log DIAG", "log FAILURE", "status", "redraw", "add"}),
                ElementsAre("log STATUS: Beginning Drive Scan", "status Loading Drive Devices",
                            "status Loading Physical Devices", "redraw drives",
                            "log FAILURE: Unsupported Bus Type [iSCSI] BUS: [9] for Physical Device [1]",
                            "log DIAG: USB PHYS [\\\\.\\PhysicalDrive2]", "redraw drives",
                            "status Loading Logical Devices", "add drive FIRST", "add drive SECOND",
                            "status Scan Complete", "log STATUS: Drive Scan Completed: [2] Drives Found"));
    EXPECT_THAT(view_.stages(), ElementsAre(1, 2, 3, 5));
    EXPECT_FALSE(state().jobs.active());
    EXPECT_TRUE(state().jobs.atWork().empty());
    EXPECT_EQ(state().scan.stage, 5);
}

TEST_F(ScanJob, TheFlagsTellOfTheScanUntilItsEnd) {
    class FlagView : public testing::RecordingMainView {
      public:
        void setScanStatus(std::string_view text) override {
            EXPECT_EQ(appState().jobs.active(), text != "Scan Complete") << text;
            EXPECT_EQ(appState().jobs.atWork(), JobKinds{JobKind::kScan}) << text;
            RecordingMainView::setScanStatus(text);
        }
    } view;
    const testing::ViewInstalled installed(state(), view);
    bench_.open();
    scan();
    EXPECT_TRUE(state().jobs.atWork().empty());
    EXPECT_THAT(view.statuses(), SizeIs(4));
}

TEST_F(ScanJob, AllTwentyNumbersAreProbedAroundAGapInTheNumbering) {
    addDrive(0, "usb");
    addDrive(2, "usb");
    addDrive(19, "usb");
    addDrive(20, "usb");
    bench_.open();
    scan();
    ASSERT_EQ(state().scan.driveCount, 3);
    EXPECT_EQ(drive(0).driveNumber, 0);
    EXPECT_EQ(drive(1).driveNumber, 2);
    EXPECT_EQ(drive(2).driveNumber, 19);
    EXPECT_EQ(state().scan.drives[3], nullptr);
    const auto opensOf = [this](int number) {
        return bench_.log(R"(request=open path="\\\\.\\PhysicalDrive)" + std::to_string(number) + "\"");
    };
    for (int number = 0; number < 20; ++number) {
        EXPECT_THAT(opensOf(number), Not(IsEmpty())) << number;
    }
    EXPECT_THAT(opensOf(20), IsEmpty());
    EXPECT_EQ(view_.logRows().back().message, "Drive Scan Completed: [3] Drives Found");
}

TEST_F(ScanJob, WithDrivesZeroAndTwoTheTableIsCompactAndTheLastRowSaysTwo) {
    addDrive(0, "nvme");
    addDrive(2, "nvme");
    bench_.open();
    scan();
    ASSERT_EQ(state().scan.driveCount, 2);
    EXPECT_EQ(drive(0).driveNumber, 0);
    EXPECT_EQ(drive(1).driveNumber, 2);
    EXPECT_EQ(view_.logRows().back().category, "STATUS");
    EXPECT_EQ(view_.logRows().back().message, "Drive Scan Completed: [2] Drives Found");
}

TEST_F(ScanJob, WithoutAnyDriveTheScanCompletesWithZero) {
    bench_.open();
    EXPECT_EQ(scan(), 1U);
    EXPECT_EQ(state().scan.driveCount, 0);
    EXPECT_THAT(view_.driveRows(), IsEmpty());
    EXPECT_EQ(view_.logRows().back().message, "Drive Scan Completed: [0] Drives Found");
}

TEST_F(ScanJob, DrivesThatCannotBeOpenedOrDescribedAreSkipped) {
    addDrive(0, "nvme", R"("faults": {"open": "ERROR_ACCESS_DENIED"})");
    addDrive(1, "nvme",
             R"("faults": {"requests": [{"request": "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX",
                                                    "error": "ERROR_DEVICE_NOT_CONNECTED"}]})");
    addDrive(2, "nvme");
    bench_.open();
    scan();
    ASSERT_EQ(state().scan.driveCount, 1);
    EXPECT_EQ(drive(0).driveNumber, 2);
}

TEST_F(ScanJob, FailingToolsAreLoggedAndTheScanGoesOn) {
    addDrive(0, "nvme");
    addDrive(1, "nvme");
    bench_.describe(R"({"tools": {"diskpart": {"missing": true}}})");
    bench_.open(); // and no smartctl.exe anywhere
    EXPECT_EQ(scan(), 1U);
    EXPECT_EQ(state().scan.driveCount, 2);
    EXPECT_TRUE(view_.hasLog("INVALID", "Could not build [Drive Data File.txt]"));
    EXPECT_TRUE(view_.hasLog("ERROR", "Could not load SMART [PHYS0.txt] File for Processing"));
    EXPECT_TRUE(view_.hasLog("ERROR", "Could not load SMART [PHYS1.txt] File for Processing"));
    EXPECT_TRUE(view_.hasLog("ERROR", "Could not BuildDataFile [DISKPART Results.txt]"));
    EXPECT_TRUE(view_.hasLog("STATUS", "Drive Scan Completed: [2] Drives Found"));
}

TEST_F(ScanJob, WithoutTheMonitoringToolADriveGetsTheReportOfAnEarlierScan) {
    addDrive(0, "sata", R"("road": "ata", "ata": {"serial": "E1"})");
    testing::leaveReport(".", 0, "E1", "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    7\r\n");
    bench_.open(); // and no smartctl.exe anywhere
    scan();
    ASSERT_EQ(state().scan.driveCount, 1);
    EXPECT_TRUE(view_.hasLog("INVALID", "Could not build [Drive Data File.txt]"));
    EXPECT_EQ(drive(0).smartLoaded, 1);
    EXPECT_EQ(drive(0).model.view(), "Left over");
    EXPECT_EQ(drive(0).disk[Counter::kReallocatedSectors], 7);
}

TEST_F(ScanJob, AnotherDrivesReportOfAnEarlierScanIsNotTaken) {
    addDrive(0, "sata", R"("road": "ata", "ata": {"model": "M", "serial": "OWN"})");
    testing::leaveReport(".", 0, "OTHER", "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    7\r\n");
    bench_.open(); // and no smartctl.exe anywhere
    scan();
    ASSERT_EQ(state().scan.driveCount, 1);
    EXPECT_TRUE(view_.hasLog("ERROR", "PHYS0.txt is of an earlier scan and of another drive: not used"));
    EXPECT_EQ(drive(0).model.view(), "M");
    EXPECT_EQ(drive(0).serialNumber.view(), "OWN");
    EXPECT_EQ(drive(0).disk[Counter::kReallocatedSectors], kNotReported);
}

TEST_F(ScanJob, ARecordKeepsWhatItsDriveTold) {
    addDrive(0, "sata", R"("road": "ata", "identity": {"product": "P", "serial": "D1"}, "ata": {"serial": "I1"},
                           "volumes": [{"letter": "D", "extents": [{"offset": 0, "length": "1 MiB"}]}])");
    testing::leaveReport(".", 0, "I1");
    bench_.open();
    scan();
    ASSERT_EQ(state().scan.driveCount, 1);
    EXPECT_EQ(drive(0).device.identifySerial, "I1");
    EXPECT_EQ(drive(0).device.descriptor->serialNumber, "D1");
    EXPECT_EQ(drive(0).device.descriptor->product, "P");
    EXPECT_EQ(drive(0).device.mediaChanges, 0U);
    ASSERT_TRUE(drive(0).partitionTable.get());
    EXPECT_EQ(drive(0).partitionTable.get()->partitions, 1);
}

TEST_F(ScanJob, MediaChangesAreCountedAfterTheLastRequestForMonitoringData) {
    addDrive(0, "nvme");
    bench_.open();
    scan();
    const std::vector<std::string> rows = bench_.log("program=torvane_component_tests.exe");
    const auto last = [&](const char* request) {
        const auto found = std::find_if(rows.rbegin(), rows.rend(),
                                        [&](const std::string& row) { return row.find(request) != std::string::npos; });
        return rows.rend() - found;
    };
    EXPECT_GT(last("IOCTL_STORAGE_CHECK_VERIFY"), last("request=start")) << "diskpart's, for the read-only attribute";
    EXPECT_GT(last("request=start"), last("IOCTL_DISK_GET_DRIVE_LAYOUT_EX"));
    EXPECT_GT(last("IOCTL_DISK_GET_DRIVE_LAYOUT_EX"), 0);
}

TEST_F(ScanJob, ASolidStateDiskKeepsItsOwnBusTextAndIsAskedForNothingOfNvme) {
    addDrive(0, "sata",
             R"("road": ["ata", "raid-miniport", "nvme-query"], "ata": {"model": "SATA SSD", "rotationRate": "ssd",
                "smart": {"attributes": [{"id": 5, "raw": 1}, {"id": 9, "raw": 4321}, {"id": 196, "raw": 2},
                                         {"id": 197, "raw": 3}, {"id": 198, "raw": 4}]}})");
    testing::TestBench::provideSmartctl();
    bench_.open();
    scan();
    ASSERT_EQ(state().scan.driveCount, 1);
    EXPECT_EQ(drive(0).busCode, kBusCodeOwnText);
    EXPECT_EQ(drive(0).busText.view(), "SSD");
    EXPECT_EQ(drive(0).smartType, kSmartTypeSsd);
    EXPECT_EQ(drive(0).ssd[Counter::kReallocatedSectors], 1);
    EXPECT_EQ(drive(0).ssd[Counter::kPowerOnHours], 4321);
    EXPECT_EQ(drive(0).ssd[Counter::kReportedUncorrectable], kNotReported);
    EXPECT_EQ(drive(0).ssd[Counter::kReallocationEvents], 2);
    EXPECT_EQ(drive(0).ssd[Counter::kPendingSectors], 3);
    EXPECT_EQ(drive(0).ssd[Counter::kOfflineUncorrectable], 4);
    EXPECT_EQ(drive(0).nvme.criticalWarning, -1);
    // Its report named it a bus of its own before the roads were chosen, so none was left to try.
    const std::string ours = "program=torvane_component_tests.exe "; // the tool looks for other adapters in its own way
    EXPECT_THAT(bench_.log(ours + "request=IOCTL_STORAGE_QUERY_PROPERTY"), Not(IsEmpty())) << "the probe's";
    EXPECT_THAT(bench_.log(ours + "request=IOCTL_SCSI_MINIPORT"), IsEmpty());
    EXPECT_THAT(bench_.log(ours + "request=IOCTL_SCSI_GET_ADDRESS"), IsEmpty());
    EXPECT_THAT(bench_.log(ours), Each(Not(HasSubstr("NVME_"))));
}

TEST_F(ScanJob, AnNvmeDriveThatTheToolCouldNotReadIsAnNvmeDriveInTheEnd) {
    addDrive(0, "nvme", R"("road": "nvme-query", "nvme": {"health": {"percentageUsed": 3}})");
    testing::TestBench::provideSmartctl();
    bench_.open();
    scan();
    ASSERT_EQ(state().scan.driveCount, 1);
    EXPECT_THAT(testing::readFile("PHYS0.txt"), HasSubstr("Read SMART Data failed"));
    EXPECT_THAT(view_.messages("INVALID"), ElementsAre(HasSubstr("Invalid Device found at [/dev/sda -d nvme")));
    EXPECT_EQ(drive(0).smartLoaded, 0);
    EXPECT_EQ(drive(0).smartType, kSmartTypeNvme) << "no longer \"none\", which its report made it";
    EXPECT_EQ(drive(0).nvme.percentageUsed, 3);

    // What the report alone makes of it.
    const auto record = std::make_unique<DriveRecord>();
    record->smartType = kSmartTypeStandard;
    SmartParseDrive(state().smart, *record, 0);
    EXPECT_EQ(record->smartType, kSmartTypeNone);
}

TEST_F(ScanJob, EveryDriveGetsItsMonitoringDataItsReadOnlyStateAndItsVolumes) {
    addDrive(0, "sata",
             R"("road": "ata", "ata": {"model": "SATA DISK", "serial": "S1",
                "smart": {"attributes": [{"id": 9, "raw": 8123}, {"id": 5, "raw": 7}]}},
                "volumes": [{"letter": "C", "extents": [{"offset": "1 MiB", "length": "8 MiB"}]}])");
    addDrive(1, "nvme", R"("road": "nvme-query", "readOnly": true, "nvme": {"health": {"percentageUsed": 3}})");
    testing::TestBench::provideSmartctl();
    bench_.open();
    scan();
    ASSERT_EQ(state().scan.driveCount, 2);
    EXPECT_EQ(drive(0).smartLoaded, 1);
    EXPECT_EQ(drive(0).disk[Counter::kPowerOnHours], 8123);
    EXPECT_EQ(drive(0).disk[Counter::kReallocatedSectors], 7);
    EXPECT_EQ(drive(0).nvme.percentageUsed, -1);
    EXPECT_EQ(drive(0).readOnly, 0);
    EXPECT_EQ(drive(0).systemDrive, 1);
    EXPECT_EQ(drive(1).nvme.percentageUsed, 3);
    EXPECT_EQ(drive(1).readOnly, 1);
    EXPECT_EQ(drive(1).systemDrive, 0);
    EXPECT_EQ(state().scan.volumes.count, 1);
}

TEST_F(ScanJob, TheStageIsNeverFour) {
    addDrive(0, "nvme");
    describeHeldDiskpart(); // it is asked for a drive's state in the second stage
    bench_.open();
    std::atomic<bool> done{false};
    std::set<int> seen;
    std::thread watcher([&] {
        while (!done) {
            if (seen.insert(state().scan.stage).second && seen.contains(2)) {
                bench_.hurry();
            }
        }
    });
    scan();
    done = true;
    watcher.join();
    EXPECT_THAT(seen, IsSubsetOf({0, 1, 2, 3, 5}));
    EXPECT_THAT(seen, Contains(2));
}

// --- progress

/// Time that passes only while somebody sleeps.
class SleptClock {
  public:
    [[nodiscard]] ScanClock clock() {
        return {.seconds = [this] { return milliseconds_ / 1000; },
                .sleep =
                    [this](std::uint32_t milliseconds) {
                        milliseconds_ += milliseconds;
                        if (atEachSleep) {
                            atEachSleep(milliseconds_ - kStart);
                        }
                    }};
    }
    [[nodiscard]] std::int64_t elapsed() const { return milliseconds_ - kStart; }

    std::function<void(std::int64_t elapsedMilliseconds)> atEachSleep;

  private:
    static constexpr std::int64_t kStart = 1000000;
    std::int64_t milliseconds_ = kStart;
};

TEST_F(ScanJob, ProgressShowsTheStageOnceASecondAndHidesTwoSecondsAfterTheLast) {
    SleptClock time;
    std::int64_t completeShownAt = 0;
    time.atEachSleep = [&](std::int64_t elapsed) {
        state().scan.stage = elapsed < 2500 ? 1 : elapsed < 4500 ? 3 : 5;
        if (completeShownAt == 0 && view_.progress().back() == 5) {
            completeShownAt = elapsed;
        }
    };
    EXPECT_EQ(runScanProgress(state(), time.clock()), 1U);
    EXPECT_THAT(view_.calls(), ElementsAre("show progress 0..5", "progress 1", "progress 1", "progress 3", "progress 3",
                                           "progress 5", "hide progress"));
    EXPECT_FALSE(view_.progressVisible());
    EXPECT_GE(time.elapsed(), 5000 + 2000);
    EXPECT_LT(time.elapsed(), 5000 + 2000 + 100);
}

TEST_F(ScanJob, ProgressStaysUntilTheScanEndsHoweverLongItTakes) {
    SleptClock time;
    time.atEachSleep = [](std::int64_t elapsed) { state().scan.stage = elapsed < 599'500 ? 2 : 5; };
    runScanProgress(state(), time.clock());
    EXPECT_THAT(callsStartingWith({"progress 2"}), SizeIs(599));
    EXPECT_EQ(view_.calls().back(), "hide progress");
    EXPECT_GE(time.elapsed(), 602'000);
    EXPECT_LT(time.elapsed(), 602'100);
}

TEST_F(ScanJob, ProgressOfALaterScanIsLeftAlone) {
    SleptClock time;
    state().scan.stage = 2;
    time.atEachSleep = [](std::int64_t elapsed) {
        if (elapsed == 3000) {
            ++state().scan.scanNumber;
        }
    };
    runScanProgress(state(), time.clock());
    EXPECT_THAT(view_.calls(), Not(Contains("hide progress")));
    EXPECT_THAT(callsStartingWith({"progress"}), AllOf(Not(IsEmpty()), Each("progress 2")));
    EXPECT_LT(time.elapsed(), 6000);
}

TEST_F(ScanJob, TheBarMovesFromThreeToFiveInARealScan) {
    addDrive(0, "nvme");
    bench_.open();
    loadDrivesAndWait();
    EXPECT_EQ(view_.progressMaximum(), 5);
    EXPECT_EQ(view_.progress().front(), 0);
    EXPECT_EQ(view_.progress().back(), 5);
    EXPECT_THAT(view_.progress(), Not(Contains(4)));
    EXPECT_FALSE(view_.progressVisible());
}

TEST_F(ScanJob, TheStageOfAFastWorkerIsNotOverwritten) {
    bench_.open();
    loadDrives();
    awaitScan();
    EXPECT_EQ(state().scan.stage, 5);
    awaitProgressEnd();
    EXPECT_EQ(state().scan.stage, 5);
}

TEST(SystemScanClock, CountsWholeSecondsWhileItSleeps) {
    const ScanClock clock = systemScanClock();
    const std::int64_t before = clock.seconds();
    clock.sleep(1100);
    EXPECT_GE(clock.seconds(), before + 1);
    EXPECT_LE(clock.seconds(), before + 60);
}

} // namespace
} // namespace torvane
