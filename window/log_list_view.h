#pragma once

#include "state/main_view.h"
#include "ui/list_view.h"
#include "window/column_widths.h"
#include "window/list_text.h"

#include <span>
#include <string>
#include <vector>

namespace torvane {

/// The main window's event log: it only grows. Hidden until the user opens the log panel.
class LogListView {
  public:
    /// Its place is still to be given to it.
    bool create(HWND parent, const ColumnWidths& widths);

    /// Appends the rows and scrolls the last of them into view.
    void append(std::span<const LogRow> rows);
    void setVisible(bool visible) { list_.setVisible(visible); }

    /// The rows to be carried away: those that are selected, or else the one with the focus.
    [[nodiscard]] std::vector<RowTexts> chosenRows() const;
    [[nodiscard]] std::vector<RowTexts> allRows() const;
    [[nodiscard]] bool hasRows() const { return list_.rowCount() > 0; }
    [[nodiscard]] bool hasChosenRows() const { return !list_.chosenRows().empty(); }
    /// The message of the row to be carried away, when it is one alone.
    [[nodiscard]] std::string chosenMessage() const;
    [[nodiscard]] int columnWidth(int column) const { return list_.columnWidth(column); }
    void selectAllRows() { list_.selectAllRows(); }

    /// Where a context menu belongs that was asked for at that place of the screen, or by the keyboard (-1, -1).
    [[nodiscard]] POINT menuPlace(POINT askedAt);

    [[nodiscard]] LRESULT draw(NMLVCUSTOMDRAW& draw) const;

    [[nodiscard]] HWND window() const { return list_.window(); }

  private:
    ListView list_;
};

} // namespace torvane
