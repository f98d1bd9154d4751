#pragma once

#include "copy/dialogs/race_track_view.h"
#include "copy/jobs/copy_order.h"
#include "copy/jobs/rescue_shown.h"
#include "copy/jobs/track.h"
#include "ui/dialog.h"
#include "ui/task_bar_button.h"
#include "ui/tool_tip.h"

#include <optional>
#include <span>
#include <string>

namespace torvane {

struct AppState;
struct DriveRecord;

/// A control's place, pixels of the dialog's client area at 96 to the inch.
struct ControlPlace {
    int id;
    RECT place;
};

/// What tells the copy dialogs apart, apart from what they ask before they start.
struct CopyDialogLook {
    int templateId;
    const char* title;
    SIZE clientSize; ///< pixels at 96 to the inch, because the race track is drawn in pixels
    std::span<const ControlPlace> places;
    std::optional<TrackScene> scene; ///< none: the dialog paints something else
    std::int32_t carY;
    const char* terminateFirst; ///< why it cannot be left while its job runs
};

/// A copy job's dialog: race track, status line, how far the job is, and what "Terminate" and "Exit" do in all of them.
/// A job's dialog states its commands and how it starts.
class CopyDialog : public Dialog {
  protected:
    CopyDialog(AppState& state, const CopyDialogLook& look) : Dialog(look.templateId), state_(state), look_(look) {}

    [[nodiscard]] AppState& state() const { return state_; }
    [[nodiscard]] const CopyDialogLook& look() const { return look_; }

    void startJob(CopyOrder order);

    /// Tells beside the status line, before a job does, why a copy between these drives fails; either may be null.
    void warnOfSecurity(const DriveRecord* source, const DriveRecord* destination);

    /// How the rescue is that was shown last.
    [[nodiscard]] static std::optional<RescueShown> shownRescue();
    /// Milliseconds since then.
    [[nodiscard]] static std::int64_t shownRescueAge();
    /// It has changed, or a second has gone by.
    virtual void onRescueShown() {}
    /// The folder that an image goes into, or the image, as the last job told it.
    [[nodiscard]] static std::string toldImagePlace();

    /// Paints everything behind the controls: the race track of the look's scene.
    virtual void paintScene(HDC context);

    void onTerminate();
    void onExit();
    void onNothing() {}

    bool onInitialise() override;
    void layOut() override;
    bool onTimer(int id) override;
    bool onPaint() override;
    HBRUSH onControlColour(HDC context) override;
    void onDestroy() override;
    std::optional<LRESULT> onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    void setUpTrack();
    void drawProgress();
    void drawImagePlace();
    void showOnTaskBar(const TaskBarProgress& progress);
    void callUser(bool good);

    AppState& state_;
    const CopyDialogLook& look_;
    std::string warning_; ///< as it was told last
    ToolTip imagePlaceTip_;
    ToolTip progressTip_;
    std::string progressText_; ///< as it stands beside the status line
    bool progressBad_ = false; ///< it tells of losses
    TaskBarProgress taskBarProgress_;
};

} // namespace torvane
