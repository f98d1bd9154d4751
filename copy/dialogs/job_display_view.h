#pragma once

#include "copy/jobs/job_display.h"

#include <windows.h>

#include <atomic>

namespace torvane {

/// A copy job's dialog as the job sees it. Every call is ignored while there is no dialog.
class JobDisplayView : public JobDisplay {
  public:
    /// Asks the dialog to start `kExplosionTimer`; wParam: its milliseconds. Only a window's own thread can start a
    /// timer of that window.
    static constexpr UINT kStartTimerMessage = WM_APP + 1;

    /// From now on calls go to this dialog; null: they are ignored. The status line is its control IDC_COPY_STATUS, the
    /// words of losses are IDC_COPY_LOSSES.
    void attach(HWND dialog) { dialog_ = dialog; }

    /// Whether the words of losses tell of any, for their colour.
    [[nodiscard]] bool showsLosses() const { return showsLosses_; }

    void setStatus(std::string_view text) override;
    void setLosses(std::string_view text, bool bad) override;
    void repaint() override;
    void repaintTrack(const TrackArea& area) override;
    void startExplosionTimer(int milliseconds) override;

  private:
    std::atomic<HWND> dialog_{nullptr};
    std::atomic<bool> showsLosses_{false};
};

} // namespace torvane
