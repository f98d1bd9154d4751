#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace torvane {

/// Colours of one cell.
struct CellColours {
    COLORREF text;
    COLORREF background;
};

/// A report-style list: rows and columns of text. Rows and columns count from 0. Columns and check boxes have the
/// scale of the window that the list is in, and follow it.
class ListView {
  public:
    /// Makes the control as a bordered child of `parent`, at a place in screen pixels, with the given style bits
    /// (LVS_...) beside LVS_REPORT, extended style bits (LVS_EX_...) and background colour.
    bool create(HWND parent, int id, const RECT& place, DWORD style, DWORD extendedStyle, COLORREF background);

    /// `width`: pixels of 96 to the inch.
    void addColumn(const char* heading, int width);

    /// Appends a row and returns its number; -1 on failure. `data` is the caller's own word.
    int appendRow(const char* text, LPARAM data = 0);
    void setCell(int row, int column, const char* text);
    /// The cell's text, cut at `kCellTextLimit` characters.
    [[nodiscard]] std::string cell(int row, int column) const;
    /// The whole texts of the cells of these rows.
    [[nodiscard]] std::vector<std::vector<std::string>> wholeRows(const std::vector<int>& rows) const;
    [[nodiscard]] LPARAM rowData(int row) const;
    [[nodiscard]] int rowCount() const;
    [[nodiscard]] bool isTicked(int row) const;
    [[nodiscard]] bool isSelected(int row) const;
    /// -1 when no row is.
    [[nodiscard]] int selectedRow() const;
    /// The rows that are selected, or else the one that has the focus among the rows.
    [[nodiscard]] std::vector<int> chosenRows() const;
    /// The row at a place of the screen; -1 when none is there.
    [[nodiscard]] int rowAt(POINT screenPlace) const;
    /// True for a place of the list, in its own pixels, on a row and beside its check box.
    [[nodiscard]] bool isOnRow(POINT place) const;
    /// Selects the row and gives it the focus among the rows.
    void selectRow(int row);
    /// Of a list in which several rows may be selected.
    void selectAllRows();
    /// Where a menu belongs that the keyboard asks for: below that row, or for -1 at the list's corner. Screen pixels.
    [[nodiscard]] POINT placeBelow(int row);
    /// The row's visible part, screen pixels.
    [[nodiscard]] RECT rowPlace(int row) const;
    void deleteRows();
    /// Moves the rows into the order of their data; `data` names each row's once. Ticks and the selection go with them.
    void arrange(std::span<const LPARAM> data);
    /// Shows in that column's heading by which the rows are sorted; -1: none.
    void markSorted(int column, bool descending);

    /// Pixels of 96 to the inch.
    [[nodiscard]] int columnWidth(int column) const;
    void setColumnWidth(int column, int width);

    void scrollIntoView(int row);
    void redraw();
    void setVisible(bool visible);
    /// Whether the list itself is shown; its window may be hidden.
    [[nodiscard]] bool isShown() const;

    [[nodiscard]] HWND window() const { return window_; }

    static constexpr int kCellTextLimit = 128;

  private:
    [[nodiscard]] std::string wholeCell(int row, int column) const;
    static LRESULT CALLBACK listProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window_ = nullptr;
};

/// Keeps a list from drawing, and from moving its scroll bars, while it is filled; at the end it is drawn as a whole. A
/// hidden list fills many times faster for it, too.
class UndrawnList {
  public:
    explicit UndrawnList(const ListView& list);
    ~UndrawnList();
    UndrawnList(const UndrawnList&) = delete;
    UndrawnList& operator=(const UndrawnList&) = delete;

  private:
    HWND window_;
    bool shown_;
};

/// Which colours a cell gets: `selected` are those of the selected row, for a cell of that row.
using ColoursOfCell =
    std::function<CellColours(int column, const std::string& text, const std::optional<CellColours>& selected)>;

/// Serves a list's NM_CUSTOMDRAW: asks for the notifications of items and of sub-items, and gives each cell the colours
/// that `coloursOf` answers. Returns the value to hand back to the control. In high contrast the control draws by
/// itself.
LRESULT drawCells(const ListView& list, NMLVCUSTOMDRAW& draw, const ColoursOfCell& coloursOf);

/// The same for a list whose cells have no colours of their own.
LRESULT drawSelection(const ListView& list, NMLVCUSTOMDRAW& draw);

} // namespace torvane
