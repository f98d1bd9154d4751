#include "copy/image_to_drive_dialog.h"

#include "admin/destruction_warning_dialog.h"
#include "app/app_state.h"
#include "copy/copy_choices.h"
#include "copy/copy_dialog.h"
#include "copy/drive_rows_view.h"
#include "resources/resource_ids.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

constexpr const char* kTitle = "Image To Drive";

constexpr RECT kDestinationPlace{420, 26, 830, 152};

constexpr ControlPlace kPlaces[] = {
    {IDC_COPY_SOURCE_LABEL, {10, 8, 405, 24}},       {IDC_COPY_IMAGE_PATH, {10, 26, 405, 150}},
    {IDC_COPY_DESTINATION_LABEL, {420, 8, 830, 24}}, {IDC_COPY_STATUS, {10, 249, 830, 271}},
    {IDC_START_IMAGE_TO_DRIVE, {10, 288, 180, 316}}, {IDC_TERMINATE_IMAGE_TO_DRIVE, {190, 288, 360, 316}},
    {IDC_EXIT_IMAGE_TO_DRIVE, {660, 288, 830, 316}},
};

constexpr CopyDialogLook kLook{
    .templateId = IDD_IMAGE_TO_DRIVE,
    .title = kTitle,
    .clientSize = {840, 328},
    .places = kPlaces,
    .scene = TrackScene::kImageToDrive,
    .carY = kCloneCarY,
    .terminateFirst = "Terminate Image To Drive before Exiting",
};

class ImageToDriveDialog : public CopyDialog {
  public:
    explicit ImageToDriveDialog(AppState& state) : CopyDialog(state, kLook) {}

  protected:
    bool onInitialise() override {
        CopyDialog::onInitialise();
        setControlText(IDC_COPY_IMAGE_PATH, state().destinationFolder.c_str());
        destinations_.create(window(), IDC_COPY_DESTINATION_LIST, IDC_COPY_DESTINATION_LABEL, kDestinationPlace, true);
        for (DriveRecord* const drive : destinationCandidates(state(), nullptr)) {
            destinations_.addRow(*drive);
        }
        SetFocus(destinations_.window());
        return false;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<ImageToDriveDialog> kRoutes[] = {
            {IDC_START_IMAGE_TO_DRIVE, &ImageToDriveDialog::onStart},
            {IDC_TERMINATE_IMAGE_TO_DRIVE, &ImageToDriveDialog::onTerminate},
            {IDC_EXIT_IMAGE_TO_DRIVE, &ImageToDriveDialog::onExit},
            {IDCANCEL, &ImageToDriveDialog::onExit},
            {IDOK, &ImageToDriveDialog::onNothing},
        };
        return route(*this, kRoutes, id);
    }

  private:
    void onStart() {
        if (isBusy()) {
            return;
        }
        DriveRecord* const chosen = requireDestination(destinations_.tickedDrives());
        if (chosen == nullptr) {
            return;
        }
        state().copy.destination = chosen;
        state().copy.warningCaption.assign(kTitle);
        if (!confirmDestruction(state(), window())) {
            state().copy.destination = nullptr;
            prompts::stop("***** Function Cancelled *****", "Image to Drive has been CANCELLED");
            return;
        }
        startJob(ImageToDriveWorker);
    }

    DriveRowsView destinations_;
};

} // namespace

void showImageToDriveDialog(AppState& state, HWND owner) {
    ImageToDriveDialog(state).runModal(owner);
}

} // namespace torvane
