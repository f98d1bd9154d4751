#include "window/exit_flow.h"

#include "state/app_state.h"
#include "state/mount_status.h"
#include "tests/component/import_patched.h"
#include "tests/component/patience_gone.h"
#include "tests/component/scratch_folder.h"
#include "tests/component/started_threads.h"
#include "tests/support/recording_log_file.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The import slot of the function that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateFileW) __imp_CreateFileW;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane::testing {
namespace {

constexpr const char* kExitCaption = "***** Exiting Application *****";
constexpr const char* kSureText = "You are about to EXIT TVN. Are you sure?";
constexpr const char* kJobText = "Application still has a job working. Do you still want to EXIT?";
constexpr const char* kMountingCaption = "***** MOUNTING DISABLED -- *****";
constexpr const char* kMountingText = "Drive Mounting DISABLED. It is recommended that you ENABLE it before EXITing. "
                                      "Do you wish to ENABLE Drive Mounting";

constexpr const char* kDisabledReport = "\r\nAutomatic mounting of new volumes disabled.\r\n\r\n";
constexpr const char* kEnabledReport = "\r\nAutomatic mounting of new volumes enabled.\r\n\r\n";
constexpr const char* kEnabledAndScrubbedReport =
    "\r\nDiskPart successfully scrubbed the mount point settings in the system.\r\n\r\n"
    "Automatic mounting of new volumes enabled.\r\n\r\n";

/// When the second question for the status may be asked. It makes the script's file.
struct SecondStatus {
    DWORD thread = 0;
    std::function<bool()> ready;
};
SecondStatus secondStatus;

decltype(&CreateFileW) realCreate;
HANDLE WINAPI createWhenReady(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                              DWORD disposition, DWORD flags, HANDLE likeFile) {
    const bool isScript = std::wstring_view(name).ends_with(L"MountStatusScript.txt");
    if (isScript && GetCurrentThreadId() == secondStatus.thread && StartedThreads::any()) {
        int patience = 24000;
        while (!secondStatus.ready() && patience-- > 0) {
            SleepEx(5, FALSE); // another function than the one that a test may replace
        }
        EXPECT_GT(patience, 0) << "the worker does not get there";
        secondStatus.thread = 0;
    }
    return realCreate(name, access, share, security, disposition, flags, likeFile);
}

class ExitFlowTest : public ::testing::Test {
  protected:
    ~ExitFlowTest() override { StartedThreads::awaitAll(); }

    // A diskpart whose answers are files of the current folder.
    static void provideDiskPart(const char* statusReport) {
        std::array<char, MAX_PATH> program{};
        GetModuleFileNameA(nullptr, program.data(), static_cast<DWORD>(program.size()));
        const auto folder = std::filesystem::path(program.data()).parent_path() / "diskpart_program";
        std::filesystem::copy_file(folder / "diskpart.exe", "diskpart.exe");
        writeFile("MountStatusScript.txt.output", statusReport);
    }

    /// Runs the flow; this thread asks diskpart for the status behind the worker's start only when `ready` says so.
    bool confirmExitAskingAgainWhen(std::function<bool()> ready) {
        secondStatus = {GetCurrentThreadId(), std::move(ready)};
        const ImportPatched patched(__imp_CreateFileW, &createWhenReady);
        realCreate = patched.original();
        const bool leaving = confirmExit(state_);
        EXPECT_EQ(secondStatus.thread, 0U) << "the status was not asked for a second time";
        return leaving;
    }
    bool confirmExitAskingAgainBehindTheWorker() {
        return confirmExitAskingAgainWhen([] { return StartedThreads::lastHasEnded(); });
    }

    [[nodiscard]] static bool diskPartRan() { return std::filesystem::exists("DISKPART MountResults.txt"); }

    // NOLINTBEGIN(misc-non-private-member-variables-in-classes)
    ScratchFolder folder_;
    AppState state_;
    RecordingMainView view_;
    ViewInstalled forTheLog_{appState(), view_};
    ViewInstalled forTheFlow_{state_, view_};
    ScriptedPrompts user_;
    StartedThreads threads_;
    // NOLINTEND(misc-non-private-member-variables-in-classes)
};

TEST_F(ExitFlowTest, NoStaysAndAsksDiskPartNothing) {
    provideDiskPart(kDisabledReport);
    user_.expectAsk(kExitCaption, kSureText, false);
    EXPECT_FALSE(confirmExit(state_));
    EXPECT_FALSE(diskPartRan());
}

TEST_F(ExitFlowTest, YesLeavesWhenMountingIsEnabled) {
    provideDiskPart(kEnabledReport);
    user_.expectAsk(kExitCaption, kSureText, true);
    EXPECT_TRUE(confirmExit(state_));
    EXPECT_EQ(state_.mountStatus, kMountingEnabled);
    EXPECT_FALSE(StartedThreads::any());
}

TEST_F(ExitFlowTest, NoWithAJobLeavesTheJobRunning) {
    const std::optional<JobClaim> job = state_.jobs.begin(JobKind::kNistTest);
    user_.expectAsk(kExitCaption, kJobText, false);
    EXPECT_FALSE(confirmExit(state_));
    EXPECT_TRUE(job->isRaised());
    EXPECT_FALSE(diskPartRan());
}

TEST_F(ExitFlowTest, YesWithAJobStopsItBeforeTheMountingQuestion) {
    provideDiskPart(kDisabledReport);
    const std::optional<JobClaim> job = state_.jobs.begin(JobKind::kNistTest);
    user_.expectAsk(kExitCaption, kJobText, true, [&] { EXPECT_TRUE(job->isRaised()); });
    user_.expectAsk(kMountingCaption, kMountingText, false, [&] { EXPECT_TRUE(job->stopAsked()); });
    RecordingLogFile file;
    EXPECT_TRUE(confirmExit(state_));
    EXPECT_FALSE(state_.jobs.active());
    EXPECT_EQ(file.messages("JOB"), std::vector<std::string>{"Torvane is left while at work: a NIST Read Test"});
}

TEST_F(ExitFlowTest, DecliningTheOfferStartsNothing) {
    provideDiskPart(kDisabledReport);
    user_.expectAsk(kExitCaption, kSureText, true);
    user_.expectAsk(kMountingCaption, kMountingText, false);
    EXPECT_TRUE(confirmExit(state_));
    EXPECT_FALSE(StartedThreads::any());
    EXPECT_FALSE(std::filesystem::exists("EnbleMountScript.txt"));
}

TEST_F(ExitFlowTest, AcceptedOfferThatWorksIsSilent) {
    provideDiskPart(kDisabledReport);
    writeFile("EnbleMountScript.txt.output", kEnabledAndScrubbedReport);
    user_.expectAsk(kExitCaption, kSureText, true);
    user_.expectAsk(kMountingCaption, kMountingText, true,
                    [] { writeFile("MountStatusScript.txt.output", kEnabledReport); });
    EXPECT_TRUE(confirmExitAskingAgainBehindTheWorker());
    EXPECT_EQ(state_.mountStatus, kMountingEnabled);
    EXPECT_EQ(readFile("EnbleMountScript.txt"), "automount enable\nautomount scrub\n");
}

TEST_F(ExitFlowTest, AcceptedOfferThatFailsIsSaid) {
    provideDiskPart(kDisabledReport);
    user_.expectAsk(kExitCaption, kSureText, true);
    user_.expectAsk(kMountingCaption, kMountingText, true);
    user_.expectStop("***** DRIVE MOUNTING STILL DISABLED *****",
                     "Drive Mounting STILL DISABLED. Reboot Computer to clear Drive Mounting Flags");
    EXPECT_TRUE(confirmExitAskingAgainBehindTheWorker());
}

TEST_F(ExitFlowTest, CheckThatFailsOnTheWorkersFileGoesByWhatWasKnown) {
    provideDiskPart(kDisabledReport);
    // The worker's diskpart holds the results file until long after the second check, which would tell otherwise.
    writeFile("EnbleMountScript.txt.held", "");
    user_.expectAsk(kExitCaption, kSureText, true);
    std::optional<PatienceGone> atOnce; // from the second check on
    user_.expectAsk(kMountingCaption, kMountingText, true, [&] {
        writeFile("MountStatusScript.txt.output", kEnabledReport);
        atOnce.emplace();
    });
    user_.expectStop("***** DRIVE MOUNTING STILL DISABLED *****",
                     "Drive Mounting STILL DISABLED. Reboot Computer to clear Drive Mounting Flags");
    EXPECT_TRUE(confirmExitAskingAgainWhen([] { return std::filesystem::exists("EnbleMountScript.txt.runs"); }));
    EXPECT_THAT(view_.messages("ERROR"), ::testing::Contains(::testing::HasSubstr("OPEN_WXISTING FAILED")));
    atOnce.reset();
    std::filesystem::remove("EnbleMountScript.txt.held");
}

TEST_F(ExitFlowTest, FailedStatusAsksNothingMore) {
    // A folder in its place, so that the script cannot be written.
    std::filesystem::create_directory("MountStatusScript.txt");
    user_.expectAsk(kExitCaption, kSureText, true);
    EXPECT_TRUE(confirmExit(state_));
    EXPECT_EQ(view_.messages("ERROR").size(), 1U);
}

} // namespace
} // namespace torvane::testing
