#include "monitoring/smart_scan.h"

#include "base/tool_watch.h"
#include "monitoring/smart_report.h"
#include "state/app_state.h"
#include "tests/component/import_patched.h"
#include "tests/component/no_captures.h"
#include "tests/component/patience_gone.h"
#include "tests/component/scratch_folder.h"
#include "tests/component/test_bench.h"
#include "tests/support/leftover_report.h"
#include "tests/support/recording_main_view.h"
#include "tests/ui/driver/wait.h"
#include "ui/owned.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

// The import slot of the function that fails here. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateProcessA) __imp_CreateProcessA;
extern decltype(&TerminateJobObject) __imp_TerminateJobObject;
extern decltype(&TerminateProcess) __imp_TerminateProcess;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::readFile;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;
using testing::writeFile;

/// Everything logged so far, as "CATEGORY: message".
std::vector<std::string> rowsOf(const testing::RecordingMainView& view) {
    std::vector<std::string> rows;
    for (const LogRow& row : view.logRows()) {
        rows.push_back(row.category + ": " + row.message);
    }
    return rows;
}

/// A record as the probe leaves it.
std::unique_ptr<DriveRecord> probedRecord() {
    auto record = std::make_unique<DriveRecord>();
    record->model.assign("probed model");
    record->serialNumber.assign("probed serial");
    record->busCode = kBusCodeDirect;
    record->smartType = kSmartTypeStandard;
    return record;
}

// --- With a tool that prints what the test wants

class SmartScan : public ::testing::Test {
  protected:
    SmartScan() {
        std::array<char, 1024> program{};
        GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
        const auto tool = std::filesystem::path(program.data()).parent_path() / "smartctl_program" / "smartctl.exe";
        std::filesystem::copy_file(tool, "smartctl.exe");
        appState().smart = {};
        appState().smart.started = now(); // as if a scan had just begun
    }

    /// As file times count: units of 100 ns since 1601.
    static std::uint64_t now() {
        FILETIME time{};
        GetSystemTimeAsFileTime(&time);
        return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    }

    static void listingIs(const std::string& text) { writeFile("scan.out", text); }
    static void reportOf(const std::string& device, const std::string& text) { writeFile(device + ".out", text); }
    static int scan() { return SmartScanDevices(appState().smart); }

    /// The tool's command lines so far, without its own path.
    static std::vector<std::string> commands() {
        std::vector<std::string> lines;
        std::istringstream text(readFile("commands.txt"));
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
        }
        return lines;
    }

    [[nodiscard]] std::vector<std::string> log() const { return rowsOf(view_); }

    // The tool waits in the middle of a device's report until it is let go.
    static void hold(const std::string& device) { writeFile(device + ".waits", ""); }
    static void letGo(const std::string& device) { writeFile(device + ".goes-on", ""); }
    static void awaitCommands(std::size_t count) {
        ASSERT_TRUE(driver::waitUntil([&] { return commands().size() >= count; }));
    }

    /// The names of all reports in the current folder, sorted.
    static std::vector<std::string> reportFiles() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            if (entry.path().filename().string().starts_with("PHYS")) {
                names.push_back(entry.path().filename().string());
            }
        }
        std::ranges::sort(names);
        return names;
    }

  private:
    testing::ScratchFolder folder_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
};

TEST_F(SmartScan, AsksForTheListingAndThenForEveryDrive) {
    listingIs("/dev/sda -d nvme # /dev/sda, NVMe device\r\n"
              "/dev/sdb -d ata # /dev/sdb, ATA device\r\n"
              "/dev/nvme0 -d nvme # /dev/nvme0, NVMe device\r\n");
    reportOf("sda", "report of a\r\n");
    reportOf("sdb", "report of b\r\n");
    EXPECT_EQ(scan(), 1);
    ASSERT_THAT(commands(),
                UnorderedElementsAre("smartctl.exe --scan", // the others run beside each other
                                     "smartctl.exe /dev/sda -d sat -s on -x -T verypermissive -T verypermissive",
                                     "smartctl.exe /dev/sdb -d sat -s on -x -T verypermissive -T verypermissive"));
    EXPECT_EQ(commands().front(), "smartctl.exe --scan");
    EXPECT_EQ(readFile("Drive Data File.txt"), readFile("scan.out"));
    EXPECT_EQ(readFile("PHYS0.txt"), "report of a\r\n");
    EXPECT_EQ(readFile("PHYS1.txt"), "report of b\r\n");
    EXPECT_EQ(appState().smart.deviceLineCount, 3) << "a line without a drive counts too";
    EXPECT_FALSE(std::filesystem::exists("PHYS-1.txt"));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SmartScan, KeepsTheToolsNameOfEveryDrive) {
    listingIs("/dev/sdc -d ata # x\r\n/dev/csmi0,0 -d ata # x\r\n/dev/sda -d ata # x\r\n");
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(appState().smart.driveNames[0].view(), "/dev/sda");
    EXPECT_EQ(appState().smart.driveNames[1].view(), "");
    EXPECT_EQ(appState().smart.driveNames[2].view(), "/dev/sdc");

    reportOf("sdc", "Device Model:     D\r\n");
    EXPECT_EQ(scan(), 1);
    const auto record = probedRecord();
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 2), 1);
    EXPECT_EQ(record->driveName.view(), "/dev/sdc");
}

TEST_F(SmartScan, AnEmptyListingIsNoFailure) {
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(appState().smart.deviceLineCount, 0);
    EXPECT_THAT(commands(), ElementsAre("smartctl.exe --scan"));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SmartScan, AShortLineAsksForThePreviousDriveAgainByItsOwnText) {
    listingIs("short\r\n/dev/sdb -d ata # x\r\n/dev/sdc\r\n");
    EXPECT_EQ(scan(), 1);
    EXPECT_THAT(commands(), ElementsAre("smartctl.exe --scan",
                                        "smartctl.exe /dev/sdb -d sat -s on -x -T verypermissive -T verypermissive",
                                        "smartctl.exe /dev/sdc -s on -x -T verypermissive -T verypermissive"));
    EXPECT_FALSE(std::filesystem::exists("PHYS2.txt"));
    EXPECT_EQ(appState().smart.deviceLineCount, 3);
}

TEST_F(SmartScan, TheListingsLastLineCountsOnlyWithItsEnd) {
    listingIs("/dev/sda -d ata # x\r\n/dev/sdb -d ata # x");
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(appState().smart.deviceLineCount, 1);
    EXPECT_FALSE(std::filesystem::exists("PHYS1.txt"));
}

TEST_F(SmartScan, NoWordOfTheListingBecomesTwoArguments) {
    // Lines of one word: of the drive before them, and named by their own text.
    listingIs("/dev/sda -d ata\r\n/dev/\"-s,off\r\nx\t-s\toff/dev/sda\r\n");
    EXPECT_EQ(scan(), 1);
    EXPECT_THAT(commands(),
                ElementsAre("smartctl.exe --scan",
                            "smartctl.exe /dev/sda -d sat -s on -x -T verypermissive -T verypermissive",
                            R"(smartctl.exe "/dev/\"-s,off" -s on -x -T verypermissive -T verypermissive)",
                            "smartctl.exe \"x\t-s\toff/dev/sda\" -s on -x -T verypermissive -T verypermissive"));
}

TEST_F(SmartScan, LogsADeviceWhoseSmartDataCannotBeReadAndGoesOn) {
    listingIs("/dev/sda -d ata # /dev/sda, %s device\r\n/dev/sdb -d ata # x\r\n");
    reportOf("sda", "first\r\n\r\nRead SMART Data failed: scsi error\r\n");
    EXPECT_EQ(scan(), 1);
    EXPECT_THAT(log(), ElementsAre("INVALID: Invalid Device found at [/dev/sda -d ata # /dev/sda, %s device]"));
    EXPECT_TRUE(std::filesystem::exists("PHYS1.txt"));
}

TEST_F(SmartScan, FailsWithoutTheTool) {
    ASSERT_TRUE(std::filesystem::remove("smartctl.exe"));
    appState().smart.deviceLineCount = 7;
    EXPECT_EQ(scan(), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [Drive Data File.txt] CreateProcess FAILED",
                                   "INVALID: Could not build [Drive Data File.txt]"));
    EXPECT_THAT(commands(), IsEmpty());
    EXPECT_EQ(appState().smart.deviceLineCount, 7) << "there is no listing whose lines could be counted";
    EXPECT_THAT(reportFiles(), IsEmpty());
}

// The report may tell of an earlier state of the drive; it is still all that is known of it.
TEST_F(SmartScan, WithoutTheToolAReportLeftFromAnEarlierScanIsReadAllTheSame) {
    ASSERT_TRUE(std::filesystem::remove("smartctl.exe"));
    testing::leaveReport(".", 0, "E1", "  9 Power_On_Hours   -O--CK   100   100   000    -    77\r\n");
    EXPECT_EQ(scan(), 0);
    EXPECT_THAT(reportFiles(), ElementsAre("PHYS0.txt"));
    const auto record = probedRecord();
    record->device.identifySerial = "E1";
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 0), 1);
    EXPECT_EQ(record->smartLoaded, 1);
    EXPECT_EQ(record->model.view(), "Left over");
    EXPECT_EQ(record->serialNumber.view(), "E1");
    EXPECT_EQ(record->disk[Counter::kPowerOnHours], 77);
    EXPECT_EQ(record->driveName.view(), "") << "no listing has named it";
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [Drive Data File.txt] CreateProcess FAILED",
                                   "INVALID: Could not build [Drive Data File.txt]"));
}

TEST_F(SmartScan, AReportOfAnEarlierScanAndAnotherDriveIsNotUsed) {
    listingIs("/dev/sda -d ata # x\r\n");
    reportOf("sda", "report of a\r\n");
    testing::leaveReport(".", 3, "OTHER", "  9 Power_On_Hours   -O--CK   100   100   000    -    77\r\n");
    EXPECT_EQ(scan(), 1);
    const auto record = probedRecord();
    record->device.identifySerial = "OWN";
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 3), 0);
    EXPECT_EQ(record->model.view(), "probed model");
    EXPECT_EQ(record->serialNumber.view(), "probed serial");
    EXPECT_EQ(record->smartText, "");
    EXPECT_EQ(record->smartLoaded, 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PHYS3.txt is of an earlier scan and of another drive: not used"));
}

TEST_F(SmartScan, AReportOfThisScanCountsWhateverItsSerialNumber) {
    listingIs("/dev/sda -d ata # x\r\n");
    reportOf("sda", "Serial Number:    BRIDGE\r\n");
    EXPECT_EQ(scan(), 1);
    const auto record = probedRecord();
    record->device.identifySerial = "OWN";
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 0), 1);
    EXPECT_EQ(record->serialNumber.view(), "BRIDGE");
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SmartScan, TheReportOfTheScanBeforeIsLeftOverHoweverYoung) {
    listingIs("/dev/sda -d ata # x\r\n");
    reportOf("sda", "Serial Number:    OTHER\r\n");
    EXPECT_EQ(scan(), 1);
    listingIs("/dev/sdb -d ata # x\r\n"); // drive 0 is not named any more
    reportOf("sdb", "report of b\r\n");
    EXPECT_EQ(scan(), 1);
    const auto record = probedRecord(); // and does not tell a serial number
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 0), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PHYS0.txt is of an earlier scan and of another drive: not used"));
}

TEST_F(SmartScan, ADriveOfTwoLettersHasNoReport) {
    listingIs("/dev/sda -d ata # x\r\n/dev/sdaa -d ata # x\r\n");
    reportOf("sda", "report of a\r\n");
    reportOf("sdaa", "report of aa\r\n");
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(readFile("PHYS0.txt"), "report of a\r\n");
    EXPECT_THAT(reportFiles(), ElementsAre("PHYS0.txt"));
    EXPECT_EQ(appState().smart.deviceLineCount, 2);
}

decltype(&CreateProcessA) realCreateProcess;
int processStarts = 0;

BOOL WINAPI startTheFirstTwo(LPCSTR name, LPSTR commandLine, LPSECURITY_ATTRIBUTES process,
                             LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags, LPVOID environment, LPCSTR folder,
                             LPSTARTUPINFOA startup, LPPROCESS_INFORMATION child) {
    if (++processStarts > 2) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    return realCreateProcess(name, commandLine, process, thread, inherit, flags, environment, folder, startup, child);
}

TEST_F(SmartScan, StopsAtADeviceForWhichTheToolCannotBeStartedAgain) {
    listingIs("/dev/sda -d ata # x\r\n/dev/sdb -d ata # x\r\n/dev/sdc -d ata # x\r\n");
    reportOf("sda", "report of a\r\n");
    processStarts = 0;
    {
        const testing::ImportPatched patched(__imp_CreateProcessA, &startTheFirstTwo);
        realCreateProcess = patched.original();
        EXPECT_EQ(scan(), 0);
    }
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [PHYS1.txt] CreateProcess FAILED",
                                   "INVALID: Could not build [PHYS1.txt]"));
    EXPECT_EQ(processStarts, 4) << "the listing, a, b ahead of its turn, and b again when its turn has come";
    EXPECT_EQ(readFile("PHYS0.txt"), "report of a\r\n");
    EXPECT_THAT(reportFiles(), ElementsAre("PHYS0.txt", "PHYS1.txt")) << "the second was created, and stays empty";
    EXPECT_EQ(readFile("PHYS1.txt"), "");
    EXPECT_EQ(appState().smart.deviceLineCount, 1);
}

// What a tool that ends in the middle of its text has printed so far is taken as it is.

TEST_F(SmartScan, AToolThatDiesWithinItsListingLeavesTheWholeLines) {
    const std::string line = "/dev/sda -d ata # x\r\n";
    listingIs(line + line.substr(0, 5) + std::string(line.size() + 5, 'x'));
    writeFile("scan.dies", "");
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(readFile("Drive Data File.txt"), line + line.substr(0, 5));
    EXPECT_EQ(appState().smart.deviceLineCount, 1);
    EXPECT_THAT(reportFiles(), ElementsAre("PHYS0.txt"));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SmartScan, AToolThatDiesOrHangsUpWithinAReportLeavesTheWholeLines) {
    const std::string firstHalf = "Device Model:     Half\r\n"
                                  "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    3\r\n"
                                  "197 Current_Pending_Sector  -O--CK   100   100   000    -    12";
    for (const char* const mishap : {"sda.dies", "sda.hangs-up"}) {
        listingIs("/dev/sda -d ata # x\r\n/dev/sdb -d ata # x\r\n");
        reportOf("sda", firstHalf + std::string(firstHalf.size(), '3'));
        reportOf("sdb", "Device Model:     Whole\r\n");
        writeFile(mishap, "");
        EXPECT_EQ(scan(), 1) << mishap;
        EXPECT_EQ(readFile("PHYS0.txt"), firstHalf) << mishap;
        const auto record = probedRecord();
        EXPECT_EQ(SmartParseDrive(appState().smart, *record, 0), 1);
        EXPECT_EQ(record->model.view(), "Half");
        EXPECT_EQ(record->disk[Counter::kReallocatedSectors], 3);
        EXPECT_EQ(record->disk[Counter::kPendingSectors], kNotReported)
            << "a number without its line's end may be half a number";
        EXPECT_EQ(readFile("PHYS1.txt"), "Device Model:     Whole\r\n") << "the next device is asked all the same";
        std::filesystem::remove(mishap);
    }
}

TEST_F(SmartScan, AToolThatPrintsNothingOfADeviceLeavesNothingReported) {
    listingIs("/dev/sda -d ata # x\r\n");
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(readFile("PHYS0.txt"), "");
    const auto record = probedRecord();
    record->disk.fill(5);
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 0), 1);
    EXPECT_EQ(record->smartLoaded, 1);
    EXPECT_EQ(record->smartErrorFlag, kSmartNoErrors);
    EXPECT_EQ(record->model.view(), "probed model");
    EXPECT_EQ(record->disk, Counters{}) << "none is reported";
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SmartScan, AListingOfNulBytesInvalidUtf8AndEndlessLinesIsReadAsFarAsItGoes) {
    const std::string endless = "/dev/" + std::string(100'000, 'x') + " -d ata # x\r\n";
    listingIs(endless + "/dev/sda -d \xFF\xFE\x80 # x\r\n" + std::string("\0", 1) + "/dev/sdb -d ata # x\r\n");
    EXPECT_EQ(scan(), 1);
    EXPECT_EQ(appState().smart.deviceLineCount, 2) << "the text ends at its first NUL byte";
    EXPECT_THAT(reportFiles(), ElementsAre("PHYS0.txt")) << "the endless line shows no third word";
    EXPECT_THAT(commands(), ElementsAre("smartctl.exe --scan",
                                        "smartctl.exe /dev/sda -d sat -s on -x -T verypermissive -T verypermissive"));
}

/// A writer that lets others write but keeps the file from being loaded.
UniqueFile keepOpenForWriting(const char* name) {
    return UniqueFile{
        CreateFileA(name, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS, 0, nullptr)};
}

TEST_F(SmartScan, FailsWhenTheListingCannotBeLoaded) {
    const UniqueFile writer = keepOpenForWriting("Drive Data File.txt");
    const testing::PatienceGone atOnce;
    EXPECT_EQ(scan(), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_LoadFileIntoBuffer: [Drive Data File.txt] OPEN_WXISTING FAILED",
                                   "INVALID: Could not load [Drive Data File.txt]"));
}

TEST_F(SmartScan, StopsAtAReportThatCannotBeBuilt) {
    listingIs("/dev/sda -d ata # x\r\n/dev/sdb -d ata # x\r\n/dev/sdc -d ata # x\r\n");
    std::filesystem::create_directory("PHYS1.txt");
    EXPECT_EQ(scan(), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [PHYS1.txt] CREATE_ALWAYS FAILED",
                                   "INVALID: Could not build [PHYS1.txt]"));
    EXPECT_TRUE(std::filesystem::exists("PHYS0.txt"));
    EXPECT_FALSE(std::filesystem::exists("PHYS2.txt"));
    EXPECT_EQ(appState().smart.deviceLineCount, 1);
}

TEST_F(SmartScan, StopsAtAReportThatCannotBeLoaded) {
    listingIs("/dev/sda -d ata # x\r\n/dev/sdb -d ata # x\r\n");
    const UniqueFile writer = keepOpenForWriting("PHYS0.txt");
    EXPECT_EQ(scan(), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_LoadFileIntoBuffer: [PHYS0.txt] OPEN_WXISTING FAILED",
                                   "INVALID: Could not load [PHYS0.txt]"));
    EXPECT_FALSE(std::filesystem::exists("PHYS1.txt"));
}

// --- Reports beside each other

/// The tool's names of so many drives, "sda" first.
std::vector<std::string> devices(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.push_back(std::string("sd") + static_cast<char>('a' + i));
    }
    return names;
}

std::string listingOf(const std::vector<std::string>& devices) {
    std::string listing;
    for (const std::string& device : devices) {
        listing += "/dev/" + device + " -d ata # x\r\n";
    }
    return listing;
}

TEST_F(SmartScan, EightToolsRunAtOnceAndTheNinthWhenOneOfThemHasEnded) {
    const std::vector<std::string> names = devices(20);
    listingIs(listingOf(names));
    for (const std::string& name : names) {
        reportOf(name, "report of " + name + "\r\n");
        hold(name);
    }
    std::thread scanning([] { EXPECT_EQ(scan(), 1); });
    awaitCommands(1 + 8);
    for (std::size_t ended = 0; ended < names.size(); ++ended) {
        // Any of them, not the one that the scan waits for.
        letGo(names[ended < 8 ? 7 - ended : ended]);
        const std::size_t begun = 1 + std::min<std::size_t>(8 + ended + 1, names.size());
        awaitCommands(begun);
        EXPECT_THAT(commands(), SizeIs(begun));
    }
    scanning.join();
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(readFile("PHYS" + std::to_string(i) + ".txt"), "report of " + names[i] + "\r\n");
    }
    EXPECT_EQ(appState().smart.deviceLineCount, 20);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SmartScan, ADriveThatIsNamedTwiceIsAskedAgainWhenItsFirstReportWasTaken) {
    listingIs("/dev/sda -d ata # x\r\n/dev/sda -d scsi # again\r\n/dev/sdb -d ata # x\r\n");
    reportOf("sda", "Read SMART Data failed: x\r\n");
    hold("sda");
    std::thread scanning([] { EXPECT_EQ(scan(), 1); });
    awaitCommands(1 + 2);
    EXPECT_THAT(commands(), UnorderedElementsAre("smartctl.exe --scan", HasSubstr("/dev/sda"), HasSubstr("/dev/sdb")));
    EXPECT_THAT(log(), IsEmpty());
    letGo("sda");
    scanning.join();
    EXPECT_THAT(commands(), UnorderedElementsAre("smartctl.exe --scan", HasSubstr("/dev/sda"), HasSubstr("/dev/sdb"),
                                                 HasSubstr("/dev/sda")));
    EXPECT_THAT(log(), ElementsAre("INVALID: Invalid Device found at [/dev/sda -d ata # x]",
                                   "INVALID: Invalid Device found at [/dev/sda -d scsi # again]"));
}

TEST_F(SmartScan, UntilItsTurnAReportStaysAsItWas) {
    listingIs(listingOf(devices(2)));
    reportOf("sda", "report of a\r\n");
    reportOf("sdb", "report of b\r\n");
    writeFile("PHYS1.txt", "of an earlier scan");
    hold("sda");
    std::thread scanning([] { EXPECT_EQ(scan(), 1); });
    awaitCommands(1 + 2);
    EXPECT_EQ(readFile("PHYS1.txt"), "of an earlier scan");
    letGo("sda");
    scanning.join();
    EXPECT_EQ(readFile("PHYS1.txt"), "report of b\r\n");
}

/// The captures of this program, which lie where the reports do.
std::size_t captures() {
    const std::string own = "Torvane-" + std::to_string(GetCurrentProcessId()) + "-";
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        count += entry.path().filename().string().starts_with(own) ? 1 : 0;
    }
    return count;
}

/// True when no tool runs in the current folder: one that does has its program's file open for good.
bool noToolRuns() {
    return DeleteFileA("smartctl.exe") != FALSE;
}

TEST_F(SmartScan, BehindAReportThatCannotBeBuiltNothingIsWrittenAndNothingRunsOn) {
    listingIs(listingOf(devices(4)));
    reportOf("sda", "report of a\r\n");
    reportOf("sdc", "report of c\r\n");
    reportOf("sdd", "report of d\r\n");
    std::filesystem::create_directory("PHYS1.txt");
    writeFile("PHYS2.txt", "of an earlier scan");
    hold("sda");
    hold("sdd");
    std::thread scanning([] { EXPECT_EQ(scan(), 0); });
    awaitCommands(1 + 4);
    EXPECT_GE(captures(), 1U);
    EXPECT_FALSE(noToolRuns());
    letGo("sda");
    scanning.join(); // though nobody lets the last one go
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [PHYS1.txt] CREATE_ALWAYS FAILED",
                                   "INVALID: Could not build [PHYS1.txt]"));
    EXPECT_EQ(readFile("PHYS2.txt"), "of an earlier scan");
    EXPECT_FALSE(std::filesystem::exists("PHYS3.txt"));
    EXPECT_TRUE(driver::waitUntil([] { return captures() == 0; })) << "a tool's console may hold them for a moment";
    EXPECT_TRUE(driver::waitUntil(&noToolRuns));
}

/// For a scope nobody can end a tool: as if each was held by a driver.
class ToolsThatStay {
  private:
    static BOOL WINAPI endNothing(HANDLE /*what*/, UINT /*exitCode*/) { return TRUE; }

    testing::ImportPatched<decltype(__imp_TerminateJobObject)> groups_{__imp_TerminateJobObject, &endNothing};
    testing::ImportPatched<decltype(__imp_TerminateProcess)> processes_{__imp_TerminateProcess, &endNothing};
};

TEST_F(SmartScan, ToolsThatNobodyCanEndAreGivenOneSecondTogether) {
    listingIs(listingOf(devices(5)));
    for (const std::string& name : devices(5)) {
        reportOf(name, "report of " + name + "\r\n");
    }
    for (const char* const name : {"sdb", "sdc", "sdd", "sde"}) {
        hold(name);
    }
    std::filesystem::create_directory("PHYS0.txt");
    const ToolsThatStay stuck;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(scan(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(3500)) << "four seconds one by one";
    for (const char* const name : {"sdb", "sdc", "sdd", "sde"}) {
        letGo(name);
    }
    EXPECT_TRUE(driver::waitUntil(&noToolRuns));
}

/// Stops as if the user had, once the tool that is waited for is the one of `subject` and a file is there.
class StopsAt : public ToolWatch {
  public:
    StopsAt(std::string subject, std::string file) : subject_(std::move(subject)), file_(std::move(file)) {}
    [[nodiscard]] bool mayBegin() override { return !stopped_; }
    [[nodiscard]] bool mayGoOn(const ToolAtWork& tool) override {
        stopped_ = stopped_ || (tool.subject == subject_ && std::filesystem::exists(file_));
        return !stopped_;
    }

  private:
    std::string subject_;
    std::string file_;
    bool stopped_ = false;
};

TEST_F(SmartScan, AStopEndsEveryToolAndStartsNoOther) {
    const std::vector<std::string> names = devices(12);
    listingIs(listingOf(names));
    for (const std::string& name : names) {
        reportOf(name, "report of " + name + "\r\n");
        hold(name);
    }
    letGo("sda");
    StopsAt watch("drive 1", "sdb.waiting");
    {
        const ToolWatchScope watched(watch);
        EXPECT_EQ(scan(), 0);
    }
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [PHYS1.txt] TERMINATED before the tool was done",
                                   "INVALID: Could not build [PHYS1.txt]"));
    EXPECT_THAT(reportFiles(), ElementsAre("PHYS0.txt", "PHYS1.txt"));
    EXPECT_EQ(readFile("PHYS1.txt"), "report ") << "what it has printed";
    EXPECT_LE(commands().size(), 1U + 9U) << "the first of the eight was let go";
    EXPECT_TRUE(driver::waitUntil([] { return captures() == 0; }));
    EXPECT_TRUE(driver::waitUntil(&noToolRuns));
}

TEST_F(SmartScan, TheToolThatIsWaitedForIsTheOneOfTheTurn) {
    class Asked : public ToolWatch {
      public:
        [[nodiscard]] bool mayBegin() override { return true; }
        [[nodiscard]] bool mayGoOn(const ToolAtWork& tool) override {
            EXPECT_EQ(tool.name, "smartctl");
            if (!tool.subject.empty()) { // else it is the listing
                EXPECT_GE(tool.runsSince, longest[tool.subject]);
                first.try_emplace(tool.subject, tool.runsSince);
                longest[tool.subject] = tool.runsSince;
                if (tool.runsSince > std::chrono::milliseconds(200)) {
                    letGo(tool.subject == "drive 0" ? "sda" : "sdb");
                }
            }
            return true;
        }
        std::map<std::string, std::chrono::milliseconds> first;
        std::map<std::string, std::chrono::milliseconds> longest;
    } watch;
    listingIs(listingOf(devices(2)));
    hold("sda");
    hold("sdb");
    const ToolWatchScope watched(watch);
    EXPECT_EQ(scan(), 1);
    ASSERT_THAT(watch.longest, SizeIs(2));
    EXPECT_GT(watch.first["drive 1"], watch.longest["drive 0"] / 2)
        << "it had run since about when the first one began";
}

TEST_F(SmartScan, AReportIsAsOldAsWhatTheToolWrote) {
    listingIs(listingOf(devices(2)));
    reportOf("sda", "report of a\r\n");
    reportOf("sdb", "report of b\r\n");
    hold("sda");
    std::thread scanning([] { EXPECT_EQ(scan(), 1); });
    awaitCommands(1 + 2);
    Sleep(1000);
    letGo("sda");
    scanning.join();
    const auto first = std::filesystem::last_write_time("PHYS0.txt");
    const auto second = std::filesystem::last_write_time("PHYS1.txt");
    EXPECT_GT(first - second, std::chrono::milliseconds(200)) << "though it was taken later";
}

// --- ... come out as one after the other

/// What a scan leaves: its result, the lines that it has counted, rows and files.
struct Outcome {
    int result;
    int lines;
    std::vector<std::string> rows;
    std::map<std::string, std::string> files;
    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    out << outcome.result << ", lines " << outcome.lines << '\n';
    for (const std::string& row : outcome.rows) {
        out << row << '\n';
    }
    for (const auto& [name, text] : outcome.files) {
        out << name << ": " << text << '\n';
    }
    return out;
}

class SmartScanInTurn : public SmartScan {
  protected:
    /// The scan from the folder as it is, its outcome, and the folder as it was.
    Outcome outcome(const std::function<int()>& scan) {
        const std::size_t before = log().size();
        Outcome seen{.result = scan(), .lines = appState().smart.deviceLineCount, .rows = log(), .files = {}};
        seen.rows.erase(seen.rows.begin(), seen.rows.begin() + static_cast<std::ptrdiff_t>(before));
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            const std::string name = entry.path().filename().string();
            if (entry.is_regular_file() && (name.starts_with("PHYS") || name.starts_with("Drive"))) {
                seen.files[name] = readFile(name);
                writeFile(name, "of an earlier scan");
            }
        }
        std::filesystem::remove("sdc.waiting");
        return seen;
    }

    void expectTheSameInTurn(const std::function<int()>& scan = &SmartScan::scan) {
        for (const char* const left : {"PHYS0.txt", "PHYS1.txt", "PHYS2.txt", "PHYS3.txt"}) {
            std::ofstream(left) << "of an earlier scan"; // where that can be
        }
        std::filesystem::remove("commands.txt");
        const Outcome beside = outcome(scan);
        const std::size_t besideCommands = commands().size();
        std::filesystem::remove("commands.txt");
        const testing::NoCaptures noCaptures;
        const Outcome inTurn = outcome(scan);
        EXPECT_EQ(beside, inTurn);
        EXPECT_GE(besideCommands, commands().size());
        EXPECT_FALSE(inTurn.files.empty());
    }

    void SetUp() override {
        listingIs(listingOf(devices(4)));
        for (const std::string& name : devices(4)) {
            reportOf(name, "report of " + name + "\r\n");
        }
    }
};

TEST_F(SmartScanInTurn, OfDrivesThatAllAnswer) {
    expectTheSameInTurn();
}

TEST_F(SmartScanInTurn, OfAReportInTheMiddleThatCannotBeBuilt) {
    std::filesystem::create_directory("PHYS2.txt");
    expectTheSameInTurn();
}

TEST_F(SmartScanInTurn, OfAReportInTheMiddleThatCannotBeLoaded) {
    const UniqueFile writer = keepOpenForWriting("PHYS2.txt");
    expectTheSameInTurn();
}

TEST_F(SmartScanInTurn, OfADriveListedTwice) {
    listingIs("/dev/sda -d ata # x\r\n/dev/sda -d scsi # y\r\nshort\r\n/dev/sdb -d ata # x\r\n");
    expectTheSameInTurn();
}

TEST_F(SmartScanInTurn, OfADriveWhoseSmartDataCannotBeRead) {
    reportOf("sdb", "b\r\nRead SMART Data failed: x\r\n");
    reportOf("sdc", "");
    expectTheSameInTurn();
}

TEST_F(SmartScanInTurn, OfToolsThatDieOrHangUp) {
    writeFile("sda.dies", "");
    writeFile("sdc.hangs-up", "");
    expectTheSameInTurn();
}

TEST_F(SmartScanInTurn, OfAStopInTheMiddle) {
    hold("sdc");
    expectTheSameInTurn([] {
        StopsAt watch("drive 2", "sdc.waiting");
        const ToolWatchScope watched(watch);
        return scan();
    });
}

BOOL WINAPI startNoneOfC(LPCSTR name, LPSTR commandLine, LPSECURITY_ATTRIBUTES process, LPSECURITY_ATTRIBUTES thread,
                         BOOL inherit, DWORD flags, LPVOID environment, LPCSTR folder, LPSTARTUPINFOA startup,
                         LPPROCESS_INFORMATION child) {
    if (std::string_view(commandLine).find("/dev/sdc") != std::string_view::npos) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    return realCreateProcess(name, commandLine, process, thread, inherit, flags, environment, folder, startup, child);
}

TEST_F(SmartScanInTurn, OfAToolThatCannotBeStarted) {
    const testing::ImportPatched patched(__imp_CreateProcessA, &startNoneOfC);
    realCreateProcess = patched.original();
    expectTheSameInTurn();
}

// --- Much text

// None of its lines names a drive, so that the time goes into the listing alone: one run of the tool, and reading.
TEST_F(SmartScan, ReadsAListingOfFiftyMegabytesInTime) {
    const std::string line = "/dev/nvme0 -d nvme # " + std::string(20'000, 'x') + "\r\n";
    constexpr int kLines = 2'500;
    std::string listing;
    for (int i = 0; i < kLines; ++i) {
        listing += line;
    }
    ASSERT_GE(listing.size(), 50'000'000U);
    listingIs(listing);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(scan(), 1);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60)) << "a tool prints it meanwhile";
    EXPECT_EQ(appState().smart.deviceLineCount, kLines);
    EXPECT_THAT(commands(), ElementsAre("smartctl.exe --scan"));
}

TEST_F(SmartScan, ReadsAReportOfFiftyMegabytesInTime) {
    const std::string longLine = std::string(100'000, 'a') + "\r\n";
    const std::string oddLine = std::string("\0\xFF\xFE", 3) + "\r\n";
    std::string report = "Device Model:     Chatty\r\n";
    while (report.size() < 50'000'000) {
        report += longLine;
    }
    report += "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    3\r\n" + oddLine + "behind the NUL\r\n";
    listingIs("/dev/sda -d ata # x\r\n");
    reportOf("sda", report);
    EXPECT_EQ(scan(), 1);
    const auto record = probedRecord();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 0), 1);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(15));
    EXPECT_EQ(record->model.view(), "Chatty");
    EXPECT_EQ(record->disk[Counter::kReallocatedSectors], 3);
}

// --- SmartParseDrive

TEST_F(SmartScan, ParsesADrivesReportAndLogsItsErrors) {
    writeFile("PHYS3.txt", "Device Model:     Torvane %d\r\nSerial Number:    T1\r\n"
                           "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    49\r\n"
                           "187 Reported_Uncorrect      -O--CK   100   100   000    -    1\r\n"
                           "196 Reallocated_Event_Count -O--CK   100   100   000    -    2\r\n"
                           "197 Current_Pending_ECC_Cnt -O--CK   100   100   000    -    3\r\n"
                           "198 Offline_Uncorrectable   ----CK   100   100   000    -    4\r\n");
    const auto record = probedRecord();
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 3), 1);
    EXPECT_EQ(record->smartLoaded, 1);
    EXPECT_EQ(record->smartText, readFile("PHYS3.txt")) << "is kept for later passes";
    EXPECT_EQ(record->driveName.view(), "");
    EXPECT_THAT(log(),
                ElementsAre("ERROR: [Torvane %d] - [T1] Found Value [49] in SMART Attribute [Reallocated Sector Count]",
                            "ERROR: [Torvane %d] - [T1] Found Value [1] in SMART Attribute [Reallocated Event Count]",
                            "ERROR: [Torvane %d] - [T1] Found Value [2] in SMART Attribute [Reallocated Event Count]",
                            "ERROR: [Torvane %d] - [T1] Found Value [3] in SMART Attribute [Current Pending Sector "
                            "Count]",
                            "ERROR: [Torvane %d] - [T1] Found Value [4] in SMART Attribute [Offline Uncorrectable "
                            "Errors]"));
}

/// Every monitoring field of the record that a report may fill.
std::string monitoringFieldsOf(const DriveRecord& record) {
    std::ostringstream text;
    text << record.smartText << '|' << record.smartLoaded << '|' << record.smartErrorFlag << '|'
         << record.securityEnabled << '|' << record.driveName.view() << '|' << record.model.view() << '|'
         << record.serialNumber.view() << '|' << record.busText.view() << '|' << record.busCode << '|'
         << record.smartType << '|' << record.disk[Counter::kPowerOnHours] << '|'
         << record.disk[Counter::kReallocatedSectors] << '|' << record.disk[Counter::kReportedUncorrectable] << '|'
         << record.disk[Counter::kReallocationEvents] << '|' << record.disk[Counter::kPendingSectors] << '|'
         << record.disk[Counter::kOfflineUncorrectable] << '|' << record.ssd[Counter::kPowerOnHours] << '|'
         << record.uncLbaCount;
    for (const std::int64_t lba : record.uncLbas) {
        text << '|' << lba;
    }
    return text.str();
}

TEST_F(SmartScan, AMissingReportLeavesTheRecordAlone) {
    const auto record = probedRecord();
    record->smartText = "before";
    record->driveName.assign("/dev/before");
    record->busText.assign("bus before");
    record->smartErrorFlag = 1;
    record->securityEnabled = 1;
    record->disk[Counter::kPowerOnHours] = 2;
    record->disk[Counter::kReallocatedSectors] = 3;
    record->disk[Counter::kReportedUncorrectable] = 4;
    record->disk[Counter::kReallocationEvents] = 5;
    record->disk[Counter::kPendingSectors] = 6;
    record->disk[Counter::kOfflineUncorrectable] = 7;
    record->ssd[Counter::kPowerOnHours] = 8;
    record->uncLbaCount = 2;
    record->uncLbas[1] = 9;
    const std::string before = monitoringFieldsOf(*record);
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 11), 0);
    EXPECT_EQ(monitoringFieldsOf(*record), before);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_LoadFileIntoBuffer: [PHYS11.txt] OPEN_WXISTING FAILED",
                                   "ERROR: Could not load SMART [PHYS11.txt] File for Processing"));
}

TEST_F(SmartScan, AReportOfAFailedReadMakesADriveWithoutSmart) {
    writeFile("PHYS0.txt", "Read SMART Data failed: x\r\nDevice Model:     Other\r\n");
    const auto record = probedRecord();
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 0), 0);
    EXPECT_EQ(record->smartLoaded, 0);
    EXPECT_EQ(record->smartType, kSmartTypeNone);
    EXPECT_EQ(record->smartText, readFile("PHYS0.txt"));
    EXPECT_EQ(record->model.view(), "probed model");
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(SmartScan, AReportLeftFromAnEarlierScanIsRead) {
    writeFile("PHYS1.txt", "Device Model:     Earlier\r\n");
    listingIs("/dev/sda -d ata # x\r\n");
    EXPECT_EQ(scan(), 1);
    const auto record = probedRecord();
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 1), 1);
    EXPECT_EQ(record->model.view(), "Earlier");
}

TEST_F(SmartScan, ADriveNumberWithoutANameHasNone) {
    writeFile("PHYS99.txt", "Device Model:     Far\r\n");
    writeFile("PHYS-1.txt", "Device Model:     None\r\n");
    const auto record = probedRecord();
    record->driveName.assign("old");
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, 99), 1);
    EXPECT_EQ(record->driveName.view(), "");
    EXPECT_EQ(SmartParseDrive(appState().smart, *record, -1), 1);
    EXPECT_EQ(record->driveName.view(), "");
}

// --- With the real tool on a bench

std::string ataDrive(int number, const std::string& road, const std::string& ata, const std::string& bus = "sata") {
    return R"({"number": )" + std::to_string(number) + R"(, "bus": ")" + bus + R"(", "size": "64 MiB", "road": ")" +
           road + R"(", "ata": {"model": "Disk )" + std::to_string(number) + R"(", "serial": "SN)" +
           std::to_string(number) + R"(", )" + ata + "}}";
}

std::string attributes(std::initializer_list<std::pair<int, std::int64_t>> raws, const std::string& more = "") {
    std::string list;
    for (const auto& [id, raw] : raws) {
        list += (list.empty() ? "" : ", ") + (R"({"id": )" + std::to_string(id)) + R"(, "raw": )" +
                std::to_string(raw) + "}";
    }
    return R"("smart": {"attributes": [)" + list + "]" + more + "}";
}

class RealTool : public ::testing::Test {
  protected:
    /// Puts the drives on the bench and scans them.
    void scan(const std::vector<std::string>& drives) {
        testing::TestBench::provideSmartctl();
        for (const std::string& drive : drives) {
            bench_.addDrive(drive);
        }
        bench_.open();
        ASSERT_EQ(SmartScanDevices(appState().smart), 1);
    }
    std::unique_ptr<DriveRecord> parse(int number, std::int32_t busCode = kBusCodeDirect) {
        auto record = probedRecord();
        record->busCode = busCode;
        result_ = SmartParseDrive(appState().smart, *record, number);
        return record;
    }
    std::unique_ptr<DriveRecord> scanAndParse(const std::string& ata, std::int32_t busCode = kBusCodeDirect) {
        const bool usb = busCode == kBusCodeUsb;
        scan({ataDrive(0, usb ? "sat" : "ata", ata, usb ? "usb" : "sata")});
        return parse(0, busCode);
    }

    testing::TestBench bench_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    int result_ = -1;
};

TEST_F(RealTool, AHealthyDiskIsReadWithoutAnError) {
    const auto record = scanAndParse(attributes({{5, 0}, {9, 8123}, {187, 0}, {196, 0}, {197, 0}, {198, 0}}));
    EXPECT_EQ(result_, 1);
    EXPECT_EQ(record->model.view(), "Disk 0");
    EXPECT_EQ(record->serialNumber.view(), "SN0");
    EXPECT_EQ(record->driveName.view(), "/dev/sda");
    EXPECT_EQ(record->disk[Counter::kPowerOnHours], 8123);
    EXPECT_EQ(record->disk[Counter::kReallocatedSectors], 0);
    EXPECT_EQ(record->disk[Counter::kReportedUncorrectable], 0);
    EXPECT_EQ(record->disk[Counter::kReallocationEvents], 0);
    EXPECT_EQ(record->disk[Counter::kPendingSectors], 0);
    EXPECT_EQ(record->disk[Counter::kOfflineUncorrectable], 0);
    EXPECT_EQ(record->smartErrorFlag, 2);
    EXPECT_EQ(record->securityEnabled, 0);
    EXPECT_EQ(record->uncLbaCount, 0);
    EXPECT_EQ(record->smartType, kSmartTypeStandard);
    EXPECT_THAT(rowsOf(view_), IsEmpty());
}

TEST_F(RealTool, HoursOfOldDisksAreReadWhateverStandsBehindThem) {
    scan({ataDrive(0, "ata", attributes({{9, 30'000}})), ataDrive(1, "ata", attributes({{9, 45'000}})),
          // Three raw bytes of hours with minutes behind them, as several makers pack them.
          ataDrive(2, "ata", attributes({{9, (std::int64_t{42} << 32) + 8123}}))});
    EXPECT_EQ(parse(0)->disk[Counter::kPowerOnHours], 30'000);
    EXPECT_EQ(parse(1)->disk[Counter::kPowerOnHours], 45'000);
    EXPECT_EQ(parse(2)->disk[Counter::kPowerOnHours], 8123);
    EXPECT_THAT(readFile("PHYS2.txt"), HasSubstr("8123 ("));
}

TEST_F(RealTool, RemappedSectorsAreReadAndLogged) {
    scan({ataDrive(0, "ata", attributes({{5, 1}})), ataDrive(1, "ata", attributes({{5, 49}})),
          ataDrive(2, "ata", attributes({{5, 50}}))});
    EXPECT_EQ(parse(0)->disk[Counter::kReallocatedSectors], 1);
    EXPECT_EQ(parse(1)->disk[Counter::kReallocatedSectors], 49);
    EXPECT_EQ(parse(2)->disk[Counter::kReallocatedSectors], 50);
    EXPECT_THAT(rowsOf(view_),
                ElementsAre("ERROR: [Disk 0] - [SN0] Found Value [1] in SMART Attribute [Reallocated Sector Count]",
                            "ERROR: [Disk 1] - [SN1] Found Value [49] in SMART Attribute [Reallocated Sector Count]",
                            "ERROR: [Disk 2] - [SN2] Found Value [50] in SMART Attribute [Reallocated Sector Count]"));
}

TEST_F(RealTool, PendingUncorrectableAndReportedErrorsAreRead) {
    const auto record = scanAndParse(attributes({{187, 3}, {196, 4}, {197, 5}, {198, 6}}));
    EXPECT_EQ(record->disk[Counter::kReallocatedSectors], kNotReported);
    EXPECT_EQ(record->disk[Counter::kReportedUncorrectable], 3);
    EXPECT_EQ(record->disk[Counter::kReallocationEvents], 4);
    EXPECT_EQ(record->disk[Counter::kPendingSectors], 5);
    EXPECT_EQ(record->disk[Counter::kOfflineUncorrectable], 6);
    EXPECT_EQ(record->disk[Counter::kPowerOnHours], kNotReported);
    EXPECT_EQ(record->smartErrorFlag, 1);
}

TEST_F(RealTool, ASolidStateDeviceIsKnownByItsRotationRate) {
    const auto record = scanAndParse(R"("rotationRate": "ssd", )" + attributes({{5, 0}, {9, 100}}));
    EXPECT_EQ(record->smartType, kSmartTypeSsd);
    EXPECT_EQ(record->busText.view(), "SSD");
    EXPECT_EQ(record->busCode, kBusCodeOwnText);
}

TEST_F(RealTool, ASolidStateDeviceBehindUsbIsNamedSo) {
    const auto record = scanAndParse(R"("rotationRate": "ssd", )" + attributes({{9, 100}}), kBusCodeUsb);
    EXPECT_EQ(record->disk[Counter::kPowerOnHours], 100);
    EXPECT_EQ(record->smartType, kSmartTypeSsd);
    EXPECT_EQ(record->busText.view(), "USB SSD");
    EXPECT_EQ(record->busCode, kBusCodeOwnText);
}

TEST_F(RealTool, ADriveIsSecuredWhenItsSecurityIsEnabledOrLocked) {
    scan({ataDrive(0, "ata", R"("security": "enabled", )" + attributes({})),
          ataDrive(1, "ata", R"("security": "locked", )" + attributes({})),
          ataDrive(2, "ata", R"("security": "frozen", )" + attributes({})),
          ataDrive(3, "ata", R"("security": "unsupported", )" + attributes({}))});
    EXPECT_EQ(parse(0)->securityEnabled, 1);
    EXPECT_EQ(parse(1)->securityEnabled, 1);
    EXPECT_EQ(parse(2)->securityEnabled, 0) << "frozen, but disabled";
    EXPECT_EQ(parse(3)->securityEnabled, 0);
}

std::string errorLog(const std::vector<std::int64_t>& lbas) {
    std::string list;
    for (const std::int64_t lba : lbas) {
        list += (list.empty() ? "" : ", ") + (R"({"lba": )" + std::to_string(lba)) + "}";
    }
    return R"(, "errorLog": [)" + list + "]";
}

TEST_F(RealTool, ErrorLogEntriesAtOneLbaCountOnce) {
    const auto record = scanAndParse(attributes({}, errorLog({100, 200, 100})));
    ASSERT_EQ(record->uncLbaCount, 2);
    EXPECT_EQ(record->uncLbas[0], 100);
    EXPECT_EQ(record->uncLbas[1], 200);
}

// The drive keeps 60, of which the tool prints the eight newest: more than fifty are never printed.
TEST_F(RealTool, OfALongErrorLogTheNewestEightArePrinted) {
    std::vector<std::int64_t> lbas(60);
    std::iota(lbas.begin(), lbas.end(), 0x100000000);
    const auto record = scanAndParse(attributes({}, errorLog(lbas)));
    ASSERT_EQ(record->uncLbaCount, 8);
    EXPECT_EQ(record->uncLbas[0], 0x100000000 + 59) << "newest first";
    EXPECT_EQ(record->uncLbas[7], 0x100000000 + 52);
}

// The tool's tables know these drives by their model, and name and read their attributes in their makers' way.
std::string knownDrive(int number, const std::string& model, const std::string& smart) {
    std::string json = ataDrive(number, "ata", R"("rotationRate": "ssd", )" + smart);
    const std::string ours = "Disk " + std::to_string(number);
    return json.replace(json.find(ours), ours.size(), model);
}

TEST_F(RealTool, AFlashDriveThatReportsNandBlocksAndPendingEcc) {
    scan({knownDrive(0, "CT500MX500SSD1", attributes({{5, 6}, {197, 2}}))});
    EXPECT_THAT(readFile("PHYS0.txt"),
                AllOf(HasSubstr(" Reallocate_NAND_Blk_Cnt "), HasSubstr("Current_Pending_ECC_Cnt")));
    const auto record = parse(0);
    EXPECT_EQ(record->model.view(), "CT500MX500SSD1");
    EXPECT_EQ(record->disk[Counter::kReallocatedSectors], 6);
    EXPECT_EQ(record->disk[Counter::kPendingSectors], 2);
    EXPECT_EQ(record->busText.view(), "SSD");
}

TEST_F(RealTool, AFlashDriveThatReportsUncorrectableErrors) {
    scan({knownDrive(0, "INTEL SSDMCEAC120B3", attributes({{5, 1}, {187, 3}, {197, 4}}))});
    const auto record = parse(0);
    EXPECT_EQ(SmartParseSsdCounters(*record), 1);
    EXPECT_EQ(record->ssd[Counter::kReallocatedSectors], 1);
    EXPECT_EQ(record->ssd[Counter::kReportedUncorrectable], 3);
    EXPECT_EQ(record->ssd[Counter::kPendingSectors], 4);
    EXPECT_EQ(record->disk[Counter::kReportedUncorrectable], kNotReported) << "the maker's name is another one";
}

// The tool divides the drive's minutes by 60 itself and prints "10h+15m": taking the number as hours is right.
TEST_F(RealTool, ADiskThatCountsMinutes) {
    scan({knownDrive(0, "FUJITSU MHZ2320BJ", attributes({{9, 615}}))});
    EXPECT_THAT(readFile("PHYS0.txt"), AllOf(HasSubstr(" Power_On_Minutes "), HasSubstr(" 10h+15m")));
    EXPECT_EQ(parse(0)->disk[Counter::kPowerOnHours], 10);
}

TEST_F(RealTool, ADriveWhoseSmartReadFails) {
    const auto record = scanAndParse(R"("smart": {"readDataFails": true})");
    EXPECT_EQ(result_, 0);
    EXPECT_EQ(record->smartLoaded, 0);
    EXPECT_EQ(record->smartType, kSmartTypeNone);
    EXPECT_EQ(record->model.view(), "probed model");
    EXPECT_THAT(rowsOf(view_),
                ElementsAre("INVALID: Invalid Device found at [/dev/sda -d ata # /dev/sda, ATA device]"));
}

// The devices keep to the protocol, and nothing else: the tool finds checksums wrong, counters absurd and logs endless.
TEST_F(RealTool, DrivesWhoseEveryAnswerIsGarbage) {
    std::vector<std::string> drives;
    for (int number = 0; number < 6; ++number) {
        const std::string seed = R"("garbage": )" + std::to_string(number + 1);
        drives.push_back(number < 3 ? ataDrive(number, "ata", seed) : ataDrive(number, "sat", seed, "usb"));
    }
    scan(drives);
    EXPECT_EQ(appState().smart.deviceLineCount, 6);
    for (int number = 0; number < 6; ++number) {
        EXPECT_THAT(readFile("PHYS" + std::to_string(number) + ".txt"), HasSubstr("invalid SMART checksum")) << number;
        const auto record = parse(number, number < 3 ? kBusCodeDirect : kBusCodeUsb);
        EXPECT_EQ(result_, record->smartLoaded) << number;
        EXPECT_LE(record->uncLbaCount, 50);
        EXPECT_GE(record->disk[Counter::kPowerOnHours], kNotReported);
    }
}

TEST_F(RealTool, ADriveThatIsNoAtaDevice) {
    scan({R"({"number": 1, "bus": "nvme", "size": "64 MiB", "road": "nvme-query", "identity": {"product": "N"}})"});
    EXPECT_THAT(readFile("Drive Data File.txt"), StartsWith("/dev/sdb -d nvme "));
    const auto record = parse(1);
    EXPECT_EQ(record->smartType, kSmartTypeNone);
    EXPECT_THAT(rowsOf(view_), ElementsAre(AllOf(StartsWith("INVALID: Invalid Device found at [/dev/sdb -d nvme "))));
}

TEST_F(RealTool, TheToolIsAskedThroughTheTranslationOnly) {
    scan({ataDrive(4, "sat", attributes({{9, 1}}), "usb")});
    EXPECT_EQ(parse(4, kBusCodeUsb)->disk[Counter::kPowerOnHours], 1);
    const auto started = bench_.log("request=start");
    ASSERT_EQ(started.size(), 2U);
    EXPECT_THAT(started[0], HasSubstr(R"(command-line="smartctl.exe --scan")"));
    EXPECT_THAT(started[1], HasSubstr(R"(command-line="smartctl.exe /dev/sde -d sat -s on -x -T verypermissive -T )"
                                      R"(verypermissive")"));
}

} // namespace
} // namespace torvane
