#pragma once

#include "ui/list_view.h"
#include "ui/row_tips.h"
#include "window/column_widths.h"
#include "window/drive_order.h"
#include "window/list_text.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

struct DriveRecord;

/// The main window's drive list: one row for each drive of the last scan. A row's data is its record.
class DriveListView {
  public:
    /// Its place is still to be given to it.
    bool create(HWND parent, const ColumnWidths& widths);

    /// While the mouse rests on a drive's row, `textOf` tells more of the drive.
    void showTips(std::function<std::string(const DriveRecord&)> textOf);

    /// Appends the drive's row and sets the record's list position.
    void addRow(DriveRecord& record);
    void deleteRows();
    /// Sorts the rows, and renumbers the records' list positions. Rows that come or change later do not move.
    void sort(const DriveOrder& order);
    [[nodiscard]] const DriveOrder& order() const { return order_; }
    [[nodiscard]] int columnWidth(int column) const { return list_.columnWidth(column); }
    /// What the list says while it has no row.
    void setEmptyText(const std::string& text);
    void redraw() { list_.redraw(); }
    /// Replaces the text of the drive's "Status" cell. Ignored when the drive has no row.
    void setStatus(const DriveRecord& drive, const std::string& text);

    [[nodiscard]] int rowCount() const { return list_.rowCount(); }
    [[nodiscard]] std::vector<DriveRecord*> tickedDrives() const;

    /// The drive that an item-changed notification makes active: its row has become both selected and focused. Null for
    /// every other change, a tick among them.
    [[nodiscard]] DriveRecord* newlySelected(const NMLISTVIEW& change) const;

    /// The drive whose row is selected; null when none is.
    [[nodiscard]] DriveRecord* selectedDrive() const;

    /// The drive that a message of the event log tells a SMART finding of; null for other messages.
    [[nodiscard]] DriveRecord* driveOfMessage(std::string_view message) const;
    /// Selects the drive's row, and scrolls it into view.
    void select(const DriveRecord& drive);

    /// True for a place of the list, in its own pixels, on a row and beside its check box.
    [[nodiscard]] bool isOnRow(POINT place) const { return list_.isOnRow(place); }

    /// The rows to be carried away: the selected one, or else the one with the focus; by DriveColumn.
    [[nodiscard]] std::vector<RowTexts> chosenRows() const;

    /// Where a context menu belongs that was asked for at that place of the screen, whose row is selected by this, or
    /// by the keyboard (-1, -1) for the selected row. None when there is no row.
    [[nodiscard]] std::optional<POINT> menuPlace(POINT askedAt);

    [[nodiscard]] LRESULT draw(NMLVCUSTOMDRAW& draw) const;

    [[nodiscard]] HWND window() const { return list_.window(); }

  private:
    [[nodiscard]] DriveRecord* record(int row) const { return reinterpret_cast<DriveRecord*>(list_.rowData(row)); }

    void drawEmptyText(HDC context) const;
    void renumberRows() const;

    ListView list_;
    std::vector<DriveRecord*> drives_; ///< in the scan's order
    DriveOrder order_;
    std::string emptyText_;
    RowTips tips_;
};

} // namespace torvane
