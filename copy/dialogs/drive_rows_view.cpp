#include "copy/dialogs/drive_rows_view.h"

#include "base/colours.h"
#include "discovery/drive_summary.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"
#include "ui/scrolling.h"
#include "ui/window_scale.h"

namespace torvane {

bool DriveRowsView::create(HWND dialog, const DriveRowsLook& look, const VolumeTable& volumes) {
    const DWORD extendedStyle = LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT | (look.ticks ? LVS_EX_CHECKBOXES : 0U);
    if (!list_.create(dialog, look.id, shownPlace(dialog, toPixelRect(look.place)),
                      WS_VISIBLE | LVS_SINGLESEL | LVS_SHOWSELALWAYS, extendedStyle, kListBackground)) {
        return false;
    }
    volumes_ = &volumes;
    numberAndLetters_ = look.numberAndLetters;
    list_.addColumn("Model", look.modelWidth);
    list_.addColumn("Serial Number", look.serialNumberWidth);
    list_.addColumn("Size", look.sizeWidth);
    if (numberAndLetters_) {
        list_.addColumn("Drive", 42);
        list_.addColumn("Volumes", 76);
    }
    tips_.attach(list_.window(), [this](int row) { return driveSummary(*record(row), *volumes_); });
    SetWindowPos(list_.window(), GetDlgItem(dialog, look.label), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return true;
}

void DriveRowsView::addRow(DriveRecord& drive) {
    const int row = list_.appendRow(drive.model.c_str(), reinterpret_cast<LPARAM>(&drive));
    list_.setCell(row, 1, drive.serialNumber.c_str());
    list_.setCell(row, 2, sizeGigabytesText(drive).append(" GB").c_str());
    if (numberAndLetters_) {
        list_.setCell(row, 3, driveNumberText(drive).c_str());
        list_.setCell(row, 4, volumeLettersText(drive, *volumes_).c_str());
    }
}

std::vector<DriveRecord*> DriveRowsView::tickedDrives() const {
    std::vector<DriveRecord*> ticked;
    for (int row = 0; row < list_.rowCount(); ++row) {
        if (list_.isTicked(row)) {
            ticked.push_back(record(row));
        }
    }
    return ticked;
}

DriveRecord* DriveRowsView::drivePointedAt() const {
    const std::vector<DriveRecord*> ticked = tickedDrives();
    if (ticked.size() == 1) {
        return ticked.front();
    }
    const int selected = list_.selectedRow();
    return selected < 0 ? nullptr : record(selected);
}

} // namespace torvane
