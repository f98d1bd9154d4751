// A scan whose tools run beside each other: how many at once, and that nothing else tells of it.
#include "scan/scan_job.h"

#include "admin/disk_part.h"
#include "state/app_state.h"
#include "tests/component/import_patched.h"
#include "tests/component/no_captures.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

// The import slot of the function that fails here. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern uintptr_t (*__imp__beginthreadex)(void*, unsigned, unsigned (*)(void*), void*, unsigned, unsigned*);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::readFile;
using ::testing::SizeIs;
using testing::writeFile;

class ScanBeside : public ::testing::Test {
  protected:
    /// The scan's records for a scope: their handles are closed before the bench is.
    struct Records {
        ~Records() {
            state().scan.driveCount = 0;
            for (DriveRecordPtr& record : state().scan.drives) {
                record.reset();
            }
        }
    };

    static AppState& state() { return appState(); }
    static void scan() {
        JobClaim claim = state().jobs.begin(JobKind::kScan).value();
        EXPECT_EQ(runDriveScan(state(), claim), 1U);
    }
};

// --- how many at once

/// The first and the last line of the log that a process has written.
struct ToolRun {
    std::size_t first;
    std::size_t last;
    [[nodiscard]] bool overlaps(const ToolRun& other) const { return first < other.last && other.first < last; }
};

/// By the log, the runs of a tool that took its time as the bench describes it.
std::vector<ToolRun> runsOf(const std::vector<std::string>& log, const std::string& program) {
    std::map<std::string, ToolRun> runs;
    for (std::size_t i = 0; i < log.size(); ++i) {
        const std::size_t begin = log[i].find(" pid=");
        const std::string who = log[i].substr(begin, log[i].find(" target=") - begin);
        if (const auto found = runs.find(who); found != runs.end()) {
            found->second.last = i;
        } else if (who.ends_with("program=" + program) && log[i].find(" request=wait ") != std::string::npos) {
            runs[who] = {i, i};
        }
    }
    std::vector<ToolRun> all;
    all.reserve(runs.size());
    for (const auto& [who, run] : runs) {
        all.push_back(run);
    }
    return all;
}

/// How many of them were at work at the same moment, at most.
int mostAtOnce(const std::vector<ToolRun>& runs) {
    int most = 0;
    for (const ToolRun& run : runs) {
        const auto atItsBegin = std::ranges::count_if(
            runs, [&](const ToolRun& other) { return other.first <= run.first && run.first < other.last; });
        most = std::max(most, static_cast<int>(atItsBegin));
    }
    return most;
}

std::chrono::milliseconds timeOf(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
}

TEST_F(ScanBeside, TwelveDrivesTakeLittleLongerThanTheirQuestionsToDiskpartAlone) {
    constexpr int kDrives = 12;
    testing::TestBench bench;
    for (int number = 0; number < kDrives; ++number) {
        const std::string n = std::to_string(number);
        std::string drive = R"({"size": "16 MiB", "bus": "sata", "road": "ata", "number": )";
        drive.append(n).append(R"(, "identity": {"product": "DISK )").append(n);
        drive.append(R"(", "serial": "S)").append(n).append(R"("}})");
        bench.addDrive(drive);
    }
    bench.describe(R"({"tools": {"smartctl": {"delayMilliseconds": 2000, "delayOnly": " -x "},
                                 "diskpart": {"delayMilliseconds": 1000}}})");
    testing::TestBench::provideSmartctl();
    bench.open();
    const Records records;
    testing::RecordingMainView view;
    const testing::ViewInstalled installed(state(), view);
    const std::chrono::milliseconds alone = timeOf([] {
        for (int number = 0; number < kDrives; ++number) {
            EXPECT_TRUE(askReadOnly(number).loaded);
        }
    });
    const auto before = static_cast<std::ptrdiff_t>(bench.log().size());
    const std::chrono::milliseconds took = timeOf(&ScanBeside::scan);
    std::cout << "a scan of " << kDrives << " drives: " << took.count() << " ms; diskpart alone: " << alone.count()
              << " ms\n";

    std::vector<std::string> log = bench.log();
    log.erase(log.begin(), log.begin() + before);
    const std::vector<ToolRun> reports = runsOf(log, "smartctl.exe");
    const std::vector<ToolRun> questions = runsOf(log, "diskpart.exe");
    EXPECT_THAT(reports, SizeIs(kDrives));
    EXPECT_THAT(questions, SizeIs(kDrives));
    EXPECT_LE(mostAtOnce(reports), 8);
    EXPECT_GE(mostAtOnce(reports), 2);
    EXPECT_EQ(mostAtOnce(questions), 1);
    EXPECT_TRUE(std::ranges::any_of(questions, [&](const ToolRun& question) {
        return std::ranges::any_of(reports, [&](const ToolRun& report) { return question.overlaps(report); });
    }));
    // One after the other they take 36 s.
    EXPECT_LT(took, std::chrono::seconds(30));

    ASSERT_EQ(state().scan.driveCount, kDrives);
    for (int number = 0; number < kDrives; ++number) {
        const DriveRecord& drive = *state().scan.drives[static_cast<std::size_t>(number)];
        EXPECT_EQ(drive.driveNumber, number);
        EXPECT_THAT(drive.smartText, HasSubstr("S" + std::to_string(number) + "\r\n"));
        EXPECT_EQ(drive.readOnly, 0);
    }
    EXPECT_THAT(readFile("ReadOnlyTest.txt"), HasSubstr("select disk 11\n")) << "the last drive's";
}

// --- ... and as if one had run after the other

/// For a scope the library has no room for a thread.
class NoThreads {
  private:
    static uintptr_t refuse(void* /*security*/, unsigned /*stack*/, unsigned (* /*run*/)(void*), void* /*argument*/,
                            unsigned /*flags*/, unsigned* /*id*/) {
        errno = EAGAIN;
        return 0;
    }

    testing::ImportPatched<decltype(__imp__beginthreadex)> patched_{__imp__beginthreadex, &refuse};
};

/// What a scan leaves: what it asked of the window but for the status text, the files, and the records.
struct Outcome {
    std::vector<std::string> calls;
    std::map<std::string, std::string> files;
    std::vector<std::string> drives;
    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    for (const std::string& call : outcome.calls) {
        out << call << '\n';
    }
    for (const auto& [name, text] : outcome.files) {
        out << name << ": " << text << '\n';
    }
    for (const std::string& drive : outcome.drives) {
        out << drive << '\n';
    }
    return out;
}

class ScanInTurn : public ScanBeside {
  protected:
    /// What happens beside the scan, given the window that it talks to.
    using Meanwhile = std::function<void(const testing::RecordingMainView&)>;

    static void listingIs(const std::string& text) { writeFile("scan.out", text); }
    static void reportOf(const std::string& device, const std::string& text) { writeFile(device + ".out", text); }
    static std::string soundReport(const std::string& name) {
        return "Device Model:     " + name + "\r\nSerial Number:    SN-" + name +
               "\r\n  9 Power_On_Hours  -O--CK 091 091 000 - 8123\r\n";
    }

    /// A machine with drives of many kinds, on a bench of its own.
    struct Machine {
        Machine() {
            const auto add = [this](int number, const std::string& more) {
                bench.addDrive(R"({"size": "16 MiB", "number": )" + std::to_string(number) + ", " + more + "}");
            };
            add(0, R"("bus": "sata", "road": "ata", "identity": {"product": "ZERO", "serial": "SN-sda"})");
            add(1, R"("bus": "iscsi")");
            add(2, R"("bus": "usb", "readOnly": true, "identity": {"vendor": "TWO", "serial": "SN-sdc"},
                   "swap": {"identity": {"vendor": "TWO-SWAPPED", "serial": "SN-other"}})");
            add(4, R"("bus": "nvme", "road": "nvme-query", "identity": {"product": "FOUR"})");
            std::array<char, 1024> program{};
            GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
            std::filesystem::copy_file(std::filesystem::path(program.data()).parent_path() / "smartctl_program" /
                                           "smartctl.exe",
                                       "smartctl.exe");
            listingIs("/dev/sda -d ata # a\r\n/dev/sdc -d ata # c\r\n/dev/sde -d nvme # e\r\n");
            reportOf("sda", soundReport("sda"));
            reportOf("sdc", soundReport("sdc"));
            reportOf("sde", "Read SMART Data failed: x\r\n");
            for (const char* const left : {"PHYS0.txt", "PHYS2.txt", "PHYS4.txt"}) {
                writeFile(left, soundReport("left"));
            }
        }
        testing::TestBench bench;
    };

    static std::vector<std::string> callsBut(const std::vector<std::string>& calls, std::string_view beginning) {
        std::vector<std::string> left = calls;
        std::erase_if(left, [&](const std::string& call) { return call.starts_with(beginning); });
        return left;
    }
    static std::map<std::string, std::string> files() {
        std::map<std::string, std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            const std::string name = entry.path().filename().string();
            if (entry.is_regular_file() && name.ends_with(".txt") && name != "commands.txt") {
                all[name] = readFile(name);
            }
        }
        return all;
    }
    static std::vector<std::string> drives() {
        std::vector<std::string> texts;
        for (int i = 0; i < state().scan.driveCount; ++i) {
            const DriveRecord& drive = *state().scan.drives[static_cast<std::size_t>(i)];
            texts.push_back(std::to_string(drive.driveNumber) + " " + std::string(drive.model.view()) + " " +
                            std::string(drive.serialNumber.view()) + " read-only " + std::to_string(drive.readOnly) +
                            " type " + std::to_string(drive.smartType) + " loaded " +
                            std::to_string(drive.smartLoaded) + " hours " +
                            std::to_string(drive.disk[Counter::kPowerOnHours]) + "\n" + drive.smartText);
        }
        return texts;
    }
    template <typename View = testing::RecordingMainView>
    static Outcome scanOf(const std::function<void(Machine&)>& prepare, const Meanwhile& meanwhile,
                          const std::function<void()>& scanIt) {
        Machine machine;
        prepare(machine);
        machine.bench.open();
        const Records records;
        state().smart = {};
        View view;
        const testing::ViewInstalled installed(state(), view);
        std::thread beside([&] { meanwhile(view); });
        scanIt();
        beside.join();
        return {.calls = callsBut(view.calls(), "status "), .files = files(), .drives = drives()};
    }

    /// Scans twice, and gives the outcome.
    template <typename View = testing::RecordingMainView>
    static Outcome expectTheSameInTurn(
        const std::function<void(Machine&)>& prepare = [](Machine&) {},
        const Meanwhile& meanwhile = [](const testing::RecordingMainView&) {},
        const std::vector<std::string>& filesLeftOut = {}) {
        const Outcome beside = scanOf<View>(prepare, meanwhile, &ScanBeside::scan);
        Outcome inTurn = scanOf<View>(prepare, meanwhile, [] {
            const testing::NoCaptures noCaptures;
            const NoThreads noThreads;
            scan();
        });
        Outcome compared = beside;
        for (const std::string& name : filesLeftOut) {
            compared.files.erase(name);
            inTurn.files.erase(name);
        }
        EXPECT_EQ(compared, inTurn);
        return beside;
    }
};

TEST_F(ScanInTurn, OfDrivesOfManyKinds) {
    const Outcome outcome = expectTheSameInTurn();
    EXPECT_THAT(
        outcome.calls,
        ElementsAre("log STATUS: Beginning Drive Scan", "log INVALID: Invalid Device found at [/dev/sde -d nvme # e]",
                    "redraw drives", "log FAILURE: Unsupported Bus Type [iSCSI] BUS: [9] for Physical Device [1]",
                    "log DIAG: USB PHYS [\\\\.\\PhysicalDrive2]", "redraw drives", "redraw drives", "add drive sda",
                    "add drive sdc", "add drive FOUR", "log STATUS: Drive Scan Completed: [3] Drives Found"));
    EXPECT_EQ(outcome.files.at("PHYS2.txt"), soundReport("sdc"));
    EXPECT_EQ(outcome.files.at("ReadOnlyTest.txt"), "select disk 4\nattributes disk\n");
    EXPECT_THAT(outcome.drives, SizeIs(3));
}

TEST_F(ScanInTurn, OfAReportInTheMiddleThatCannotBeBuilt) {
    const Outcome outcome = expectTheSameInTurn([](Machine&) {
        std::filesystem::remove("PHYS2.txt");
        std::filesystem::create_directory("PHYS2.txt");
    });
    EXPECT_THAT(outcome.calls, Contains("log ERROR: PARSE_BuildDataFile: [PHYS2.txt] CREATE_ALWAYS FAILED"));
    EXPECT_EQ(outcome.files.at("PHYS4.txt"), soundReport("left")) << "behind it none was made";
}

TEST_F(ScanInTurn, OfADriveThatIsListedTwice) {
    const Outcome outcome = expectTheSameInTurn(
        [](Machine&) { listingIs("/dev/sde -d nvme # first\r\n/dev/sda -d ata # a\r\n/dev/sde -d ata # again\r\n"); });
    EXPECT_THAT(outcome.calls, Contains("log INVALID: Invalid Device found at [/dev/sde -d ata # again]"));
}

TEST_F(ScanInTurn, OfADiskpartThatIsNotThere) {
    const Outcome outcome = expectTheSameInTurn(
        [](Machine& machine) { machine.bench.describe(R"({"tools": {"diskpart": {"missing": true}}})"); });
    EXPECT_THAT(outcome.calls, Contains("log ERROR: Could not BuildDataFile [DISKPART Results.txt]").Times(3));
    EXPECT_THAT(outcome.drives[0], HasSubstr("read-only 1"));
}

/// Stops the scan when the list is drawn anew, which is when the first drive's attribute was told.
class StoppingView : public testing::RecordingMainView {
  public:
    void redrawDriveList() override {
        RecordingMainView::redrawDriveList();
        appState().jobs.askToStop();
    }
};

TEST_F(ScanInTurn, OfAStopBetweenTheQuestions) {
    // The files are of whatever question was asked last.
    const Outcome outcome = expectTheSameInTurn<StoppingView>([](Machine&) {}, [](const testing::RecordingMainView&) {},
                                                              {"ReadOnlyTest.txt", "DISKPART Results.txt"});
    EXPECT_THAT(outcome.calls, Contains("redraw drives").Times(1));
    ASSERT_THAT(outcome.drives, SizeIs(3));
    EXPECT_THAT(outcome.drives[0], HasSubstr("read-only 0"));
    EXPECT_THAT(outcome.drives[2], HasSubstr("read-only 1")) << "not known";
}

TEST_F(ScanInTurn, OfAStopWhileReportsAreMade) {
    const Outcome outcome = expectTheSameInTurn(
        [](Machine&) {
            reportOf("sdc", soundReport("sdc") + std::string(soundReport("sdc").size(), '\n'));
            writeFile("sdc.waits", "");
        },
        [](const testing::RecordingMainView&) {
            ASSERT_TRUE(driver::waitUntil(
                [] { return std::filesystem::exists("sdc.waiting") && readFile("PHYS0.txt") == soundReport("sda"); }));
            Sleep(500); // until the scan has taken that one and waits for the next
            state().jobs.askToStop();
        },
        {"ReadOnlyTest.txt", "DISKPART Results.txt"});
    EXPECT_THAT(outcome.calls,
                ElementsAre("log STATUS: Beginning Drive Scan",
                            "log ERROR: PARSE_BuildDataFile: [PHYS2.txt] TERMINATED before the tool was done",
                            "log INVALID: Could not build [PHYS2.txt]",
                            "log FAILURE: Unsupported Bus Type [iSCSI] BUS: [9] for Physical Device [1]",
                            "log DIAG: USB PHYS [\\\\.\\PhysicalDrive2]", "add drive sda", "add drive sdc",
                            HasSubstr("add drive"), HasSubstr("log ERROR: Drive Scan TERMINATED"),
                            "log STATUS: Drive Scan Completed: [3] Drives Found"));
}

/// Drives come and go while reports are made: the tool's third is held until that has happened.
class ScanOfAMachineThatChanges : public ScanInTurn {
  protected:
    /// Beside the reports, diskpart was asked about every drive before.
    Outcome expectTheSameInTurn(
        const std::function<void(testing::TestBench&)>& change,
        const std::function<void(Machine&)>& prepare = [](Machine&) {}) {
        testing::TestBench* bench = nullptr;
        bool beside = true;
        return ScanInTurn::expectTheSameInTurn(
            [&](Machine& machine) {
                bench = &machine.bench;
                prepare(machine);
                writeFile("sdc.waits", "");
            },
            [&](const testing::RecordingMainView&) {
                ASSERT_TRUE(driver::waitUntil([] { return std::filesystem::exists("sdc.waiting"); }));
                if (std::exchange(beside, false)) {
                    ASSERT_TRUE(bench->awaitLog("program=diskpart.exe target=drive:4"));
                }
                change(*bench);
                writeFile("sdc.goes-on", "");
            },
            {"ReadOnlyTest.txt", "DISKPART Results.txt"});
    }
};

TEST_F(ScanOfAMachineThatChanges, ADriveThatWasPulledIsNotListed) {
    const Outcome outcome = expectTheSameInTurn([](testing::TestBench& bench) { bench.unplug(2); });
    ASSERT_THAT(outcome.drives, SizeIs(2));
    EXPECT_THAT(outcome.drives[1], HasSubstr("FOUR"));
}

TEST_F(ScanOfAMachineThatChanges, ADriveThatHasComeIsFoundWithItsAnswer) {
    const Outcome outcome = expectTheSameInTurn(
        [](testing::TestBench& bench) { bench.swap(3); }, // a card into its slot
        [](Machine& machine) {
            machine.bench.addDrive(R"({"size": "16 MiB", "number": 3, "bus": "usb", "removable": true, "empty": true,
                                       "identity": {"vendor": "THREE", "serial": "SN-3"}})");
        });
    ASSERT_THAT(outcome.drives, SizeIs(4));
    EXPECT_THAT(outcome.drives[2], HasSubstr("THREE"));
    EXPECT_THAT(outcome.drives[2], HasSubstr("read-only 0"));
}

TEST_F(ScanOfAMachineThatChanges, AnotherDriveInItsPlaceHasItsOwnAnswer) {
    const Outcome outcome = expectTheSameInTurn([](testing::TestBench& bench) { bench.swap(2); });
    ASSERT_THAT(outcome.drives, SizeIs(3));
    EXPECT_THAT(outcome.drives[1], HasSubstr("read-only 1"));
    EXPECT_EQ(outcome.files.at("ReadOnlyTest.txt"), "select disk 2\nattributes disk\n") << "asked again, in its turn";
}

} // namespace
} // namespace torvane
