#include "window/main_dialog.h"

#include "admin/mounting.h"
#include "discovery/drive_summary.h"
#include "health/health_message_view.h"
#include "health/health_panel_view.h"
#include "resources/resource_ids.h"
#include "settings/company_info_file.h"
#include "settings/messages.h"
#include "settings/tutorial_dialog.h"
#include "state/active_drive.h"
#include "state/app_state.h"
#include "ui/colour_scheme.h"
#include "ui/control_text.h"
#include "ui/menu_item.h"
#include "ui/program_icon.h"
#include "ui/prompt_owner.h"
#include "ui/scrolling.h"
#include "ui/task_bar_windows.h"
#include "ui/window_scale.h"
#include "window/button_tips.h"
#include "window/column_widths_file.h"
#include "window/main_window_view.h"
#include "window/shutdown_guard.h"
#include "window/work_folder.h"

#include <windowsx.h>

#include <algorithm>
#include <utility>

namespace torvane {

namespace {

HFONT createFixedPitchFont(const char* face, int weight, Scale scale) {
    constexpr int kHeight = 18;
    return CreateFontA(scale.px(kHeight), 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH | FF_MODERN, face);
}

} // namespace

MainDialog::MainDialog(AppState& state, MainWindowView& view) : Dialog(IDD_MAIN), state_(state), view_(view) {}

bool MainDialog::onInitialise() {
    addSystemMenuItems();
    gdiPlus_.start();
    view_.attach(window());
    prompts::setOwner(window());
    awaitTaskBarButton(window());
    watchJobs();
    driveChanges_.watch(window());
    state_.activeDriveChosen = 0;
    state_.activeDrive = nullptr;
    SetWindowTextA(window(), "Torvane ver 1.2 June 20, 2022 7:40 AM");
    buildListViews();
    layOut();
    placeWindow();
    if (LoadMessages(state_.messages) == 0) {
        tellUnopenedMessages();
        end(0);
        return false;
    }
    tellReadOnlyFolder();
    LoadCompanyInfo(state_.companyInfo);
    showThenHidePanel();
    ShowTutorialIfWanted(window());
    SetFocus(driveList_.window());
    return false;
}

// Jobs begin and end on many threads, the system takes the reason from the window's own alone.
void MainDialog::watchJobs() {
    state_.jobs.watch([own = window()] { PostMessageA(own, kJobsChangedMessage, 0, 0); });
}

void MainDialog::addSystemMenuItems() {
    const HMENU menu = GetSystemMenu(window(), FALSE);
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuA(menu, MF_STRING, IDM_RESCUE_TICKED, "Rescue...");
    AppendMenuA(menu, MF_STRING, IDM_VERIFY_IMAGE, "Verify Image...");
    AppendMenuA(menu, MF_STRING, IDM_SHOW_TUTORIAL, "Show Tutorial...");
    AppendMenuA(menu, MF_STRING, IDM_MANUAL, "Manual");
    AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    // These stay the last ones: users and their scripts know them there.
    AppendMenuA(menu, MF_STRING, IDM_ABOUT, "About");
    AppendMenuA(menu, MF_STRING, IDM_EDIT_MESSAGES, "Edit Messages...");
}

// Before the system menu opens.
void MainDialog::updateSystemMenu() {
    const HMENU menu = GetSystemMenu(window(), FALSE);
    enableMenuItem(menu, IDM_EDIT_MESSAGES, !state_.jobs.active());
    enableMenuItem(menu, IDM_RESCUE_TICKED, !state_.jobs.whyNot(JobKind::kRescue));
    enableMenuItem(menu, IDM_VERIFY_IMAGE, !state_.jobs.whyNot(JobKind::kVerifyImage));
}

void MainDialog::setIcons() {
    const auto iconOf = [this](int metricX, int metricY) {
        return programIcon(IDI_TORVANE, {systemMetric(metricX, scale()), systemMetric(metricY, scale())});
    };
    UniqueIcon large = iconOf(SM_CXICON, SM_CYICON);
    UniqueIcon small = iconOf(SM_CXSMICON, SM_CYSMICON);
    SendMessageA(window(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(large.get()));
    SendMessageA(window(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small.get()));
    largeIcon_ = std::move(large);
    smallIcon_ = std::move(small);
}

void MainDialog::createFonts() {
    headingFont_.reset(createFixedPitchFont("Comic Sans MS", FW_BOLD, scale()));
    dataFont_.reset(createFixedPitchFont("FixedSys", FW_NORMAL, scale()));
    SendMessageA(control(IDC_GAUGE_TEXT), WM_SETFONT, reinterpret_cast<WPARAM>(dataFont_.get()), FALSE);
}

void MainDialog::layOut() {
    setIcons();
    createFonts();
    sizeWindow();
    placeControls();
}

// Where the work area is too low, the lists give way first.
void MainDialog::sizeWindow() {
    const PixelSize frame = frameOf(window());
    const RECT area = workAreaOf(window());
    closedHeight_ = std::max(scale().px(kMainWindowHeight) - frame.height, scale().px(kLeastClientHeight));
    const int panelHeight = logPanelOpen_ ? scale().px(kMainWindowHeightWithLog - kMainWindowHeight) : 0;
    const PixelSize whole{std::max(scale().px(kMainWindowWidth) - frame.width, scale().px(kLeastClientWidth)),
                          closedHeight_ + panelHeight};
    const bool tooWide = frame.width + whole.width > area.right - area.left;
    const int bar = tooWide ? systemMetric(SM_CYHSCROLL, scale()) : 0;
    const int excess = frame.height + whole.height + bar - static_cast<int>(area.bottom - area.top);
    losses_ = shareOut(excess > 0 ? scale().at96(excess) + 1 : 0, logPanelOpen_);
    closedHeight_ -= scale().px(losses_.driveList);
    fitClientArea({whole.width, closedHeight_ + panelHeight - scale().px(losses_.logList)});
}

// In the middle of the work area, with room for the log panel below.
void MainDialog::placeWindow() {
    const RECT area = workAreaOf(window());
    RECT place{};
    GetWindowRect(window(), &place);
    const int left = (area.left + area.right - (place.right - place.left)) / 2;
    const int top = (area.top + area.bottom - scale().px(kMainWindowHeightWithLog)) / 2;
    SetWindowPos(window(), nullptr, std::max<int>(left, area.left), std::max<int>(top, area.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void MainDialog::placeControls() {
    for (const PlacedControl& placed : layOutMainWindow(losses_)) {
        placeControl(placed.id, placed.place);
    }
    placeControl(IDC_HEALTH_PANEL, healthPanelPlace(losses_));
    placeControl(IDC_DRIVE_LIST, driveListPlace(losses_));
    RECT log = toRect(scale().px(logListPlace(0)));
    log.bottom -= scale().px(losses_.logList);
    OffsetRect(&log, 0, closedHeight_);
    placeControlAt(IDC_LOG_LIST, log);
}

void MainDialog::buildListViews() {
    columnWidths_ = loadColumnWidths();
    driveList_.create(window(), columnWidths_);
    driveList_.showTips([this](const DriveRecord& drive) { return driveSummary(drive, state_.scan.volumes); });
    logList_.create(window(), columnWidths_);
    view_.logRows().attach(logList_);
    attachButtonTips();
    showDrivesKnown();
    messageTip_.attach(control(IDC_HEALTH_MESSAGE), "");
    enduranceTip_.attach(control(IDC_VALUE_TEXT_1), "");
    // First and last in the tab order; the drive list directly behind its label, whose access key leads to it.
    SetWindowPos(driveList_.window(), control(IDC_DRIVES_LABEL), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    SetWindowPos(logList_.window(), HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

// A kept step of the start: the panel frames nothing yet, and what is painted in its place needs no control.
void MainDialog::showThenHidePanel() {
    showControl(IDC_HEALTH_PANEL, true);
    showControl(IDC_HEALTH_PANEL, false);
}

void MainDialog::showScanProgress(int maximum) {
    SendMessageA(control(IDC_SCAN_PROGRESS), PBM_SETPOS, 0, 0);
    SendMessageA(control(IDC_SCAN_PROGRESS), PBM_SETRANGE32, 0, maximum);
    showControl(IDC_ACTIVE_DRIVE, false);
    showControl(IDC_SCAN_PROGRESS, true);
    showControl(IDC_SCAN_STATUS, true);
}

void MainDialog::setScanProgress(int position) {
    SendMessageA(control(IDC_SCAN_PROGRESS), PBM_SETPOS, static_cast<WPARAM>(position), 0);
}

void MainDialog::setScanStatus(const std::string& text) {
    setControlText(IDC_SCAN_STATUS, text.c_str());
}

void MainDialog::hideScanProgress() {
    showControl(IDC_SCAN_PROGRESS, false);
    showControl(IDC_SCAN_STATUS, false);
    showControl(IDC_ACTIVE_DRIVE, true);
}

void MainDialog::setWideProgress(int position) {
    SendMessageA(control(IDC_WIDE_PROGRESS), PBM_SETPOS, static_cast<WPARAM>(position), 0);
}

void MainDialog::clearHealthPanel() {
    for (int id = IDC_VALUE_TEXT_1; id <= IDC_VALUE_TEXT_6; ++id) {
        setControlText(id, "");
    }
    setControlText(IDC_HEALTH_MESSAGE, "");
    setControlText(IDC_OWN_VERDICT, "");
    setControlText(IDC_ACTIVE_DRIVE, "");
    enduranceTip_.setText("");
    setControlText(IDC_GAUGE_TEXT, "00 00 00 00 00");
    InvalidateRect(window(), nullptr, TRUE);
}

// A message that does not show whole is told by its tool tip.
void MainDialog::drawItem(const DRAWITEMSTRUCT& item) {
    if (item.CtlID == IDC_OWN_VERDICT) {
        drawOwnVerdict(item, hasActiveDrive(state_) ? state_.activeDrive.load() : nullptr);
    }
    if (item.CtlID != IDC_HEALTH_MESSAGE) {
        return;
    }
    const auto dialogFont = reinterpret_cast<HFONT>(SendMessageA(window(), WM_GETFONT, 0, 0));
    const bool whole = drawHealthMessage(item, headingFont_.get(), dialogFont);
    messageTip_.setText(whole ? "" : controlText(item.hwndItem));
}

void MainDialog::selectActiveDrive(const NMLISTVIEW& change) {
    DriveRecord* const drive = driveList_.newlySelected(change);
    if (drive == nullptr) {
        return;
    }
    state_.activeDrive = drive;
    state_.activeDriveChosen = 1;
    setControlText(IDC_ACTIVE_DRIVE, activeDriveText(*drive).c_str());
    enduranceTip_.setText(drive->smartType == kSmartTypeNvme
                              ? "The threshold is 7,000 times 1,024 GB written, the same for every drive."
                              : "");
    InvalidateRect(window(), nullptr, TRUE);
}

void MainDialog::attachButtonTips() {
    buttonTips_.resize(buttonTips().size());
    for (std::size_t i = 0; i < buttonTips_.size(); ++i) {
        const ButtonTip& tip = buttonTips()[i];
        buttonTips_[i].attach(control(tip.id), tipText(tip, nullptr));
    }
}

void MainDialog::updateButtonTips() {
    const std::vector<DriveRecord*> ticked = driveList_.tickedDrives();
    const DriveRecord* const copied = ticked.size() == 1 ? ticked.front() : nullptr;
    const DriveRecord* const selected = driveList_.selectedDrive();
    for (std::size_t i = 0; i < buttonTips_.size(); ++i) {
        const ButtonTip& tip = buttonTips()[i];
        if (tip.reading != ReadingShare::kNone) {
            buttonTips_[i].setText(tipText(tip, tip.reading == ReadingShare::kWhole ? copied : selected));
        }
    }
}

void MainDialog::forgetDrives() {
    drives_ = {.found = std::nullopt, .isScanning = true, .haveChanged = false, .reportNamesNobody = false};
    showDrivesKnown();
    driveList_.deleteRows();
    updateButtonTips();
}

void MainDialog::showDrivesFound(const DrivesFound& found) {
    drives_.found = found;
    drives_.isScanning = false;
    showDrivesKnown();
}

void MainDialog::showDrivesKnown() {
    setControlText(IDC_DRIVES_LABEL, drivesHeading(drives_).c_str());
    driveList_.setEmptyText(emptyListText(drives_));
}

std::optional<LRESULT> MainDialog::onNotify(NMHDR& header) {
    if (header.idFrom == IDC_DRIVE_LIST && header.code == LVN_ITEMCHANGED) {
        selectActiveDrive(reinterpret_cast<NMLISTVIEW&>(header));
        updateButtonTips();
        return 0;
    }
    if (header.idFrom == IDC_DRIVE_LIST && header.code == LVN_COLUMNCLICK) {
        sortBy(static_cast<DriveColumn>(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem));
        return 0;
    }
    if (header.idFrom == IDC_LOG_LIST && header.code == NM_DBLCLK) {
        PostMessageA(window(), WM_COMMAND, IDM_GO_TO_DRIVE, 0);
        return 0;
    }
    if (header.idFrom == IDC_DRIVE_LIST && header.code == NM_DBLCLK) {
        // As a command, which waits or is dropped like any other.
        if (driveList_.isOnRow(reinterpret_cast<const NMITEMACTIVATE&>(header).ptAction)) {
            PostMessageA(window(), WM_COMMAND, IDM_DRIVE_DETAILS, 0);
        }
        return 0;
    }
    if ((header.idFrom == IDC_DRIVE_LIST || header.idFrom == IDC_LOG_LIST) && header.code == LVN_KEYDOWN) {
        onListKey(static_cast<int>(header.idFrom), reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey);
        return 0;
    }
    if (header.idFrom == IDC_LOG_LIST && header.code == NM_CUSTOMDRAW) {
        return logList_.draw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
    }
    if (header.idFrom == IDC_DRIVE_LIST && header.code == NM_CUSTOMDRAW) {
        return driveList_.draw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
    }
    return std::nullopt;
}

bool MainDialog::onTimer(int id) {
    onMountTimer(state_, id);
    return true;
}

bool MainDialog::onPaint() {
    const PaintDc paint(window());
    const POINT by = scrolledBy(window());
    SetViewportOrgEx(paint.get(), -by.x, -by.y - scale().px(losses_.driveList), nullptr);
    PaintHealthPanel(state_, window(), paint.get(), scale());
    return true;
}

HBRUSH MainDialog::onControlColour(HDC context) {
    return colourUponDialog(context);
}

HICON MainDialog::onQueryDragIcon() {
    return largeIcon_.get();
}

// Only what the user has made of them: a folder of somebody who never touched them gets no file.
void MainDialog::saveColumnWidths() const {
    ColumnWidths now;
    for (std::size_t column = 0; column < now.drives.size(); ++column) {
        now.drives.at(column) = driveList_.columnWidth(static_cast<int>(column));
    }
    for (std::size_t column = 0; column < now.log.size(); ++column) {
        now.log.at(column) = logList_.columnWidth(static_cast<int>(column));
    }
    if (now != columnWidths_) {
        keepColumnWidths(now);
    }
}

void MainDialog::onDestroy() {
    saveColumnWidths();
    view_.attach(nullptr);
    prompts::setOwner(nullptr);
    taskBarButton().attach(nullptr);
}

std::optional<LRESULT> MainDialog::onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // Once the button is there, and again with each new task bar.
    if (message == taskBarButtonMessage()) {
        taskBarButton().attach(openTaskBar(window()));
        return 0;
    }
    switch (message) {
    case LogListDelivery::kMessage:
        view_.logRows().deliver(reinterpret_cast<const LogRow*>(lParam));
        return 0;
    case MainWindowView::kRunTaskMessage:
        view_.logRows().catchUp();
        (*reinterpret_cast<const MainWindowView::WindowTask*>(lParam))(*this);
        return 0;
    case kJobsChangedMessage:
        showShutdownReason(window(), state_.jobs.atWork());
        return 0;
    case WM_DEVICECHANGE:
        if (DriveChanges::isDrive(wParam, lParam)) {
            drives_.haveChanged = true;
            showDrivesKnown();
        }
        return TRUE;
    case WM_HELP:
        // By its command, which a box over the window and a wait hold back.
        if (IsWindowEnabled(window()) != FALSE) {
            PostMessageA(window(), WM_SYSCOMMAND, IDM_MANUAL, 0);
        }
        return TRUE;
    case WM_QUERYENDSESSION:
        return mayEndSession(state_.jobs.atWork()) ? TRUE : FALSE;
    case WM_ENDSESSION:
        if (wParam != FALSE) {
            noteSessionEnd(state_.jobs.atWork());
        }
        return 0;
    case WM_DRAWITEM:
        drawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_CONTEXTMENU:
        return showListMenu(reinterpret_cast<HWND>(wParam), {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)})
                   ? std::optional<LRESULT>(0)
                   : std::nullopt;
    case WM_INITMENUPOPUP:
        updateSystemMenu();
        return std::nullopt;
    case WM_ERASEBKGND:
        // The painted panel brings its own background; erased first, it would flicker.
        return TRUE;
    default:
        return std::nullopt;
    }
}

} // namespace torvane
