#include "copy/dialogs/drive_rows_view.h"

#include "base/colours.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"

namespace torvane {

bool DriveRowsView::create(HWND dialog, int id, int label, const RECT& place, bool ticks) {
    const DWORD extendedStyle = LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT | (ticks ? LVS_EX_CHECKBOXES : 0U);
    if (!list_.create(dialog, id, place, WS_VISIBLE | LVS_SINGLESEL | LVS_SHOWSELALWAYS, extendedStyle,
                      kListBackground)) {
        return false;
    }
    list_.addColumn("Model", 190);
    list_.addColumn("Serial Number", 120);
    list_.addColumn("Size", 80);
    SetWindowPos(list_.window(), GetDlgItem(dialog, label), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return true;
}

void DriveRowsView::addRow(DriveRecord& drive) {
    const int row = list_.appendRow(drive.model.c_str(), reinterpret_cast<LPARAM>(&drive));
    list_.setCell(row, 1, drive.serialNumber.c_str());
    list_.setCell(row, 2, sizeGigabytesText(drive).append(" GB").c_str());
}

std::vector<DriveRecord*> DriveRowsView::tickedDrives() const {
    std::vector<DriveRecord*> ticked;
    for (int row = 0; row < list_.rowCount(); ++row) {
        if (list_.isTicked(row)) {
            ticked.push_back(reinterpret_cast<DriveRecord*>(list_.rowData(row)));
        }
    }
    return ticked;
}

} // namespace torvane
