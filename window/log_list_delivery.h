#pragma once

#include "window/log_row_queue.h"

#include <windows.h>

namespace torvane {

class LogListView;

/// Carries rows of the event log from any thread to the log list on its window's own.
///
/// Whoever logs does not wait for the list. Yet whoever asks the list finds every row that was carried before: it takes
/// up what is on its way before it answers a message. Unasked, it does so at once, and while more and more come, every
/// few milliseconds, so that a flood of rows leaves the window's thread its time.
class LogListDelivery {
  public:
    /// The private message to the window, which answers it with `deliver`. lParam: null, or a `const LogRow*` that
    /// comes behind the rows on their way.
    static constexpr UINT kMessage = WM_APP + 3;

    /// Where the rows go; on the window's thread, before the first one is carried. The list outlives its window.
    void attach(LogListView& list);

    /// Takes the row to the list in `window`. Returns at once, unless the list is a whole queue behind: then when it
    /// has caught up. On the window's own thread the row is in the list on return. Ignored once the window has gone.
    void carry(HWND window, const LogRow& row);

    /// Answers `kMessage`.
    void deliver(const LogRow* last);
    /// On the window's thread: appends what is on its way.
    void catchUp();

  private:
    /// A list that is this far behind takes a few milliseconds to catch up.
    static constexpr std::size_t kMostRows = 256;
    static constexpr UINT kPauseMilliseconds = USER_TIMER_MINIMUM;

    static void CALLBACK onTimer(HWND window, UINT message, UINT_PTR self, DWORD time);
    static LRESULT CALLBACK listProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam);
    bool appendOrRest();
    void append(const std::vector<LogRow>& rows);

    LogRowQueue queue_{kMostRows};
    LogListView* list_ = nullptr;
    WNDPROC listsOwnProcedure_ = nullptr;
    bool listAtWork_ = false; ///< it answers a message, or is filled: it is not to be changed in the midst of that
};

} // namespace torvane
