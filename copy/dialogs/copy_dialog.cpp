#include "copy/dialogs/copy_dialog.h"

#include "copy/dialogs/job_display_view.h"
#include "state/app_state.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

/// The jobs' way to whichever dialog is open. Never destroyed: a job may still report when its dialog has closed.
JobDisplayView& jobDisplay() {
    static JobDisplayView& display = *new JobDisplayView;
    return display;
}

} // namespace

bool CopyDialog::isBusy() const {
    return state_.jobActive == 1 || state_.driveJobAtWork == 1;
}

void CopyDialog::startJob(CopyWorker worker) {
    state_.copy.display = &jobDisplay();
    // When no thread can be started, the log tells it.
    static_cast<void>(startCopyWorker(state_, worker));
}

bool CopyDialog::onInitialise() {
    SetWindowTextA(window(), look_.title);
    sizeClientArea(look_.clientSize);
    centreOnOwner();
    for (const ControlPlace& control : look_.places) {
        placeControl(control.id, control.place);
    }
    setUpTrack();
    jobDisplay().attach(window());
    return true;
}

void CopyDialog::setUpTrack() {
    CopyJobState& copy = state_.copy;
    copy.carX = kTrackStartX;
    copy.carY = look_.carY;
    copy.failed = 0;
    copy.explosionFrame = 0;
    copy.succeeded = 0;
}

void CopyDialog::onTerminate() {
    // Both words, and this one first: the job may raise its running flag at this very moment. It sees the end of that
    // flag after the block in flight.
    state_.copy.stopAsked = 1;
    if (state_.jobActive == 1) {
        state_.jobActive = 0;
    }
}

void CopyDialog::onExit() {
    if (state_.jobActive == 1) {
        prompts::inform("***** ERROR TERMINATE BEFORE EXIT *****", look_.terminateFirst);
        return;
    }
    // A job that was started and has not raised its flag yet must not begin without its dialog.
    onTerminate();
    state_.copy.failed = 0;
    state_.copy.explosionFrame = 0;
    KillTimer(window(), kExplosionTimer);
    end(1);
}

bool CopyDialog::onTimer(int id) {
    if (id != kExplosionTimer) {
        return false;
    }
    constexpr LONG kVehicleWidth = 70;
    constexpr LONG kVehicleHeight = 60;
    const LONG left = state_.copy.carX;
    const LONG top = state_.copy.carY;
    const RECT vehicle{left, top, left + kVehicleWidth, top + kVehicleHeight};
    InvalidateRect(window(), &vehicle, FALSE);
    return true;
}

bool CopyDialog::onPaint() {
    const PaintDc paint(window());
    paintRaceTrack(window(), paint.get(), look_.scene, state_.copy);
    return true;
}

HBRUSH CopyDialog::onControlColour(HDC context) {
    SetBkColor(context, kDialogBackground);
    return background_.get();
}

void CopyDialog::onDestroy() {
    jobDisplay().attach(nullptr);
}

std::optional<LRESULT> CopyDialog::onMessage(UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case JobDisplayView::kStartTimerMessage:
        SetTimer(window(), kExplosionTimer, static_cast<UINT>(wParam), nullptr);
        return 0;
    case WM_ERASEBKGND:
        // The track is painted with its background; erased first, it would flicker.
        return TRUE;
    default:
        return std::nullopt;
    }
}

} // namespace torvane
