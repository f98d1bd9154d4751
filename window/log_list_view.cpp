#include "window/log_list_view.h"

#include "base/colours.h"
#include "resources/resource_ids.h"
#include "window/list_cells.h"
#include "window/painted_cells.h"

#include <numeric>
#include <optional>

namespace torvane {

bool LogListView::create(HWND parent, const ColumnWidths& widths) {
    if (!list_.create(parent, IDC_LOG_LIST, {}, 0, LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT, kListBackground)) {
        return false;
    }
    int column = 0;
    for (const char* const heading : {"Type", "Date", "Time", "Message"}) {
        list_.addColumn(heading, widths.log.at(static_cast<std::size_t>(column)));
        ++column;
    }
    return true;
}

void LogListView::append(std::span<const LogRow> rows) {
    if (rows.empty()) {
        return;
    }
    // One row that is seen is drawn alone, without the list flickering around it.
    std::optional<UndrawnList> undrawn;
    if (rows.size() > 1 || !list_.isShown()) {
        undrawn.emplace(list_);
    }
    int index = -1;
    for (const LogRow& row : rows) {
        index = list_.appendRow(row.category.c_str());
        list_.setCell(index, kLogColumnDate, row.date.c_str());
        list_.setCell(index, kLogColumnTime, row.time.c_str());
        list_.setCell(index, kLogColumnMessage, row.message.c_str());
    }
    undrawn.reset();
    list_.scrollIntoView(index);
}

std::vector<RowTexts> LogListView::chosenRows() const {
    return list_.wholeRows(list_.chosenRows());
}

std::string LogListView::chosenMessage() const {
    const std::vector<int> rows = list_.chosenRows();
    return rows.size() == 1 ? list_.wholeRows(rows).front()[kLogColumnMessage] : std::string();
}

std::vector<RowTexts> LogListView::allRows() const {
    std::vector<int> rows(static_cast<std::size_t>(list_.rowCount()));
    std::iota(rows.begin(), rows.end(), 0);
    return list_.wholeRows(rows);
}

POINT LogListView::menuPlace(POINT askedAt) {
    if (askedAt.x != -1 || askedAt.y != -1) {
        return askedAt;
    }
    const std::vector<int> rows = list_.chosenRows();
    return list_.placeBelow(rows.empty() ? -1 : rows.front());
}

LRESULT LogListView::draw(NMLVCUSTOMDRAW& draw) const {
    return drawCells(list_, draw, paintedBy(&logCellPaint));
}

} // namespace torvane
