#include "admin/disk_part.h"
#include "admin/mounting.h"

#include "base/owned_handle.h"
#include "state/app_state.h"
#include "tests/component/import_patched.h"
#include "tests/component/patience_gone.h"
#include "tests/component/started_threads.h"
#include "tests/component/test_bench.h"
#include "tests/support/direct_waiting.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace torvane {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::ImportPatched;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using testing::readFile;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

constexpr const char* kResults = "DISKPART Results.txt";
constexpr const char* kMountResults = "DISKPART MountResults.txt";

class DiskPart : public ::testing::Test {
  protected:
    DiskPart() { state().mountStatus = 0; }
    ~DiskPart() override {
        bench_.hurry();
        testing::StartedThreads::awaitAll();
        EXPECT_TRUE(state().jobs.atWork().empty());
        state().jobs.askToStop(); // a failed change leaves its flag up
        state().mountStatus = 0;
    }

    static AppState& state() { return appState(); }

    static JobClaim begin(JobKind kind) { return state().jobs.begin(kind).value(); }

    /// The change of mounting on this thread.
    static DWORD run(DWORD (*change)(AppState&, JobClaim&)) {
        JobClaim claim = begin(JobKind::kMounting);
        return change(state(), claim);
    }

    /// A bench with two drives, the second read-only, and the given tools.
    void openBench(const std::string& diskpartJson = "{}", bool automount = true) {
        bench_.addDrive(R"({"number": 0, "bus": "nvme", "size": "16 MiB"})");
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "size": "16 MiB", "readOnly": true})");
        bench_.describe(std::string(R"({"automount": )") + (automount ? "true" : "false") +
                        R"(, "tools": {"diskpart": )" + diskpartJson + "}}");
        bench_.open();
    }
    void openBenchPrinting(const std::string& output) { openBench(R"({"output": ")" + output + R"("})"); }
    /// A bench whose diskpart changes no mounting before it is told to hurry; it tells the state at once.
    void openHeldBench(bool automount = true) {
        openBench(std::string(R"({"delayOnly": "bleMountScript", "delayMilliseconds": )") + testing::kUntilToldToHurry +
                      "}",
                  automount);
    }
    void openBenchWithoutDiskPart() { openBench(R"({"missing": true})"); }

    /// Makes it impossible to create a file of that name.
    static void blockFile(const char* name) { std::filesystem::create_directory(name); }

    /// What the event log got, as "CATEGORY: message".
    [[nodiscard]] std::vector<std::string> events() const {
        std::vector<std::string> rows;
        for (const LogRow& row : view_.logRows()) {
            rows.push_back(row.category + ": " + row.message);
        }
        return rows;
    }
    /// The box of a change of mounting that failed.
    void expectFailureBox(const std::string& text, std::function<void()> whileShown = {}) {
        user_.expectStop("***** DRIVE MOUNTING FAILED *****", text, std::move(whileShown));
    }
    [[nodiscard]] std::vector<std::string> diskpartRuns() { return bench_.log("request=start"); }

    /// Waits until the change of mounting that was started runs diskpart, behind the question for the state; or has
    /// ended.
    void awaitSecondRun() {
        while (diskpartRuns().size() < 2 && !testing::StartedThreads::lastHasEnded()) {
            Sleep(10);
        }
    }
    /// Waits for the change of mounting that was started last; its exit code.
    static DWORD awaitWorker() { return testing::StartedThreads::awaitLast(); }

    testing::TestBench bench_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    testing::ScriptedPrompts user_;
    testing::StartedThreads threads_;
    DriveRecord drive_;
};

/// Lets the results file be written but not be loaded, while it lives; that it will not be let go of soon shows at
/// once.
class ResultsHeldOpen {
  public:
    explicit ResultsHeldOpen(const char* name)
        : file_(CreateFileA(name, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, 0,
                            nullptr)) {}

  private:
    UniqueFile file_;
    testing::PatienceGone patienceGone_;
};

// --- the read-only attribute

TEST_F(DiskPart, AWritableDiskIsNotReadOnly) {
    openBench();
    drive_.driveNumber = 0;
    EXPECT_EQ(DP_TestReadOnly(view_, drive_), 1);
    EXPECT_EQ(drive_.readOnly, 0);
    EXPECT_THAT(view_.calls(), ElementsAre("redraw drives"));
}

TEST_F(DiskPart, AReadOnlyDiskIsReadOnly) {
    openBench();
    drive_.driveNumber = 1;
    EXPECT_EQ(DP_TestReadOnly(view_, drive_), 1);
    EXPECT_EQ(drive_.readOnly, 1);
}

TEST_F(DiskPart, TheReadOnlyTestLeavesItsScriptAndResults) {
    openBench();
    drive_.driveNumber = 1;
    DP_TestReadOnly(view_, drive_);
    EXPECT_EQ(readFile("ReadOnlyTest.txt"), "select disk 1\nattributes disk\n");
    EXPECT_THAT(readFile(kResults), HasSubstr("Read-only"));
    EXPECT_THAT(diskpartRuns(), ElementsAre(HasSubstr(R"(command-line="diskpart /s ReadOnlyTest.txt")")));
}

TEST_F(DiskPart, ResultsWithoutTheReadOnlyLineLeaveTheDiskReadOnly) {
    openBenchPrinting("There is no disk selected.\\r\\n");
    EXPECT_EQ(DP_TestReadOnly(view_, drive_), 1);
    EXPECT_EQ(drive_.readOnly, 1);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPart, AReadOnlyScriptThatCannotBeCreatedIsLogged) {
    openBench();
    blockFile("ReadOnlyTest.txt");
    EXPECT_EQ(DP_TestReadOnly(view_, drive_), 0);
    EXPECT_EQ(drive_.readOnly, 1);
    EXPECT_THAT(events(),
                ElementsAre("ERROR: Could not create DISKPART [ReadOnlyTest.txt] script. Setting READONLY to OFF"));
    EXPECT_THAT(diskpartRuns(), IsEmpty());
    EXPECT_THAT(view_.calls(), Not(Contains("redraw drives")));
}

TEST_F(DiskPart, AReadOnlyTestWithoutDiskPartIsLogged) {
    openBenchWithoutDiskPart();
    EXPECT_EQ(DP_TestReadOnly(view_, drive_), 0);
    EXPECT_EQ(drive_.readOnly, 1);
    EXPECT_THAT(events(), ElementsAre(HasSubstr("CreateProcess FAILED"),
                                      "ERROR: Could not BuildDataFile [DISKPART Results.txt]"));
}

TEST_F(DiskPart, ReadOnlyResultsThatCannotBeLoadedAreLogged) {
    openBench();
    const ResultsHeldOpen held(kResults);
    EXPECT_EQ(DP_TestReadOnly(view_, drive_), 0);
    EXPECT_EQ(drive_.readOnly, 1);
    EXPECT_THAT(events(), ElementsAre(HasSubstr("OPEN_WXISTING FAILED"),
                                      "ERROR: Could not Load File [DISKPART Results.txt] into buffer"));
}

// --- the mount status

TEST_F(DiskPart, MountingEnabledIsToldAndKept) {
    openBench();
    EXPECT_EQ(DP_GetMountStatus(state()), 1001);
    EXPECT_EQ(state().mountStatus, 1001);
    EXPECT_EQ(readFile("MountStatusScript.txt"), "automount\n");
    EXPECT_THAT(diskpartRuns(), ElementsAre(HasSubstr(R"(command-line="diskpart /s MountStatusScript.txt")")));
    EXPECT_THAT(readFile(kMountResults), HasSubstr("mounting"));
    EXPECT_THAT(view_.calls(), ElementsAre("redraw drives"));
}

TEST_F(DiskPart, MountingDisabledIsToldAndKept) {
    openBench("{}", false);
    EXPECT_EQ(DP_GetMountStatus(state()), 1000);
    EXPECT_EQ(state().mountStatus, 1000);
}

TEST_F(DiskPart, AnyOtherMountingWordIsNeither) {
    openBenchPrinting("Automatic mounting of new volumes postponed.\\r\\n");
    EXPECT_EQ(DP_GetMountStatus(state()), 1002);
    EXPECT_EQ(state().mountStatus, 1002);
}

TEST_F(DiskPart, ResultsWithoutAMountingLineAreNeither) {
    openBenchPrinting("The arguments specified for this command are not valid.\\r\\n");
    EXPECT_EQ(DP_GetMountStatus(state()), 1002);
}

/// A diskpart that speaks German; `manager`: the system's mount manager tells whether new volumes are mounted.
std::string germanBench(bool manager) {
    return std::string(R"({"tellsAutomount": )") + (manager ? "true" : "false") +
           R"(, "tools": {"diskpart": {"language": "de"}}})";
}

TEST_F(DiskPart, MountingIsChangedAndToldInGermanToo) {
    bench_.describe(germanBench(true));
    bench_.open();
    EXPECT_EQ(run(DP_DisableMountingWorker), 1U);
    EXPECT_EQ(state().mountStatus, kMountingDisabled);
    EXPECT_THAT(readFile(kMountResults), HasSubstr("Die automatische Bereitstellung neuer Volumes ist deaktiviert."));
    EXPECT_EQ(DP_GetMountStatus(state()), kMountingDisabled);
    EXPECT_EQ(run(DP_EnableMountingWorker), 1U);
    EXPECT_EQ(state().mountStatus, kMountingEnabled);
    EXPECT_EQ(DP_GetMountStatus(state()), kMountingEnabled);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPart, MountingThatNobodyTellsInEnglishIsNeither) {
    bench_.describe(germanBench(false));
    bench_.open();
    EXPECT_EQ(run(DP_DisableMountingWorker), 1U);
    EXPECT_EQ(state().mountStatus, kMountingUndetermined);
    EXPECT_EQ(DP_GetMountStatus(state()), kMountingUndetermined);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPart, AMountStatusScriptThatCannotBeCreatedIsLoggedAndKeepsTheStatus) {
    openBench();
    state().mountStatus = kMountingEnabled;
    blockFile("MountStatusScript.txt");
    EXPECT_EQ(DP_GetMountStatus(state()), 0);
    EXPECT_EQ(state().mountStatus, 1001);
    EXPECT_THAT(
        events(),
        ElementsAre("ERROR: Could not create DISKPART [MountStatusScript.txt] script. Setting READONLY to OFF"));
}

TEST_F(DiskPart, AMountStatusWithoutDiskPartIsLoggedAndKeepsTheStatus) {
    openBenchWithoutDiskPart();
    state().mountStatus = kMountingEnabled;
    EXPECT_EQ(DP_GetMountStatus(state()), 0);
    EXPECT_EQ(state().mountStatus, 1001);
    EXPECT_THAT(events(), ElementsAre(HasSubstr("CreateProcess FAILED"),
                                      "ERROR: Could not BuildDataFile [DISKPART MountResults.txt]"));
}

TEST_F(DiskPart, MountResultsThatCannotBeLoadedAreLogged) {
    openBench();
    const ResultsHeldOpen held(kMountResults);
    EXPECT_EQ(DP_GetMountStatus(state()), 0);
    EXPECT_THAT(events(), ElementsAre(HasSubstr("OPEN_WXISTING FAILED"),
                                      "ERROR: Could not Load File [DISKPART MountResults.txt] into buffer"));
}

// --- disabling

constexpr const char* kNoScript =
    "Drive Mounting was not changed: the file [DisableMountScript.txt] could not be written.";
constexpr const char* kNotRun = "Drive Mounting was not changed: diskpart could not be run. Press \"Terminate Current "
                                "Task\" before the next job.";
constexpr const char* kNoResults = "Whether Drive Mounting was changed is not known: the file [DISKPART "
                                   "MountResults.txt] could not be read. Press \"Terminate Current Task\" before the "
                                   "next job.";
constexpr const char* kAlreadyDisabled = "Mounting Status is already DISABLED. If not working TRY REBOOTING for "
                                         "mounting status change to register. Continue DISABLE anyway?";
constexpr const char* kAlreadyEnabled = "Mounting Status is already ENABLED. If not working TRY REBOOTING for mounting "
                                        "status change to register. Continue ENABLE anyway?";

TEST_F(DiskPart, DisablingRunsTheScriptAndReportsAtTheNextTick) {
    openBench();
    onDisableMounting(state());
    EXPECT_THAT(view_.timers(), ElementsAre(Pair(3001, 500)));
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_EQ(state().mountStatus, 1000);
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(readFile("DisableMountScript.txt"), "automount disable\nautomount scrub\n");
    EXPECT_THAT(diskpartRuns(), ElementsAre(HasSubstr("MountStatusScript.txt"),
                                            HasSubstr(R"(command-line="diskpart /s DisableMountScript.txt")")));

    user_.expectInform("****** DISABLED ******", "Drive Mounting has been DISABLED",
                       [this] { EXPECT_THAT(view_.timers(), IsEmpty()); });
    onMountTimer(state(), 3001);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPart, TheDriveListIsRedrawnByTheStatusCheckAndByEitherWorker) {
    openBench();
    EXPECT_EQ(run(DP_DisableMountingWorker), 1U);
    EXPECT_THAT(view_.calls(), ElementsAre("redraw drives"));
    EXPECT_EQ(run(DP_EnableMountingWorker), 1U);
    EXPECT_THAT(view_.calls(), ElementsAre("redraw drives", "redraw drives"));
    onDisableMounting(state());
    awaitWorker();
    EXPECT_THAT(view_.calls(), UnorderedElementsAre("redraw drives", "redraw drives", "redraw drives", "redraw drives",
                                                    "start timer 3001 500"));
}

TEST_F(DiskPart, WhoLeavesWhileTheStatusIsAskedForChangesNothing) {
    openBench();
    state().mountStatus = kMountingEnabled;
    const testing::LeftWaits left;
    onDisableMounting(state());
    onEnableMounting(state());
    EXPECT_TRUE(state().jobs.atWork().empty());
    EXPECT_FALSE(testing::StartedThreads::any());
    EXPECT_THAT(diskpartRuns(), IsEmpty());
    EXPECT_THAT(view_.timers(), IsEmpty());
    EXPECT_EQ(state().mountStatus, 1001);
    EXPECT_EQ(DP_GetMountStatus(state()), 0);
}

// A status check that fails tells 0, which is neither "disabled" nor "enabled": nothing is asked, and the worker tries.

TEST_F(DiskPart, DisablingGoesOnWithoutAQuestionWhenTheStatusCheckFails) {
    openBench("{}", false);
    blockFile("MountStatusScript.txt");
    onDisableMounting(state());
    EXPECT_THAT(user_.shown(), IsEmpty());
    EXPECT_THAT(view_.timers(), ElementsAre(Pair(3001, 500)));
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_EQ(state().mountStatus, 1000);
    EXPECT_THAT(diskpartRuns(), ElementsAre(HasSubstr("DisableMountScript.txt")));
    EXPECT_THAT(events(), SizeIs(1));
}

TEST_F(DiskPart, EnablingGoesOnWithoutAQuestionWhenTheStatusCheckFails) {
    openBench();
    blockFile("MountStatusScript.txt");
    state().mountStatus = kMountingDisabled;
    onEnableMounting(state());
    EXPECT_THAT(user_.shown(), IsEmpty());
    EXPECT_THAT(view_.timers(), ElementsAre(Pair(3000, 500)));
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_EQ(state().mountStatus, 1001);
    EXPECT_THAT(diskpartRuns(), ElementsAre(HasSubstr("EnbleMountScript.txt")));
}

TEST_F(DiskPart, DisablingIsInProgressUntilTheWorkersResult) {
    openHeldBench();
    onDisableMounting(state());
    EXPECT_EQ(state().mountStatus, 1003);
    onMountTimer(state(), 3001);
    EXPECT_THAT(user_.shown(), IsEmpty());
    EXPECT_THAT(view_.timers(), SizeIs(1));
    bench_.hurry();
    awaitWorker();
    EXPECT_NE(state().mountStatus, 1003);
}

TEST_F(DiskPart, AJobIsActiveWhileTheWorkerRuns) {
    openHeldBench();
    onDisableMounting(state());
    awaitSecondRun();
    EXPECT_TRUE(state().jobs.active());
    bench_.hurry();
    awaitWorker();
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(DiskPart, AWorkerThatCannotBeStartedIsLoggedAndLeavesNothingInProgress) {
    openBench();
    {
        const ImportPatched patched(
            __imp_CreateThread,
            +[](LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) -> HANDLE {
                SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                return nullptr;
            });
        onDisableMounting(state());
    }
    EXPECT_EQ(state().mountStatus, 1001) << "what the check told";
    EXPECT_FALSE(state().jobs.active());
    EXPECT_THAT(view_.timers(), IsEmpty());
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not start the change of Drive Mounting"));
}

TEST_F(DiskPart, ACopyThatWasToldToStopIsNotSetGoingAgain) {
    openHeldBench(false);
    const JobClaim copy = begin(JobKind::kClone);
    state().jobs.askToStop(); // its last read is under way
    onEnableMounting(state());
    awaitSecondRun();
    EXPECT_FALSE(state().jobs.active());
    bench_.hurry();
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_FALSE(state().jobs.active());
    EXPECT_FALSE(copy.isRaised());
}

TEST_F(DiskPart, AScanStaysAJobThatRuns) {
    openBench();
    const JobClaim scan = begin(JobKind::kScan);
    EXPECT_EQ(run(DP_EnableMountingWorker), 1U);
    EXPECT_TRUE(scan.isRaised());
}

TEST_F(DiskPart, AScanThatWasTerminatedDoesNotCountAsAJobThatRunsAgain) {
    openHeldBench();
    const JobClaim scan = begin(JobKind::kScan);
    state().jobs.askToStop();
    onDisableMounting(state());
    awaitSecondRun();
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(DiskPart, ACopyThatRunsIsNotEnded) {
    openBench();
    JobClaim copy = begin(JobKind::kClone);
    ASSERT_TRUE(copy.raise());
    EXPECT_EQ(run(DP_EnableMountingWorker), 1U);
    EXPECT_TRUE(copy.isRaised());
}

TEST_F(DiskPart, ACopyThatHasBegunMeanwhileIsNotEnded) {
    openHeldBench();
    onDisableMounting(state());
    awaitSecondRun();
    JobClaim copy = begin(JobKind::kImage);
    ASSERT_TRUE(copy.raise());
    bench_.hurry();
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_EQ(state().mountStatus, 1000);
    EXPECT_TRUE(copy.isRaised());
}

TEST_F(DiskPart, AReadTestThatHasBegunMeanwhileIsNotEnded) {
    openHeldBench();
    onDisableMounting(state());
    awaitSecondRun();
    const JobClaim test = begin(JobKind::kCriticalTest);
    bench_.hurry();
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_TRUE(test.isRaised());
}

TEST_F(DiskPart, AReadTestThatWasToldToStopDoesNotKeepTheFlagRaised) {
    openBench();
    const JobClaim test = begin(JobKind::kCriticalTest);
    state().jobs.askToStop(); // its last read is under way
    EXPECT_EQ(run(DP_EnableMountingWorker), 1U);
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(DiskPart, OfTwoChangesTheFirstToEndLeavesTheOthersFlag) {
    openHeldBench();
    onDisableMounting(state());
    awaitSecondRun();
    JobClaim other = begin(JobKind::kMounting);
    ASSERT_TRUE(other.raise());
    bench_.hurry();
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_TRUE(other.isRaised());
    EXPECT_TRUE(state().jobs.active());
}

TEST_F(DiskPart, AFlagThatAFailedChangeLeftIsLoweredByTheNextThatSucceeds) {
    openBench();
    {
        const ResultsHeldOpen held(kMountResults);
        EXPECT_EQ(run(DP_DisableMountingWorker), 0U);
    }
    EXPECT_TRUE(state().jobs.active());
    EXPECT_EQ(run(DP_DisableMountingWorker), 1U);
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(DiskPart, AChangeThatFailsBesideACopyLeavesNoFlag) {
    openBenchWithoutDiskPart();
    const JobClaim copy = begin(JobKind::kClone);
    EXPECT_EQ(run(DP_DisableMountingWorker), 0U);
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(DiskPart, DisablingWhatIsDisabledAndAnsweringNoRunsNothing) {
    openBench("{}", false);
    user_.expectAsk("***** MOUNTING DISABLED -- REBOOT *****", kAlreadyDisabled, false);
    onDisableMounting(state());
    EXPECT_THAT(diskpartRuns(), SizeIs(1)); // the status check alone
    EXPECT_FALSE(testing::StartedThreads::any());
    EXPECT_THAT(view_.timers(), IsEmpty());
    EXPECT_EQ(state().mountStatus, 1000);
    EXPECT_FALSE(std::filesystem::exists("DisableMountScript.txt"));
}

TEST_F(DiskPart, DisablingWhatIsDisabledAndAnsweringYesRunsAnyway) {
    openBench("{}", false);
    user_.expectAsk("***** MOUNTING DISABLED -- REBOOT *****", kAlreadyDisabled, true);
    onDisableMounting(state());
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_THAT(diskpartRuns(), SizeIs(2));
    EXPECT_EQ(state().mountStatus, 1000);
}

TEST_F(DiskPart, DisablingWithAnotherOutcomeSaysSo) {
    openBenchPrinting("DiskPart successfully scrubbed the mount point settings in the system.\\r\\n\\r\\nAutomatic "
                      "mounting of new volumes enabled.\\r\\n");
    EXPECT_EQ(run(DP_DisableMountingWorker), 1U);
    EXPECT_EQ(state().mountStatus, 1001);
    user_.expectInform("****** NOT DISABLED ******", "Drive Mounting has NOT been DISABLED");
    onMountTimer(state(), 3001);
}

TEST_F(DiskPart, DisablingWithoutAScrubbedLineIsNotDisabled) {
    openBenchPrinting("Access is denied.\\r\\n");
    EXPECT_EQ(run(DP_DisableMountingWorker), 1U);
    EXPECT_EQ(state().mountStatus, 1002);
    EXPECT_FALSE(state().jobs.active());
    user_.expectInform("****** NOT DISABLED ******", "Drive Mounting has NOT been DISABLED");
    onMountTimer(state(), 3001);
}

TEST_F(DiskPart, ADisableScriptThatCannotBeCreatedIsLoggedAndNeverReported) {
    openBench();
    blockFile("DisableMountScript.txt");
    expectFailureBox(kNoScript);
    onDisableMounting(state());
    EXPECT_EQ(awaitWorker(), 0U);
    EXPECT_EQ(state().mountStatus, 1003);
    EXPECT_FALSE(state().jobs.active());
    EXPECT_THAT(
        events(),
        ElementsAre("ERROR: Could not create DISKPART [DisableMountScript.txt] script. Setting READONLY to OFF"));
    onMountTimer(state(), 3001);
    EXPECT_THAT(user_.shown(), SizeIs(1));
    EXPECT_THAT(view_.timers(), IsEmpty());
}

TEST_F(DiskPart, AScriptThatCannotBeCreatedLeavesTheFlagOfAnEarlierFailureUp) {
    openBench();
    {
        std::optional<JobClaim> failed = state().jobs.begin(JobKind::kMounting);
        ASSERT_TRUE(failed && failed->raise());
        failed->leaveRaised();
    }
    blockFile("DisableMountScript.txt");
    expectFailureBox(kNoScript); // an earlier change's box has told about the flag
    onDisableMounting(state());
    EXPECT_EQ(awaitWorker(), 0U);
    EXPECT_TRUE(state().jobs.active());
}

TEST_F(DiskPart, AFailedDisableRunIsLoggedAndLeavesTheStatusAndTheJobAsTheyAre) {
    openBenchWithoutDiskPart();
    state().mountStatus = kMountingChanging;
    EXPECT_EQ(run(DP_DisableMountingWorker), 0U);
    EXPECT_EQ(state().mountStatus, 1003);
    EXPECT_TRUE(state().jobs.active());
    EXPECT_THAT(events(), ElementsAre(HasSubstr("CreateProcess FAILED"),
                                      "ERROR: Could not BuildDataFile for [DISKPART MountResults.txt]"));
}

TEST_F(DiskPart, DisableResultsThatCannotBeLoadedAreLoggedAndLeaveTheStatusAndTheJobAsTheyAre) {
    openBench();
    const ResultsHeldOpen held(kMountResults);
    state().mountStatus = kMountingChanging;
    EXPECT_EQ(run(DP_DisableMountingWorker), 0U);
    EXPECT_EQ(state().mountStatus, 1003);
    EXPECT_TRUE(state().jobs.active());
    EXPECT_THAT(events(), ElementsAre(HasSubstr("OPEN_WXISTING FAILED"),
                                      "ERROR: Could not Load File [DISKPART MountResults.txt] into buffer"));
}

TEST_F(DiskPart, ADisableThatFailsToRunIsSaidAtOnceAndNeverReported) {
    openBenchWithoutDiskPart();
    expectFailureBox(kNotRun, [] { EXPECT_TRUE(state().jobs.active()); });
    onDisableMounting(state());
    EXPECT_EQ(awaitWorker(), 0U);
    EXPECT_EQ(state().mountStatus, 1003);
    EXPECT_EQ(events().back(), "ERROR: Could not BuildDataFile for [DISKPART MountResults.txt]");
    onMountTimer(state(), 3001);
    EXPECT_THAT(user_.shown(), SizeIs(1));
    EXPECT_THAT(view_.timers(), IsEmpty()) << "it would report on the next change";
}

TEST_F(DiskPart, ADisableWhoseResultsCannotBeLoadedIsSaidAtOnceAndNeverReported) {
    openBench();
    const ResultsHeldOpen held(kMountResults);
    expectFailureBox(kNoResults);
    onDisableMounting(state());
    EXPECT_EQ(awaitWorker(), 0U);
    EXPECT_EQ(state().mountStatus, 1003);
    EXPECT_EQ(events().back(), "ERROR: Could not Load File [DISKPART MountResults.txt] into buffer");
    onMountTimer(state(), 3001);
    EXPECT_THAT(user_.shown(), SizeIs(1));
    EXPECT_THAT(view_.timers(), IsEmpty());
}

TEST_F(DiskPart, AFailureBesideACopySaysNothingOfAFlag) {
    openBenchWithoutDiskPart();
    const JobClaim copy = begin(JobKind::kClone);
    expectFailureBox("Drive Mounting was not changed: diskpart could not be run.");
    onDisableMounting(state());
    EXPECT_EQ(awaitWorker(), 0U);
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(DiskPart, TheChangeAfterAFailedOneIsReportedForItself) {
    openBench();
    blockFile("DisableMountScript.txt");
    expectFailureBox(kNoScript);
    onDisableMounting(state());
    EXPECT_EQ(awaitWorker(), 0U);
    // The check for the next change stores what mounting is now.
    user_.expectAsk("***** MOUNTING ENABLED -- REBOOT *****", kAlreadyEnabled, true);
    onEnableMounting(state());
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_THAT(view_.timers(), ElementsAre(Pair(3000, 500)));
}

// --- enabling

TEST_F(DiskPart, EnablingRunsTheScriptAndReports) {
    openBench("{}", false);
    onEnableMounting(state());
    EXPECT_THAT(view_.timers(), ElementsAre(Pair(3000, 500)));
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_EQ(state().mountStatus, 1001);
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(readFile("EnbleMountScript.txt"), "automount enable\nautomount scrub\n");
    EXPECT_THAT(diskpartRuns(), ElementsAre(HasSubstr("MountStatusScript.txt"),
                                            HasSubstr(R"(command-line="diskpart /s EnbleMountScript.txt")")));

    user_.expectInform("****** ENABLED ******", "Drive Mounting has been ENABLED",
                       [this] { EXPECT_THAT(view_.timers(), IsEmpty()); });
    onMountTimer(state(), 3000);
}

TEST_F(DiskPart, TheFirstTickOfEnablingReportsWhateverTheCheckLeft) {
    openHeldBench(false);
    onEnableMounting(state());
    EXPECT_EQ(state().mountStatus, 1000); // never "in progress"
    user_.expectInform("****** NOT ENABLED ******", "Drive Mounting hasNOT  been ENABLED");
    onMountTimer(state(), 3000);
    EXPECT_THAT(view_.timers(), IsEmpty());
    bench_.hurry();
    awaitWorker();
    EXPECT_EQ(state().mountStatus, 1001);
}

TEST_F(DiskPart, TheOutcomeOfEnablingIsAlsoALineOnStandardOutput) {
    state().mountStatus = kMountingEnabled;
    user_.expectInform("****** ENABLED ******", "Drive Mounting has been ENABLED");
    ::testing::internal::CaptureStdout();
    onMountTimer(state(), 3000);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Setting ENABLE Complete\n");
}

TEST_F(DiskPart, EnablingWhatIsEnabledAndAnsweringNoRunsNothing) {
    openBench();
    user_.expectAsk("***** MOUNTING ENABLED -- REBOOT *****", kAlreadyEnabled, false);
    onEnableMounting(state());
    EXPECT_THAT(diskpartRuns(), SizeIs(1));
    EXPECT_FALSE(testing::StartedThreads::any());
    EXPECT_THAT(view_.timers(), IsEmpty());
}

TEST_F(DiskPart, EnablingWhatIsEnabledAndAnsweringYesRunsAnyway) {
    openBench();
    user_.expectAsk("***** MOUNTING ENABLED -- REBOOT *****", kAlreadyEnabled, true);
    onEnableMounting(state());
    EXPECT_EQ(awaitWorker(), 1U);
    EXPECT_THAT(diskpartRuns(), SizeIs(2));
}

TEST_F(DiskPart, AnEnableThatFailsToRunIsSaidAtOnce) {
    openBenchWithoutDiskPart();
    expectFailureBox(kNotRun);
    onEnableMounting(state());
    EXPECT_EQ(awaitWorker(), 0U);
    EXPECT_TRUE(state().jobs.active());
}

TEST_F(DiskPart, WhatAnEarlierChangeLeftIsNotReportedOfAnEnableThatFailed) {
    openBenchWithoutDiskPart();
    state().mountStatus = kMountingEnabled;
    expectFailureBox(kNotRun);
    onEnableMounting(state());
    EXPECT_EQ(awaitWorker(), 0U);
    user_.expectInform("****** NOT ENABLED ******", "Drive Mounting hasNOT  been ENABLED");
    onMountTimer(state(), 3000);
}

TEST_F(DiskPart, AnEnableScriptThatCannotBeCreatedIsLogged) {
    openBench();
    blockFile("EnbleMountScript.txt");
    EXPECT_EQ(run(DP_EnableMountingWorker), 0U);
    EXPECT_THAT(events(),
                ElementsAre("ERROR: Could not create DISKPART [EnbleMountScript.txt] script. Setting READONLY to OFF"));
}

TEST_F(DiskPart, AFailedEnableRunIsLoggedAndLeavesTheStatusAndTheJobAsTheyAre) {
    openBenchWithoutDiskPart();
    state().mountStatus = kMountingDisabled;
    EXPECT_EQ(run(DP_EnableMountingWorker), 0U);
    EXPECT_EQ(state().mountStatus, 1000);
    EXPECT_TRUE(state().jobs.active());
    EXPECT_THAT(view_.calls(), Not(Contains("redraw drives")));
    EXPECT_THAT(events(), ElementsAre(HasSubstr("CreateProcess FAILED"),
                                      "ERROR: Could not BuildDataFile for [DISKPART MountResults.txt]"));
    // Unlike a disable request, its timer tells whatever the status was before.
    user_.expectInform("****** NOT ENABLED ******", "Drive Mounting hasNOT  been ENABLED");
    onMountTimer(state(), 3000);
}

TEST_F(DiskPart, EnableResultsThatCannotBeLoadedAreLoggedAndLeaveTheStatusAndTheJobAsTheyAre) {
    openBench();
    const ResultsHeldOpen held(kMountResults);
    state().mountStatus = kMountingDisabled;
    EXPECT_EQ(run(DP_EnableMountingWorker), 0U);
    EXPECT_EQ(state().mountStatus, 1000);
    EXPECT_TRUE(state().jobs.active());
    EXPECT_THAT(events(), ElementsAre(HasSubstr("OPEN_WXISTING FAILED"),
                                      "ERROR: Could not Load File [DISKPART MountResults.txt] into buffer"));
}

TEST_F(DiskPart, EnablingWithoutAScrubbedLineIsNotEnabled) {
    openBenchPrinting("Access is denied.\\r\\n");
    EXPECT_EQ(run(DP_EnableMountingWorker), 1U);
    EXPECT_EQ(state().mountStatus, 1002);
    EXPECT_FALSE(state().jobs.active());
    user_.expectInform("****** NOT ENABLED ******", "Drive Mounting hasNOT  been ENABLED");
    onMountTimer(state(), 3000);
}

// --- scripts

TEST_F(DiskPart, NobodyChangesAScriptWhileDiskPartRunsIt) {
    const auto openForWriting = [](const char* script) {
        return UniqueFile(CreateFileA(script, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    };
    openBench(R"({"delayMilliseconds": )" + std::string(testing::kUntilToldToHurry) + "}");
    std::vector<std::thread> runs;
    runs.emplace_back([this] { DP_TestReadOnly(view_, drive_); });
    runs.emplace_back([] { DP_GetMountStatus(state()); });
    runs.emplace_back([] { run(DP_DisableMountingWorker); });
    runs.emplace_back([] { run(DP_EnableMountingWorker); });
    EXPECT_TRUE(bench_.awaitLog("request=start", runs.size()));
    const auto scripts = {"ReadOnlyTest.txt", "MountStatusScript.txt", "DisableMountScript.txt",
                          "EnbleMountScript.txt"};
    for (const char* script : scripts) {
        EXPECT_FALSE(openForWriting(script)) << script;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    }
    bench_.hurry();
    for (std::thread& run : runs) {
        run.join();
    }
    for (const char* script : scripts) {
        EXPECT_TRUE(openForWriting(script)) << script;
    }
}

TEST_F(DiskPart, AScriptThatSomebodyRewritesMeanwhileIsNotRun) {
    openBench();
    // Its writer lets nobody write, and has written something else.
    testing::writeFile("DisableMountScript.txt", "automount enable\n");
    const UniqueFile writer(CreateFileA("DisableMountScript.txt", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(writer);
    EXPECT_EQ(run(DP_DisableMountingWorker), 0U);
    EXPECT_THAT(diskpartRuns(), IsEmpty());
}

TEST_F(DiskPart, AChangeThatIsAskedForTwiceRunsTwice) {
    openHeldBench();
    onDisableMounting(state());
    awaitSecondRun();
    std::thread second([] { EXPECT_EQ(run(DP_DisableMountingWorker), 1U); });
    EXPECT_TRUE(bench_.awaitLog("request=start", 3));
    bench_.hurry();
    second.join();
    EXPECT_EQ(awaitWorker(), 1U);
}

TEST_F(DiskPart, OtherTimersAreIgnored) {
    state().mountStatus = kMountingEnabled;
    view_.startTimer(42, 100);
    onMountTimer(state(), 42);
    EXPECT_THAT(user_.shown(), IsEmpty());
    EXPECT_THAT(view_.timers(), SizeIs(1));
}

} // namespace
} // namespace torvane
