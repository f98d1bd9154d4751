#include "window/main_dialog.h"

#include "admin/bitlocker_dialog.h"
#include "admin/destruction_warning_dialog.h"
#include "admin/disk_commands.h"
#include "admin/disk_guards.h"
#include "admin/mounting.h"
#include "admin/protected_drives.h"
#include "copy/dialogs/clone_dialog.h"
#include "copy/dialogs/copy_choices.h"
#include "copy/dialogs/destination_folder.h"
#include "copy/dialogs/forensic_dialog.h"
#include "copy/dialogs/found_digests.h"
#include "copy/dialogs/image_dialog.h"
#include "copy/dialogs/image_to_drive_dialog.h"
#include "copy/dialogs/rescue_dialog.h"
#include "copy/dialogs/verify_image_dialog.h"
#include "copy/dialogs/volume_space.h"
#include "hex/hex_viewer_dialog.h"
#include "reports/create_report.h"
#include "resources/resource_ids.h"
#include "scan/scan_job.h"
#include "settings/company_info_dialog.h"
#include "settings/edit_messages_dialog.h"
#include "settings/portable_drive.h"
#include "settings/tutorial_dialog.h"
#include "state/active_drive.h"
#include "state/app_state.h"
#include "state/still_at_work.h"
#include "surface/read_test_dialog.h"
#include "ui/embedded_text.h"
#include "ui/prompts.h"
#include "ui/scrolling.h"
#include "window/about_dialog.h"
#include "window/command_guards.h"
#include "window/exit_flow.h"
#include "window/manual.h"
#include "window/terminate_task.h"
#include "window/web_pages.h"

namespace torvane {

bool MainDialog::onCommand(int id) {
    // What each button and menu item does. Some commands are in no menu; they are routed all the same.
    static constexpr CommandRoute<MainDialog> kRoutes[] = {
        {IDM_EXIT, &MainDialog::onExit},
        {IDM_LOAD_DRIVES, &MainDialog::onLoadDrives},
        {IDM_UNUSED_32773, &MainDialog::onNothing},
        {IDM_UNUSED_32804, &MainDialog::onNothing},
        {IDM_DISABLE_MOUNTING, &MainDialog::onDisableDriveMounting},
        {IDC_DISABLE_MOUNTING, &MainDialog::onDisableDriveMounting},
        {IDM_ENABLE_MOUNTING, &MainDialog::onEnableDriveMounting},
        {IDC_ENABLE_MOUNTING, &MainDialog::onEnableDriveMounting},
        {IDM_CREATE_REPORT, &MainDialog::onCreateReport},
        {IDC_CREATE_REPORT, &MainDialog::onCreateReport},
        {IDM_CRITICAL_READ_TEST, &MainDialog::onCriticalReadTest},
        {IDC_CRITICAL_READ_TEST, &MainDialog::onCriticalReadTest},
        {IDM_SHORT_READ_TEST, &MainDialog::onShortReadTest},
        {IDC_SHORT_READ_TEST, &MainDialog::onShortReadTest},
        {IDM_NIST_READ_TEST, &MainDialog::onNistReadTest},
        {IDC_NIST_READ_TEST, &MainDialog::onNistReadTest},
        {IDM_DRIVE_TO_DRIVE_CLONE, &MainDialog::onDriveToDriveClone},
        {IDC_DRIVE_TO_DRIVE_CLONE, &MainDialog::onDriveToDriveClone},
        {IDM_DRIVE_TO_IMAGE, &MainDialog::onDriveToImage},
        {IDC_DRIVE_TO_IMAGE, &MainDialog::onDriveToImage},
        {IDM_IMAGE_TO_DRIVE, &MainDialog::onImageToDrive},
        {IDC_IMAGE_TO_DRIVE, &MainDialog::onImageToDrive},
        {IDC_CREATE_FORENSIC_IMAGE, &MainDialog::onCreateForensicImage},
        {IDM_TERMINATE_TASK, &MainDialog::onTerminateCurrentTask},
        {IDC_TERMINATE_TASK, &MainDialog::onTerminateCurrentTask},
        {IDC_EXIT, &MainDialog::onExit},
        {IDM_DATA_WORK_ORDER, &MainDialog::onDataWorkOrder},
        {IDC_DATA_WORK_ORDER, &MainDialog::onDataWorkOrder},
        {IDM_SUGGESTIONS, &MainDialog::onSuggestions},
        {IDM_DATA_SERVICES, &MainDialog::onDataServices},
        {IDC_DATA_SERVICES, &MainDialog::onDataServices},
        {IDM_HELP, &MainDialog::onHelp},
        {IDM_COMPANY_INFORMATION, &MainDialog::onCompanyInformation},
        {IDM_CREATE_PORTABLE, &MainDialog::onCreatePortable},
        {IDM_DETECT_BITLOCKER, &MainDialog::onDetectBitLocker},
        {IDC_QUICK_DISK_VIEW, &MainDialog::onQuickDiskView},
        {IDC_LOG_TOGGLE, &MainDialog::onToggleLogPanel},
        {IDC_LOAD_DRIVES, &MainDialog::onLoadDrives},

        // The drive list's context menu.
        {IDM_SET_READ_ONLY, &MainDialog::onSetReadOnly},
        {IDM_CLEAR_READ_ONLY, &MainDialog::onClearReadOnly},
        {IDM_CLEAN_DISK, &MainDialog::onCleanDisk},
        {IDM_RESCUE, &MainDialog::onRescue},
        {IDM_DRIVE_DETAILS, &MainDialog::onDriveDetails},
        {IDM_COPY_DRIVE_ROW, &MainDialog::onCopyDriveRow},
        {IDM_COPY_SERIAL_NUMBER, &MainDialog::onCopySerialNumber},
        {IDM_SORT_AS_SCANNED, &MainDialog::onSortAsScanned},
        {IDM_SORT_BY_MODEL, &MainDialog::onSortBy<kDriveColumnModel>},
        {IDM_SORT_BY_SERIAL_NUMBER, &MainDialog::onSortBy<kDriveColumnSerialNumber>},
        {IDM_SORT_BY_SIZE_SECTORS, &MainDialog::onSortBy<kDriveColumnSizeSectors>},
        {IDM_SORT_BY_SIZE_GB, &MainDialog::onSortBy<kDriveColumnSizeGigabytes>},
        {IDM_SORT_BY_INTERFACE, &MainDialog::onSortBy<kDriveColumnInterface>},
        {IDM_SORT_BY_STATUS, &MainDialog::onSortBy<kDriveColumnStatus>},

        // The log list's.
        {IDM_COPY_LOG_ROWS, &MainDialog::onCopyLogRows},
        {IDM_SELECT_LOG_ROWS, &MainDialog::onSelectLogRows},
        {IDM_SAVE_LOG, &MainDialog::onSaveLog},
        {IDM_GO_TO_DRIVE, &MainDialog::onGoToDrive},

        // The close box, Alt+F4 and Escape leave through the same questions as "Exit Torvane"; Enter opens
        // the details of the drive whose row has the keyboard, and does nothing else.
        {IDCANCEL, &MainDialog::onExit},
        {IDOK, &MainDialog::onEnter},
    };
    // A box or dialog is open above the window: its answer comes first.
    if (IsWindowEnabled(window()) == FALSE) {
        return true;
    }
    return route(*this, kRoutes, id);
}

bool MainDialog::isWayOut(int id) const {
    return id == IDCANCEL || id == IDC_EXIT || id == IDM_EXIT || id == IDC_TERMINATE_TASK || id == IDM_TERMINATE_TASK;
}

bool MainDialog::onSystemCommand(WPARAM id) {
    switch (id) {
    case IDM_ABOUT:
        onAbout();
        return true;
    case IDM_EDIT_MESSAGES:
        onEditMessages();
        return true;
    case IDM_RESCUE_TICKED:
        onRescueTicked();
        return true;
    case IDM_VERIFY_IMAGE:
        onVerifyImage();
        return true;
    case IDM_SHOW_TUTORIAL:
        showTutorial(window());
        return true;
    case IDM_MANUAL:
        openManual(embeddedText(IDR_MANUAL));
        return true;
    default:
        return false;
    }
}

void MainDialog::onLoadDrives() {
    LoadDrives(state_);
}

void MainDialog::onDisableDriveMounting() {
    onDisableMounting(state_);
}

void MainDialog::onEnableDriveMounting() {
    onEnableMounting(state_);
}

void MainDialog::onCreateReport() {
    if (CreateReport(state_)) {
        drives_.reportNamesNobody = namesNoCompany(state_.companyInfo);
        showDrivesKnown();
    }
}

void MainDialog::onCriticalReadTest() {
    RunReadTestDialog(state_, window(), kCriticalReadTest);
}

void MainDialog::onShortReadTest() {
    RunReadTestDialog(state_, window(), kShortReadTest);
}

void MainDialog::onNistReadTest() {
    RunReadTestDialog(state_, window(), kNistReadTest);
}

void MainDialog::onDriveToDriveClone() {
    DriveRecord* const source = requireDriveToClone(state_);
    if (source != nullptr && !lastDriveJobIsStillEnding(state_.jobs)) {
        showCloneDialog(state_, *source, window());
    }
}

void MainDialog::onDriveToImage() {
    DriveRecord* const source = requireDriveToImage(state_);
    FixedText<1024>& folder = state_.chosen.destinationFolder;
    if (source != nullptr && !lastDriveJobIsStillEnding(state_.jobs) &&
        chooseImageDestination(folder, *source, awaitVolumeOfFolder)) {
        showImageDialog(state_, *source, folder.view(), window());
    }
}

void MainDialog::onImageToDrive() {
    FixedText<1024>& image = state_.chosen.destinationFolder;
    if (requireListedDrives(state_) && !lastDriveJobIsStillEnding(state_.jobs) && chooseSourceImage(image)) {
        showImageToDriveDialog(state_, image.view(), window());
    }
}

void MainDialog::onCreateForensicImage() {
    DriveRecord* const source = requireDriveToImageForensically(state_);
    FixedText<1024>& folder = state_.chosen.destinationFolder;
    if (source != nullptr && !lastDriveJobIsStillEnding(state_.jobs) &&
        chooseImageDestination(folder, *source, awaitVolumeOfFolder)) {
        showForensicDialog(state_, *source, folder.view(), window());
    }
}

void MainDialog::onTerminateCurrentTask() {
    terminateCurrentTask(state_.jobs);
}

void MainDialog::onExit() {
    if (!confirmExit(state_)) {
        return;
    }
    gdiPlus_.stop();
    end(1);
}

void MainDialog::onDataWorkOrder() {
    openWorkOrderDocument();
}

void MainDialog::onSuggestions() {
    openSuggestionPage();
}

void MainDialog::onDataServices() {
    openAboutPage();
}

void MainDialog::onHelp() {
    openDocumentationPage();
}

void MainDialog::onCompanyInformation() {
    configureCompanyInfo(state_.companyInfo, window());
    drives_.reportNamesNobody = drives_.reportNamesNobody && namesNoCompany(state_.companyInfo);
    showDrivesKnown();
}

void MainDialog::onCreatePortable() {
    // The folder does not become the current one: the program's own files lie there.
    if (ChooseDestinationFolder(state_.chosen.destinationFolder, false) != 0) {
        startPortableCopy(std::string(state_.chosen.destinationFolder.view()),
                          {.view = *state_.view,
                           .isTaken = [&jobs = state_.jobs] { return jobs.atWork().contains(JobKind::kScan); }});
    }
}

void MainDialog::onDetectBitLocker() {
    if (!hasActiveDrive(state_)) {
        prompts::warn("****** CHOOSE A DRIVE ******", "Please choose a drive to check for BITLOCKER encryption.");
        return;
    }
    showBitLockerScan(*state_.activeDrive, state_.scan, window());
}

void MainDialog::onQuickDiskView() {
    if (DriveRecord* const drive = requireActiveDrive(state_, "Please choose a drive to view")) {
        showHexViewer(*drive, window());
    }
}

template <DriveColumn column>
void MainDialog::onSortBy() {
    sortBy(column);
}

void MainDialog::onSortAsScanned() {
    driveList_.sort({});
}

void MainDialog::onToggleLogPanel() {
    logPanelOpen_ = !logPanelOpen_;
    // At start the panel is closed and the button shows "<" all the same, as its template does.
    setControlText(IDC_LOG_TOGGLE, logPanelOpen_ ? "<" : ">");
    sizeWindow();
    placeControls();
    logList_.setVisible(logPanelOpen_);
    followFocus(window());
}

void MainDialog::onSetReadOnly() {
    if (DriveRecord* const drive = driveWhoseAttributeMayBecome(true)) {
        startSetReadOnly(state_, *drive);
    }
}

void MainDialog::onClearReadOnly() {
    if (DriveRecord* const drive = driveWhoseAttributeMayBecome(false)) {
        startClearReadOnly(state_, *drive);
    }
}

DriveRecord* MainDialog::driveWhoseAttributeMayBecome(bool readOnly) {
    DriveRecord* const drive = driveList_.selectedDrive();
    return drive != nullptr && mayChangeDisk(state_.jobs, *drive) && mayBeChanged(*drive) == true &&
                   confirmReadOnlyChange(*drive, readOnly)
               ? drive
               : nullptr;
}

void MainDialog::onCleanDisk() {
    DriveRecord* const drive = driveList_.selectedDrive();
    if (drive != nullptr && mayCleanDisk(state_.jobs, state_.scan.volumes, *drive) &&
        confirmDestruction(state_, {.drive = *drive, .caption = "Clean Disk", .sourceImage = {}}, window()) ==
            Confirmation::kYes) {
        startCleanDisk(state_, *drive);
    }
}

void MainDialog::onAbout() {
    AboutDialog().runModal(window());
}

void MainDialog::onEditMessages() {
    // The menu's item is grey then, unless the job has begun while the menu was open.
    if (state_.jobs.active()) {
        prompts::stop("***** Working *****",
                      ("Still at work: " + namesOfJobs(state_.jobs.atWork()) +
                       ".\n\nThe messages were not opened for editing. Please try again when that has ended.")
                          .c_str());
        return;
    }
    editMessages(state_.messages, window());
    InvalidateRect(window(), nullptr, TRUE);
}

void MainDialog::onRescue() {
    rescue(driveList_.selectedDrive());
}

void MainDialog::onRescueTicked() {
    rescue(requireDriveToRescue(state_));
}

void MainDialog::rescue(DriveRecord* drive) {
    if (drive != nullptr && !lastDriveJobIsStillEnding(state_.jobs)) {
        showRescueDialog(state_, *drive, window());
    }
}

void MainDialog::onVerifyImage() {
    // The menu's item is grey then, unless somebody has begun while the menu was open.
    if (const Jobs::Obstacle obstacle = state_.jobs.whyNot(JobKind::kVerifyImage)) {
        sayWhoIsAtWork(obstacle);
        return;
    }
    FixedText<1024> image;
    if (!chooseSourceImage(image)) {
        return;
    }
    const std::string path(image.view());
    if (const std::optional<Digests> found = awaitDigestsBeside(path)) {
        showVerifyImageDialog(state_, path, *found, window());
    }
}

} // namespace torvane
