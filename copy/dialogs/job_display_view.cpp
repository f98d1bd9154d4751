#include "copy/dialogs/job_display_view.h"

#include "resources/resource_ids.h"
#include "ui/control_text.h"

#include <string>

namespace torvane {

// The dialog may go at any moment. Messages to a window that has gone come back at once; what must not happen is a call
// that means "no window": for it InvalidateRect would repaint the whole screen.

void JobDisplayView::setStatus(std::string_view text) {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        setWindowText(GetDlgItem(dialog, IDC_COPY_STATUS), std::string(text));
    }
}

void JobDisplayView::setLosses(std::string_view text, bool bad) {
    showsLosses_ = bad;
    if (const HWND dialog = dialog_; dialog != nullptr) {
        setWindowText(GetDlgItem(dialog, IDC_COPY_LOSSES), std::string(text));
    }
}

void JobDisplayView::repaint() {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        InvalidateRect(dialog, nullptr, FALSE);
    }
}

void JobDisplayView::repaintTrack(const TrackArea& area) {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        const RECT rect{area.left, area.top, area.right, area.bottom};
        InvalidateRect(dialog, &rect, FALSE);
    }
}

void JobDisplayView::startExplosionTimer(int milliseconds) {
    if (const HWND dialog = dialog_; dialog != nullptr) {
        PostMessageA(dialog, kStartTimerMessage, static_cast<WPARAM>(milliseconds), 0);
    }
}

} // namespace torvane
