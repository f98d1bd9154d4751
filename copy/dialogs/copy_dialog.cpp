#include "copy/dialogs/copy_dialog.h"

#include "copy/dialogs/image_texts_view.h"
#include "copy/dialogs/job_display_view.h"
#include "copy/dialogs/task_bar_progress.h"
#include "copy/jobs/copy_steps.h"
#include "copy/jobs/start_copy.h"
#include "records/drive_security.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "ui/colour_scheme.h"
#include "ui/control_text.h"
#include "ui/prompts.h"
#include "ui/scrolling.h"
#include "ui/task_bar_windows.h"
#include "ui/user_call_windows.h"

#include <utility>

namespace torvane {

namespace {

constexpr COLORREF kLossesColour = RGB(176, 0, 0);

/// The clock by which time and rate of a run go on, also while the job waits for a drive.
constexpr int kProgressTimer = 7001;
constexpr UINT kProgressMilliseconds = 1000;

/// The jobs' way to whichever dialog is open. Never destroyed: a job may still report when its dialog has closed.
JobDisplayView& jobDisplay() {
    static JobDisplayView& display = *new JobDisplayView;
    return display;
}

} // namespace

void CopyDialog::startJob(CopyOrder order) {
    // When no thread can be started, the log tells it.
    static_cast<void>(startCopy(state_, std::move(order), jobDisplay()));
}

// What the last job told stands until there is another thing to warn of.
void CopyDialog::warnOfSecurity(const DriveRecord* source, const DriveRecord* destination) {
    const std::string warning = securityWarning(source, destination);
    if (warning != warning_ && !state_.jobs.active()) {
        warning_ = warning;
        jobDisplay().setLosses(warning, !warning.empty());
    }
}

bool CopyDialog::onInitialise() {
    SetWindowTextA(window(), look_.title);
    CopyDialog::layOut();
    centreOnOwner();
    setUpTrack();
    for (const int id : {IDC_COPY_FOLDER, IDC_COPY_IMAGE_PATH}) {
        if (const HWND place = control(id); place != nullptr) {
            imagePlaceTip_.attach(place, controlText(place));
        }
    }
    progressTip_.attach(control(IDC_COPY_LOSSES), progressText_);
    jobDisplay().attach(window());
    SetTimer(window(), kProgressTimer, kProgressMilliseconds, nullptr);
    return true;
}

void CopyDialog::layOut() {
    sizeClientArea(look_.clientSize);
    for (const ControlPlace& control : look_.places) {
        placeControl(control.id, control.place);
    }
}

void CopyDialog::setUpTrack() {
    clearTrack(state_.raceTrack, kTrackStartX, look_.carY);
}

void CopyDialog::onTerminate() {
    // Also a job that has not raised its flag yet; one that runs sees it after the block in flight.
    state_.jobs.askToStop();
}

void CopyDialog::onExit() {
    if (state_.jobs.active()) {
        prompts::inform("***** ERROR TERMINATE BEFORE EXIT *****", look_.terminateFirst);
        return;
    }
    // A job that was started and has not raised its flag yet must not begin without its dialog.
    onTerminate();
    state_.raceTrack.failed = 0;
    state_.raceTrack.explosionFrame = 0;
    KillTimer(window(), kExplosionTimer);
    end(1);
}

void CopyDialog::drawProgress() {
    if (const std::optional<RunFigures> run = jobDisplay().run()) {
        showOnTaskBar(taskBarProgressOf(*run));
    }
    const ProgressField::Content now = jobDisplay().progress();
    if (now.text == progressText_ && now.bad == progressBad_) {
        return;
    }
    progressText_ = now.text;
    progressBad_ = now.bad; // asked for as the text is drawn
    setWindowText(control(IDC_COPY_LOSSES), progressText_);
    progressTip_.setText(progressText_); // where it is longer than its field
}

void CopyDialog::drawImagePlace() {
    showImagePlace(window(), jobDisplay().imagePlace());
    imagePlaceTip_.setText(controlText(control(IDC_COPY_FOLDER)));
}

void CopyDialog::showOnTaskBar(const TaskBarProgress& progress) {
    taskBarProgress_ = progress;
    taskBarButton().show(progress);
}

void CopyDialog::callUser(bool good) {
    showOnTaskBar(taskBarProgressAtEnd(taskBarProgress_, good));
    callUserTo(GetWindow(window(), GW_OWNER), good);
}

bool CopyDialog::onTimer(int id) {
    if (id == kProgressTimer) {
        drawProgress();
        onRescueShown();
        return true;
    }
    if (id != kExplosionTimer) {
        return false;
    }
    constexpr int kVehicleWidth = 70;
    constexpr int kVehicleHeight = 60;
    const int left = state_.raceTrack.carX;
    const int top = state_.raceTrack.carY;
    const RECT vehicle = shownPlace(window(), {left, top, left + kVehicleWidth, top + kVehicleHeight});
    InvalidateRect(window(), &vehicle, FALSE);
    return true;
}

bool CopyDialog::onPaint() {
    const PaintDc paint(window());
    const POINT by = scrolledBy(window());
    SetViewportOrgEx(paint.get(), -by.x, -by.y, nullptr);
    paintScene(paint.get());
    return true;
}

void CopyDialog::paintScene(HDC context) {
    if (look_.scene) {
        paintRaceTrack(context, *look_.scene, state_.raceTrack, scale());
    }
}

std::optional<RescueShown> CopyDialog::shownRescue() {
    return jobDisplay().rescue();
}

std::int64_t CopyDialog::shownRescueAge() {
    return jobDisplay().rescueAge();
}

std::string CopyDialog::toldImagePlace() {
    return jobDisplay().imagePlace();
}

HBRUSH CopyDialog::onControlColour(HDC context) {
    const HBRUSH ground = colourUponDialog(context);
    if (WindowFromDC(context) == control(IDC_COPY_LOSSES) && progressBad_) {
        SetTextColor(context, stressedText(kLossesColour));
    }
    return ground;
}

void CopyDialog::onDestroy() {
    jobDisplay().attach(nullptr);
    showOnTaskBar({});
}

std::optional<LRESULT> CopyDialog::onMessage(UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case JobDisplayView::kStartTimerMessage:
        SetTimer(window(), kExplosionTimer, static_cast<UINT>(wParam), nullptr);
        return 0;
    case JobDisplayView::kProgressMessage:
        drawProgress();
        return 0;
    case JobDisplayView::kImagePlaceMessage:
        drawImagePlace();
        return 0;
    case JobDisplayView::kRescueMessage:
        onRescueShown();
        return 0;
    case JobDisplayView::kCallUserMessage:
        callUser(wParam != FALSE);
        return 0;
    case WM_ACTIVATE:
        if (LOWORD(wParam) != WA_INACTIVE) {
            endUserCall(GetWindow(window(), GW_OWNER));
        }
        return std::nullopt;
    case WM_ERASEBKGND:
        // The track is painted with its background; erased first, it would flicker.
        return TRUE;
    default:
        return std::nullopt;
    }
}

} // namespace torvane
