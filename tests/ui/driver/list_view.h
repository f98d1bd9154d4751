#pragma once

#include "tests/ui/driver/window.h"

#include <string>
#include <vector>

namespace torvane::driver {

/// A report-style list view of another process. Rows and columns count from 0.
class ListView {
  public:
    explicit ListView(const Window& window) : window_(window) {}

    [[nodiscard]] const Window& window() const { return window_; }
    [[nodiscard]] int rowCount() const;
    [[nodiscard]] int columnCount() const;
    [[nodiscard]] std::string heading(int column) const;
    [[nodiscard]] int columnWidth(int column) const;
    [[nodiscard]] DWORD extendedStyle() const;
    [[nodiscard]] COLORREF background() const;

    [[nodiscard]] std::string cell(int row, int column) const;
    [[nodiscard]] std::vector<std::string> row(int row) const;
    /// The row whose cell in `column` is `text`; throws when there is none.
    [[nodiscard]] int rowWith(int column, const std::string& text) const;

    [[nodiscard]] bool ticked(int row) const;
    [[nodiscard]] bool selected(int row) const;

    /// The cell's rectangle, screen pixels, after scrolling the row into view.
    [[nodiscard]] RECT cellRect(int row, int column) const;

    /// Clicks the row, in the cell of that column.
    void click(int row, int column = 1) const;
    /// The middle of the row's check box, on the screen.
    [[nodiscard]] POINT checkBoxPlace(int row) const;
    /// Clicks the row's check box.
    void clickCheckBox(int row) const;
    /// Ticks or unticks the row where it is not so already.
    void setTicked(int row, bool wanted) const;

  private:
    [[nodiscard]] RECT subItemRect(int row, int column, int part) const;
    [[nodiscard]] Window header() const;

    Window window_;
};

} // namespace torvane::driver
