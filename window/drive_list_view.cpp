#include "window/drive_list_view.h"

#include "base/colours.h"
#include "base/wide_text.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"
#include "resources/resource_ids.h"
#include "ui/colour_scheme.h"
#include "window/finding_row.h"
#include "window/list_cells.h"
#include "window/painted_cells.h"

#include <numeric>
#include <utility>

namespace torvane {

namespace {

/// On the list's background 8.3 : 1.
constexpr ColourCode kEmptyListText = colour(0, 0, 128);

} // namespace

bool DriveListView::create(HWND parent, const ColumnWidths& widths) {
    if (!list_.create(parent, IDC_DRIVE_LIST, {}, WS_VISIBLE | LVS_SINGLESEL | LVS_SHOWSELALWAYS,
                      LVS_EX_GRIDLINES | LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT, kListBackground)) {
        return false;
    }
    int column = 0;
    for (const char* const heading : {"Model", "Serial Number", "Size Sectors", "Size GB", "Interface", "Status"}) {
        list_.addColumn(heading, widths.drives.at(static_cast<std::size_t>(column)));
        ++column;
    }
    return true;
}

void DriveListView::showTips(std::function<std::string(const DriveRecord&)> textOf) {
    tips_.attach(list_.window(), [this, textOf = std::move(textOf)](int row) { return textOf(*record(row)); });
}

void DriveListView::addRow(DriveRecord& record) {
    drives_.push_back(&record);
    record.listPosition = list_.rowCount();
    const int row = list_.appendRow(record.model.c_str(), reinterpret_cast<LPARAM>(&record));
    list_.setCell(row, kDriveColumnSerialNumber, record.serialNumber.c_str());
    list_.setCell(row, kDriveColumnSizeSectors, sizeSectorsText(record).c_str());
    list_.setCell(row, kDriveColumnSizeGigabytes, sizeGigabytesText(record).c_str());
    list_.setCell(row, kDriveColumnStatus, "Idle");
    list_.setCell(row, kDriveColumnInterface, interfaceText(record).c_str());
}

void DriveListView::deleteRows() {
    list_.deleteRows();
    drives_.clear();
    sort({}); // the next scan's order
}

void DriveListView::sort(const DriveOrder& order) {
    order_ = order;
    std::vector<DriveRow> rows(drives_.size());
    std::vector<int> numbers(drives_.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    const std::vector<RowTexts> texts = list_.wholeRows(numbers);
    for (std::size_t i = 0; i < drives_.size(); ++i) {
        rows[i] = {.drive = drives_[i], .cells = texts.at(static_cast<std::size_t>(drives_[i]->listPosition))};
    }
    std::vector<LPARAM> data;
    for (const std::size_t row : sortedRows(rows, order)) {
        data.push_back(reinterpret_cast<LPARAM>(drives_[row]));
    }
    list_.arrange(data);
    renumberRows();
    list_.markSorted(order.column ? static_cast<int>(*order.column) : -1, order.descending);
}

void DriveListView::renumberRows() const {
    for (int row = 0; row < list_.rowCount(); ++row) {
        record(row)->listPosition = row;
    }
}

DriveRecord* DriveListView::driveOfMessage(std::string_view message) const {
    const std::vector<const DriveRecord*> drives(drives_.begin(), drives_.end());
    const std::optional<std::size_t> found = driveOfFinding(message, drives);
    return found ? drives_[*found] : nullptr;
}

void DriveListView::select(const DriveRecord& drive) {
    list_.selectRow(drive.listPosition);
    list_.scrollIntoView(drive.listPosition);
}

void DriveListView::setStatus(const DriveRecord& drive, const std::string& text) {
    for (int row = 0; row < list_.rowCount(); ++row) {
        if (record(row) == &drive) {
            list_.setCell(row, kDriveColumnStatus, text.c_str());
        }
    }
}

std::vector<DriveRecord*> DriveListView::tickedDrives() const {
    std::vector<DriveRecord*> ticked;
    for (int row = 0; row < list_.rowCount(); ++row) {
        if (list_.isTicked(row)) {
            ticked.push_back(record(row));
        }
    }
    return ticked;
}

DriveRecord* DriveListView::newlySelected(const NMLISTVIEW& change) const {
    if ((change.uChanged & LVIF_STATE) == 0 || change.iItem < 0) {
        return nullptr;
    }
    // The tick is part of the state. Windows reports only the bits that changed, other systems the whole state: a
    // change of the tick differs in its bits, and any other change leaves them alike.
    const UINT tickBefore = change.uOldState & LVIS_STATEIMAGEMASK;
    const UINT tickAfter = change.uNewState & LVIS_STATEIMAGEMASK;
    const UINT state = change.uNewState & ~static_cast<UINT>(LVIS_STATEIMAGEMASK);
    const bool selected = state == (LVIS_SELECTED | LVIS_FOCUSED);
    return selected && tickBefore == tickAfter ? record(change.iItem) : nullptr;
}

DriveRecord* DriveListView::selectedDrive() const {
    const int row = list_.selectedRow();
    return row < 0 ? nullptr : record(row);
}

std::vector<RowTexts> DriveListView::chosenRows() const {
    return list_.wholeRows(list_.chosenRows());
}

std::optional<POINT> DriveListView::menuPlace(POINT askedAt) {
    const bool byKeyboard = askedAt.x == -1 && askedAt.y == -1;
    const int row = byKeyboard ? list_.selectedRow() : list_.rowAt(askedAt);
    if (row < 0) {
        return std::nullopt;
    }
    if (!byKeyboard) {
        list_.selectRow(row);
        return askedAt;
    }
    return list_.placeBelow(row);
}

void DriveListView::setEmptyText(const std::string& text) {
    emptyText_ = text;
    redraw();
}

// In the middle of what is below the headings.
void DriveListView::drawEmptyText(HDC context) const {
    RECT place{};
    GetClientRect(list_.window(), &place);
    RECT headings{};
    GetWindowRect(ListView_GetHeader(list_.window()), &headings);
    place.top += headings.bottom - headings.top;
    SetBkColor(context, listGround(kListBackground)); // over the grid
    SetTextColor(context, stressedText(kEmptyListText));
    DrawTextW(context, wideText(emptyText_).c_str(), -1, &place, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}

LRESULT DriveListView::draw(NMLVCUSTOMDRAW& draw) const {
    if (draw.nmcd.dwDrawStage == CDDS_POSTPAINT) {
        drawEmptyText(draw.nmcd.hdc);
        return CDRF_DODEFAULT;
    }
    const LRESULT more = rowCount() == 0 && draw.nmcd.dwDrawStage == CDDS_PREPAINT ? CDRF_NOTIFYPOSTPAINT : 0;
    return more | drawCells(list_, draw, paintedBy(&driveCellPaint));
}

} // namespace torvane
