#pragma once

#include "base/scale.h"
#include "ui/owned.h"

#include <cstddef>
#include <optional>

namespace torvane {

/// One row of a dialog's command table: the control or menu item with this id calls this member function.
template <typename DialogType>
struct CommandRoute {
    int id;
    void (DialogType::*run)();
};

/// A dialog made from a template resource. The procedure behind it only routes: a derived dialog states its commands in
/// one table and overrides the hooks that it needs.
///
///     bool CloneDialog::onCommand(int id) {
///         static constexpr CommandRoute<CloneDialog> kRoutes[] = {{IDC_START_CLONE, &CloneDialog::onStart}, ...};
///         return route(*this, kRoutes, id);
///     }
///
/// A dialog is designed in pixels of 96 to the inch and laid out in those of its monitor. One that sizes its client
/// area is laid out anew when its scale changes, and scrolls where the work area is too small for it; one that leaves
/// its size to its template leaves that to the system, too.
///
/// Everything here belongs to the thread that runs the dialog.
class Dialog {
  public:
    explicit Dialog(int templateId) : templateId_(templateId) {}
    virtual ~Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    /// Shows the dialog and returns when it has ended: with the value given to `end`, or -1 when the dialog could not
    /// be made.
    INT_PTR runModal(HWND owner);

    /// Null before and after the dialog's life.
    [[nodiscard]] HWND window() const { return window_; }

  protected:
    /// Ends the dialog; `runModal` returns `result`.
    void end(INT_PTR result);

    [[nodiscard]] HWND control(int id) const { return GetDlgItem(window_, id); }
    /// The scale that the dialog is laid out for.
    [[nodiscard]] Scale scale() const { return scale_; }
    /// Screen pixels, from {0, 0}.
    [[nodiscard]] RECT clientArea() const;
    /// Gives the client area that size, at 96 dots to the inch, or what the work area has of it, with scroll bars.
    void sizeClientArea(SIZE size);
    /// The same for a size in screen pixels.
    void fitClientArea(const PixelSize& size);
    /// Moves the dialog over the middle of its owner, as far as the screen's work area allows.
    void centreOnOwner();
    void setControlText(int id, const char* text);
    void showControl(int id, bool visible);
    /// Places a control of a dialog whose client area has been sized; at 96 dots to the inch.
    void placeControl(int id, const RECT& place);
    void placeControl(int id, const PixelRect& place);
    /// The same in screen pixels.
    void placeControlAt(int id, RECT place);

    /// Finds `id` in the table and calls its function. False when the table does not hold it.
    template <typename DialogType, std::size_t Count>
    static bool route(DialogType& dialog, const CommandRoute<DialogType> (&table)[Count], int id) {
        for (const CommandRoute<DialogType>& row : table) {
            if (row.id == id) {
                (dialog.*row.run)();
                return true;
            }
        }
        return false;
    }

    // The hooks, with their Win32 message. A hook that returns false, or nothing, leaves the message to the system.

    /// WM_INITDIALOG. Returns false when the dialog has set the keyboard focus itself.
    virtual bool onInitialise() { return true; }
    /// WM_DPICHANGED of a dialog that has sized its client area, and another work area: everything that depends on the
    /// scale is to be made and placed anew. The dialog's own font is there, with the controls that had it, and lists
    /// have scaled their columns.
    virtual void layOut() {}
    /// False for a dialog that does something else with its scroll bars; it gets what the work area has room for.
    [[nodiscard]] virtual bool scrolls() const { return true; }
    /// WM_COMMAND of a menu item, of an accelerator, of a control that was clicked, or of a list of choices in which
    /// another one was selected (CBN_SELCHANGE has the accelerators' code, 1).
    virtual bool onCommand(int) { return false; }
    /// A command by which the user gets out: it also leaves whoever is waited for (ui/waiting.h).
    [[nodiscard]] virtual bool isWayOut(int id) const { return id == IDCANCEL; }
    /// WM_COMMAND of an edit control whose text has changed (EN_CHANGE).
    virtual void onTextChange(int) {}
    /// WM_SYSCOMMAND; `id` without its low four bits, which belong to the system.
    virtual bool onSystemCommand(WPARAM) { return false; }
    virtual std::optional<LRESULT> onNotify(NMHDR&) { return std::nullopt; }
    virtual bool onTimer(int) { return false; }
    virtual bool onPaint() { return false; }
    /// WM_CTLCOLORDLG, -STATIC and -BTN: the background, null for the system's.
    virtual HBRUSH onControlColour(HDC) { return nullptr; }
    virtual HICON onQueryDragIcon() { return nullptr; }
    /// The window is about to go.
    virtual void onDestroy() {}
    /// Every other message.
    virtual std::optional<LRESULT> onMessage(UINT, WPARAM, LPARAM) { return std::nullopt; }

  private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR dispatch(UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR answer(std::optional<LRESULT> result);
    [[nodiscard]] bool isHeldBack(UINT message, WPARAM wParam) const;
    void carryOutHeld(WPARAM command);
    void carryOutPostponed();
    static bool showWaitCursor(WORD place);
    bool initialise();
    bool takesSize(UINT message, WPARAM wParam, LPARAM lParam);
    [[nodiscard]] bool isForRestored(UINT message);
    void adoptMonitor();
    void changeScale(Scale scale, const RECT& suggested);
    void scaleFont(Scale before);
    void tellChildren(Scale before) const;
    void layOutAnew();
    void passOnColourChange() const;

    int templateId_;
    HWND window_ = nullptr;
    Scale scale_;
    UniqueFont font_;                 ///< the dialog's own, once its scale has changed
    bool sized_ = false;              ///< its client area was, so it is laid out by itself
    RECT workArea_{};                 ///< in which it was laid out
    bool changesScale_ = false;       ///< a change of its scale is at work
    bool changedAsIcon_ = false;      ///< its monitor did, while the window was an icon
    std::optional<WPARAM> postponed_; ///< held back before, and now until what is open over the dialog has closed
};

} // namespace torvane
