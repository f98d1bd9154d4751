#include "window/shutdown_guard.h"

#include "tests/component/import_patched.h"
#include "tests/support/recording_log_file.h"
#include "tests/support/recording_main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

// The import slots of the functions that are replaced. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&ShutdownBlockReasonCreate) __imp_ShutdownBlockReasonCreate;
extern decltype(&ShutdownBlockReasonDestroy) __imp_ShutdownBlockReasonDestroy;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the system was told of a window, as it would show it.
std::vector<std::wstring> reasons;

BOOL WINAPI createReason(HWND window, LPCWSTR reason) {
    EXPECT_EQ(window, GetDesktopWindow());
    reasons.emplace_back(reason);
    return TRUE;
}
BOOL WINAPI destroyReason(HWND window) {
    EXPECT_EQ(window, GetDesktopWindow());
    reasons.clear();
    return TRUE;
}

TEST(ShutdownGuard, TellsTheSystemWhyAsLongAsAJobUsesDrives) {
    const ImportPatched created(__imp_ShutdownBlockReasonCreate, &createReason);
    const ImportPatched destroyed(__imp_ShutdownBlockReasonDestroy, &destroyReason);
    showShutdownReason(GetDesktopWindow(), {JobKind::kImage});
    EXPECT_THAT(reasons, ElementsAre(L"An image of a drive is being made."));
    showShutdownReason(GetDesktopWindow(), {JobKind::kImage, JobKind::kShortTest});
    EXPECT_THAT(reasons, ElementsAre(L"An image of a drive is being made."));
    showShutdownReason(GetDesktopWindow(), {JobKind::kShortTest});
    EXPECT_THAT(reasons, ElementsAre(L"A read test is at work."));
    showShutdownReason(GetDesktopWindow(), {JobKind::kMounting});
    EXPECT_THAT(reasons, IsEmpty());
}

TEST(ShutdownGuard, RefusesWithARowOnlyWhileAJobUsesDrives) {
    RecordingMainView view;
    const ViewInstalled installed(appState(), view);
    EXPECT_TRUE(mayEndSession({}));
    EXPECT_TRUE(mayEndSession({JobKind::kMounting}));
    EXPECT_THAT(view.logRows(), IsEmpty());
    EXPECT_FALSE(mayEndSession({JobKind::kClone}));
    EXPECT_THAT(view.messages("STATUS"),
                ElementsAre("Windows asked to end the session. Refused: A drive is being cloned."));
}

TEST(ShutdownGuard, AnEndInSpiteOfItStandsInTheFile) {
    const RecordingLogFile file;
    noteSessionEnd({});
    noteSessionEnd({JobKind::kClone});
    EXPECT_THAT(
        file.messages("STATUS"),
        ElementsAre("Windows ends the session", "Windows ends the session all the same: A drive is being cloned."));
}

} // namespace
} // namespace torvane::testing
