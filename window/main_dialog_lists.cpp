#include "window/main_dialog.h"

#include "base/format.h"
#include "details/details_dialog.h"
#include "records/drive_record.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "ui/clipboard.h"
#include "ui/held_commands.h"
#include "ui/menu_item.h"
#include "ui/prompts.h"
#include "window/list_cells.h"
#include "window/list_text.h"
#include "window/save_log.h"

namespace torvane {

// The context menus of the two lists, and how their rows are carried away.

namespace {

bool isHeld(int key) {
    return GetKeyState(key) < 0;
}

UniqueMenu loadMenu(int id) {
    return UniqueMenu{LoadMenuA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id))};
}

} // namespace

void MainDialog::trackMenu(HMENU bar, POINT place) {
    TrackPopupMenu(GetSubMenu(bar, 0), TPM_RIGHTBUTTON, place.x, place.y, 0, window(), nullptr);
}

bool MainDialog::showListMenu(HWND list, POINT askedAt) {
    if (list != driveList_.window() && list != logList_.window()) {
        return false;
    }
    if (!HeldCommands::someoneIsWaitedFor()) {
        list == driveList_.window() ? showDriveMenu(askedAt) : showLogMenu(askedAt);
    }
    return true;
}

void MainDialog::showDriveMenu(POINT askedAt) {
    const std::optional<POINT> place = driveList_.menuPlace(askedAt);
    if (!place) {
        return;
    }
    const UniqueMenu menu = loadMenu(IDR_DRIVE_MENU);
    const std::optional<DriveColumn> sorted = driveList_.order().column;
    CheckMenuRadioItem(menu.get(), IDM_SORT_AS_SCANNED, IDM_SORT_BY_STATUS,
                       sorted ? static_cast<UINT>(IDM_SORT_BY_MODEL + *sorted) : IDM_SORT_AS_SCANNED, MF_BYCOMMAND);
    trackMenu(menu.get(), *place);
}

void MainDialog::showLogMenu(POINT askedAt) {
    const POINT place = logList_.menuPlace(askedAt);
    const UniqueMenu menu = loadMenu(IDR_LOG_MENU);
    enableMenuItem(menu.get(), IDM_COPY_LOG_ROWS, logList_.hasChosenRows());
    enableMenuItem(menu.get(), IDM_SELECT_LOG_ROWS, logList_.hasRows());
    enableMenuItem(menu.get(), IDM_SAVE_LOG, logList_.hasRows());
    const DriveRecord* const drive = driveList_.driveOfMessage(logList_.chosenMessage());
    enableMenuItem(menu.get(), IDM_GO_TO_DRIVE, drive != nullptr);
    if (drive != nullptr) {
        // Rows are counted from 1 for people.
        setMenuItemText(menu.get(), IDM_GO_TO_DRIVE, formatText("Go to the &Drive: row %d", drive->listPosition + 1));
    }
    trackMenu(menu.get(), place);
}

void MainDialog::onListKey(int list, WORD key) {
    if (HeldCommands::someoneIsWaitedFor() || !isHeld(VK_CONTROL) || isHeld(VK_SHIFT) || isHeld(VK_MENU)) {
        return;
    }
    if (key == 'C') {
        list == IDC_DRIVE_LIST ? onCopyDriveRow() : onCopyLogRows();
    } else if (key == 'A' && list == IDC_LOG_LIST) {
        onSelectLogRows();
    }
}

void MainDialog::copyText(const std::string& text) {
    if (!copyToClipboard(window(), text)) {
        prompts::warn("***** NOT COPIED *****",
                      "Another program is using the clipboard. Nothing was copied. Please try again");
    }
}

void MainDialog::copyRows(const std::vector<RowTexts>& rows) {
    if (!rows.empty()) {
        copyText(rowsAsText(rows));
    }
}

// A dialog hands Enter to no list: it makes this command of it, as others may without any key.
void MainDialog::onEnter() {
    if (GetFocus() == driveList_.window() && isHeld(VK_RETURN)) {
        onDriveDetails();
    }
}

void MainDialog::onDriveDetails() {
    if (const DriveRecord* const drive = driveList_.selectedDrive()) {
        showDriveDetails(*drive, state_.scan.volumes,
                         {.copy = [this](const std::string& text) { copyText(text); }, .save = saveDetailsAsText},
                         window());
    }
}

void MainDialog::onCopyDriveRow() {
    copyRows(driveList_.chosenRows());
}

void MainDialog::onCopySerialNumber() {
    if (const std::vector<RowTexts> rows = driveList_.chosenRows(); !rows.empty()) {
        copyText(rows.front()[kDriveColumnSerialNumber]);
    }
}

void MainDialog::onCopyLogRows() {
    copyRows(logList_.chosenRows());
}

void MainDialog::onSelectLogRows() {
    logList_.selectAllRows();
}

void MainDialog::sortBy(DriveColumn column) {
    driveList_.sort(orderAfterClick(driveList_.order(), column));
}

void MainDialog::onGoToDrive() {
    if (const DriveRecord* const drive = driveList_.driveOfMessage(logList_.chosenMessage())) {
        driveList_.select(*drive);
        SetFocus(driveList_.window());
    }
}

void MainDialog::onSaveLog() {
    if (logList_.hasRows()) {
        saveLogAsText([this] { return logAsText(logList_.allRows()); });
    }
}

} // namespace torvane
