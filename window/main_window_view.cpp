#include "window/main_window_view.h"

#include "window/main_dialog.h"

namespace torvane {

void MainWindowView::onWindowThread(const WindowTask& task) {
    // A window that has gone meanwhile makes SendMessage return at once, with the task not run.
    if (const HWND window = window_; window != nullptr) {
        SendMessageA(window, kRunTaskMessage, 0, reinterpret_cast<LPARAM>(&task));
    }
}

void MainWindowView::appendLogRow(const LogRow& row) {
    if (const HWND window = window_; window != nullptr) {
        logRows_.carry(window, row);
    }
}

void MainWindowView::showScanProgress(int maximum) {
    onWindowThread([=](MainDialog& dialog) { dialog.showScanProgress(maximum); });
}

void MainWindowView::setScanProgress(int position) {
    onWindowThread([=](MainDialog& dialog) { dialog.setScanProgress(position); });
}

void MainWindowView::setScanStatus(std::string_view text) {
    onWindowThread([=](MainDialog& dialog) { dialog.setScanStatus(std::string(text)); });
}

void MainWindowView::hideScanProgress() {
    onWindowThread([](MainDialog& dialog) { dialog.hideScanProgress(); });
}

void MainWindowView::setWideProgress(int position) {
    onWindowThread([=](MainDialog& dialog) { dialog.setWideProgress(position); });
}

void MainWindowView::addDriveRow(DriveRecord& record) {
    onWindowThread([&](MainDialog& dialog) { dialog.driveList().addRow(record); });
}

void MainWindowView::deleteDriveRows() {
    onWindowThread([](MainDialog& dialog) { dialog.forgetDrives(); });
}

void MainWindowView::redrawDriveList() {
    onWindowThread([](MainDialog& dialog) { dialog.driveList().redraw(); });
}

void MainWindowView::showDrivesFound(int shown, int notShown) {
    onWindowThread([=](MainDialog& dialog) { dialog.showDrivesFound({.shown = shown, .notShown = notShown}); });
}

void MainWindowView::setDriveStatus(const DriveRecord& record, std::string_view text) {
    onWindowThread([&](MainDialog& dialog) { dialog.driveList().setStatus(record, std::string(text)); });
}

int MainWindowView::driveRowCount() {
    int count = 0;
    onWindowThread([&](MainDialog& dialog) { count = dialog.driveList().rowCount(); });
    return count;
}

std::vector<DriveRecord*> MainWindowView::tickedDrives() {
    std::vector<DriveRecord*> ticked;
    onWindowThread([&](MainDialog& dialog) { ticked = dialog.driveList().tickedDrives(); });
    return ticked;
}

void MainWindowView::clearHealthPanel() {
    onWindowThread([](MainDialog& dialog) { dialog.clearHealthPanel(); });
}

void MainWindowView::startTimer(int id, int milliseconds) {
    onWindowThread([=](MainDialog& dialog) {
        SetTimer(dialog.window(), static_cast<UINT_PTR>(id), static_cast<UINT>(milliseconds), nullptr);
    });
}

void MainWindowView::stopTimer(int id) {
    onWindowThread([=](MainDialog& dialog) { KillTimer(dialog.window(), static_cast<UINT_PTR>(id)); });
}

} // namespace torvane
