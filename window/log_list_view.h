#pragma once

#include "state/main_view.h"
#include "ui/list_view.h"

namespace torvane {

/// The main window's event log: it only grows. Hidden until the user opens the log panel.
class LogListView {
  public:
    /// Its place is still to be given to it.
    bool create(HWND parent);

    /// Appends the row and scrolls it into view.
    void append(const LogRow& row);
    void setVisible(bool visible) { list_.setVisible(visible); }

    [[nodiscard]] LRESULT draw(NMLVCUSTOMDRAW& draw) const;

    [[nodiscard]] HWND window() const { return list_.window(); }

  private:
    ListView list_;
};

} // namespace torvane
