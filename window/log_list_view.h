#pragma once

#include "state/main_view.h"
#include "ui/list_view.h"

#include <span>

namespace torvane {

/// The main window's event log: it only grows. Hidden until the user opens the log panel.
class LogListView {
  public:
    /// Its place is still to be given to it.
    bool create(HWND parent);

    /// Appends the rows and scrolls the last of them into view.
    void append(std::span<const LogRow> rows);
    void setVisible(bool visible) { list_.setVisible(visible); }

    [[nodiscard]] LRESULT draw(NMLVCUSTOMDRAW& draw) const;

    [[nodiscard]] HWND window() const { return list_.window(); }

  private:
    ListView list_;
};

} // namespace torvane
