#include "copy/dialogs/job_display_view.h"

#include "copy/engine/digest_text.h"
#include "resources/resource_ids.h"
#include "ui/control_text.h"
#include "ui/scrolling.h"

#include <optional>

namespace torvane {

namespace {

template <typename Digest>
void showDigest(HWND dialog, int digest, int verdict, const std::optional<Digest>& known,
                const std::optional<Digest>& made) {
    setWindowText(GetDlgItem(dialog, digest), made ? hexText(*made) : "");
    setWindowText(GetDlgItem(dialog, verdict), !made           ? ""
                                               : known == made ? "agrees with the expected one"
                                                               : "does NOT agree with the expected one");
}

} // namespace

// The dialog may go at any moment. Messages to a window that has gone come back at once; what must not happen is a call
// that means "no window": for it InvalidateRect would repaint the whole screen.

void JobDisplayView::attach(HWND dialog) {
    if (dialog != nullptr) {
        field_.setWords("", false);
        const std::lock_guard lock(mutex_);
        rescue_.reset();
        imagePlace_.clear();
    }
    dialog_ = dialog;
}

std::string JobDisplayView::imagePlace() const {
    const std::lock_guard lock(mutex_);
    return imagePlace_;
}

void JobDisplayView::setStatus(std::string_view text) {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        setWindowText(GetDlgItem(dialog, IDC_COPY_STATUS), std::string(text));
    }
}

void JobDisplayView::setLosses(std::string_view text, bool bad) {
    field_.setWords(std::string(text), bad);
    drawProgress();
}

// Drawn by the dialog's clock.
void JobDisplayView::showRun(const RunFigures& run) {
    field_.showRun(run, now());
}

void JobDisplayView::endRun() {
    field_.endRun();
    drawProgress();
}

void JobDisplayView::setImagePlace(std::string_view path) {
    {
        const std::lock_guard lock(mutex_);
        imagePlace_ = path;
    }
    post(kImagePlaceMessage);
}

void JobDisplayView::callUser(bool good) {
    post(kCallUserMessage, good ? TRUE : FALSE);
}

void JobDisplayView::showDigests(const Digests& known, const Digests& made) {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        showDigest(dialog, IDC_MADE_MD5, IDC_MD5_VERDICT, known.md5, made.md5);
        showDigest(dialog, IDC_MADE_SHA256, IDC_SHA256_VERDICT, known.sha256, made.sha256);
    }
}

std::optional<RescueShown> JobDisplayView::rescue() const {
    const std::lock_guard lock(mutex_);
    return rescue_;
}

std::int64_t JobDisplayView::rescueAge() const {
    const std::lock_guard lock(mutex_);
    return now() - rescueShownAt_;
}

void JobDisplayView::showRescue(const RescueShown& shown) {
    {
        const std::lock_guard lock(mutex_);
        rescue_ = shown;
        rescueShownAt_ = now();
    }
    post(kRescueMessage);
}

void JobDisplayView::repaint() {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        InvalidateRect(dialog, nullptr, FALSE);
    }
}

void JobDisplayView::repaintTrack(const TrackArea& area) {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        const RECT rect = shownPlace(dialog, {area.left, area.top, area.right, area.bottom});
        InvalidateRect(dialog, &rect, FALSE);
    }
}

void JobDisplayView::startExplosionTimer(int milliseconds) {
    post(kStartTimerMessage, static_cast<WPARAM>(milliseconds));
}

// On the dialog's thread, so that words and figures stand there in the order in which they were told.
void JobDisplayView::drawProgress() const {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        SendMessageA(dialog, kProgressMessage, 0, 0);
    }
}

void JobDisplayView::post(UINT message, WPARAM wParam) const {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        PostMessageA(dialog, message, wParam, 0);
    }
}

} // namespace torvane
