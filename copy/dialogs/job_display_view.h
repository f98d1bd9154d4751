#pragma once

#include "copy/dialogs/progress_field.h"
#include "copy/jobs/job_display.h"

#include <windows.h>

#include <atomic>
#include <mutex>
#include <optional>
#include <string>

namespace torvane {

/// A copy job's dialog as the job sees it. Every call is ignored while there is no dialog.
class JobDisplayView : public JobDisplay {
  public:
    // Private messages to the dialog.

    /// Asks it to start `kExplosionTimer`; wParam: its milliseconds. Only a window's own thread can start a timer of
    /// that window.
    static constexpr UINT kStartTimerMessage = WM_APP + 1;
    /// `progress` or `imagePlace` has changed.
    static constexpr UINT kProgressMessage = WM_APP + 2;
    static constexpr UINT kImagePlaceMessage = WM_APP + 3;
    /// The user is to be called; wParam: whether all is well.
    static constexpr UINT kCallUserMessage = WM_APP + 4;
    /// `rescue` has changed.
    static constexpr UINT kRescueMessage = WM_APP + 5;

    /// From now on calls go to this dialog, which nobody has told anything yet; null: they are ignored. The status line
    /// is its control IDC_COPY_STATUS.
    void attach(HWND dialog);

    /// What stands beside the status line now.
    [[nodiscard]] ProgressField::Content progress() const { return field_.content(now()); }
    /// The run that is under way.
    [[nodiscard]] std::optional<RunFigures> run() const { return field_.run(); }
    /// The folder that an image goes into, or the image.
    [[nodiscard]] std::string imagePlace() const;

    /// How the rescue is that was shown last in this dialog.
    [[nodiscard]] std::optional<RescueShown> rescue() const;
    /// Milliseconds since it was.
    [[nodiscard]] std::int64_t rescueAge() const;

    void setStatus(std::string_view text) override;
    void setLosses(std::string_view text, bool bad) override;
    void showRun(const RunFigures& run) override;
    void endRun() override;
    void setImagePlace(std::string_view path) override;
    void callUser(bool good) override;
    void showDigests(const Digests& known, const Digests& made) override;
    void showRescue(const RescueShown& shown) override;
    void repaint() override;
    void repaintTrack(const TrackArea& area) override;
    void startExplosionTimer(int milliseconds) override;

  private:
    [[nodiscard]] static std::int64_t now() { return static_cast<std::int64_t>(GetTickCount64()); }
    void drawProgress() const;
    void post(UINT message, WPARAM wParam = 0) const;

    std::atomic<HWND> dialog_{nullptr};
    ProgressField field_;
    mutable std::mutex mutex_; ///< for what follows
    std::string imagePlace_;
    std::optional<RescueShown> rescue_;
    std::int64_t rescueShownAt_ = 0;
};

} // namespace torvane
