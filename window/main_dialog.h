#pragma once

#include "ui/dialog.h"
#include "ui/gdi_plus.h"
#include "ui/tool_tip.h"
#include "window/drive_changes.h"
#include "window/drive_list_view.h"
#include "window/drives_heading.h"
#include "window/log_list_view.h"
#include "window/main_layout.h"

#include <string>
#include <vector>

namespace torvane {

struct AppState;
class MainWindowView;

/// The main window. What each command does is in main_dialog_commands.cpp, which begins with the command table; what
/// a user does with the lists' rows is in main_dialog_lists.cpp; this class and main_dialog.cpp are the window itself:
/// start, lists, panel, end.
class MainDialog : public Dialog {
  public:
    /// `view` is how other threads reach this window; both records must outlive every thread that uses them.
    MainDialog(AppState& state, MainWindowView& view);

    // What the view asks of the window, on the window's thread.
    [[nodiscard]] DriveListView& driveList() { return driveList_; }
    /// A scan begins.
    void forgetDrives();
    void showDrivesFound(const DrivesFound& found);
    void showScanProgress(int maximum);
    void setScanProgress(int position);
    void setScanStatus(const std::string& text);
    void hideScanProgress();
    void setWideProgress(int position);
    void clearHealthPanel();

  protected:
    bool onInitialise() override;
    void layOut() override;
    bool onCommand(int id) override;
    [[nodiscard]] bool isWayOut(int id) const override;
    bool onSystemCommand(WPARAM id) override;
    std::optional<LRESULT> onNotify(NMHDR& header) override;
    bool onTimer(int id) override;
    bool onPaint() override;
    HBRUSH onControlColour(HDC context) override;
    HICON onQueryDragIcon() override;
    void onDestroy() override;
    std::optional<LRESULT> onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    /// The private message by which this window hears that a job has begun or ended.
    static constexpr UINT kJobsChangedMessage = WM_APP + 2;

    // Start
    void createFonts();
    void addSystemMenuItems();
    void setIcons();
    void buildListViews();
    void placeWindow();
    void showThenHidePanel();

    void watchJobs();
    void updateSystemMenu();
    void sizeWindow();
    void placeControls();
    /// In the list's heading, and in the list while it is empty.
    void showDrivesKnown();
    void attachButtonTips();
    /// Once another drive is selected or ticked.
    void updateButtonTips();
    void saveColumnWidths() const;
    void drawItem(const DRAWITEMSTRUCT& item);
    void selectActiveDrive(const NMLISTVIEW& change);

    // Lists: main_dialog_lists.cpp
    /// False when `list` is none that has a menu.
    bool showListMenu(HWND list, POINT askedAt);
    void showDriveMenu(POINT askedAt);
    void showLogMenu(POINT askedAt);
    void trackMenu(HMENU bar, POINT place);
    void onListKey(int list, WORD key);
    /// After its heading was clicked, or chosen in the menu.
    void sortBy(DriveColumn column);
    void copyText(const std::string& text);
    void copyRows(const std::vector<RowTexts>& rows);

    // Commands, in the order of the command table
    void onLoadDrives();
    void onNothing() {}
    void onEnter();
    void onDisableDriveMounting();
    void onEnableDriveMounting();
    void onCreateReport();
    void onCriticalReadTest();
    void onShortReadTest();
    void onNistReadTest();
    void onDriveToDriveClone();
    void onDriveToImage();
    void onImageToDrive();
    void onCreateForensicImage();
    void onTerminateCurrentTask();
    void onExit();
    void onDataWorkOrder();
    void onSuggestions();
    void onDataServices();
    void onHelp();
    void onCompanyInformation();
    void onCreatePortable();
    void onDetectBitLocker();
    void onQuickDiskView();
    void onToggleLogPanel();
    void onSetReadOnly();
    void onClearReadOnly();
    /// The selected drive, once it may be changed and the user wants it; else null.
    DriveRecord* driveWhoseAttributeMayBecome(bool readOnly);
    void onCleanDisk();
    void onDriveDetails();
    template <DriveColumn column>
    void onSortBy();
    void onSortAsScanned();
    void onCopyDriveRow();
    void onCopySerialNumber();
    void onCopyLogRows();
    void onSelectLogRows();
    void onSaveLog();
    void onGoToDrive();
    void onAbout();
    void onEditMessages();
    void onRescue();
    void onRescueTicked();
    void rescue(DriveRecord* drive);
    void onVerifyImage();

    AppState& state_;
    MainWindowView& view_;
    GdiPlusSession gdiPlus_;
    UniqueIcon largeIcon_;
    UniqueIcon smallIcon_;
    UniqueFont headingFont_;
    UniqueFont dataFont_;
    std::vector<ToolTip> buttonTips_; ///< in the order of `buttonTips`
    ToolTip messageTip_;
    ToolTip enduranceTip_;      ///< of the threshold that is the same for all
    ColumnWidths columnWidths_; ///< as the lists began with
    DriveListView driveList_;
    DrivesKnown drives_;
    DriveChanges driveChanges_;
    LogListView logList_;
    bool logPanelOpen_ = false;
    ListLosses losses_;
    int closedHeight_ = 0; ///< of what the window shows while the log panel is closed; screen pixels
};

} // namespace torvane
