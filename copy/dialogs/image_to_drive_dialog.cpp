#include "copy/dialogs/image_to_drive_dialog.h"

#include "copy/dialogs/copy_to_drive_dialog.h"
#include "resources/resource_ids.h"

namespace torvane {

namespace {

constexpr ControlPlace kPlaces[] = {
    {IDC_COPY_SOURCE_LABEL, {10, 8, 405, 24}},
    {IDC_COPY_IMAGE_PATH, {10, 26, 405, 134}},
    {IDC_COPY_DESTINATION_LABEL, {420, 8, 830, 24}},
    {IDC_COPY_DESTINATION_DRIVE, {10, 137, 830, 157}},
    {IDC_COPY_STATUS, {10, 249, 330, 271}},
    {IDC_COPY_LOSSES, {336, 249, 830, 271}},
    {IDC_COPY_MOUNTING_HINT, {10, 272, 830, 287}},
    {IDC_START_IMAGE_TO_DRIVE, {10, 288, 180, 316}},
    {IDC_TERMINATE_IMAGE_TO_DRIVE, {190, 288, 360, 316}},
    {IDC_VERIFY_AFTERWARDS, {374, 292, 650, 312}},
    {IDC_EXIT_IMAGE_TO_DRIVE, {660, 288, 830, 316}},
};

constexpr DriveRowsLook kDestinationLook{
    .id = IDC_COPY_DESTINATION_LIST,
    .label = IDC_COPY_DESTINATION_LABEL,
    .place = {420, 26, 830, 134},
    .ticks = true,
    .modelWidth = 190,
    .serialNumberWidth = 120,
    .sizeWidth = 80,
    .numberAndLetters = false,
};

constexpr CopyDialogLook kLook{
    .templateId = IDD_IMAGE_TO_DRIVE,
    .title = "Image To Drive",
    .clientSize = {840, 328},
    .places = kPlaces,
    .scene = TrackScene::kImageToDrive,
    .carY = kCloneCarY,
    .terminateFirst = "Terminate Image To Drive before Exiting",
};

class ImageToDriveDialog : public CopyToDriveDialog {
  public:
    ImageToDriveDialog(AppState& state, std::string_view image) : CopyToDriveDialog(state, kLook), image_(image) {}

  protected:
    bool onInitialise() override {
        CopyDialog::onInitialise();
        setControlText(IDC_COPY_IMAGE_PATH, image_.c_str());
        return listDestinations(kDestinationLook, nullptr);
    }

    void layOut() override {
        CopyDialog::layOut();
        placeControl(kDestinationLook.id, kDestinationLook.place);
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
        if (isBusy(JobKind::kImageToDrive)) {
            return;
        }
        DriveRecord* const destination = chooseDestination("Image to Drive has been CANCELLED", image_);
        if (destination != nullptr) {
            startJob({.kind = CopyKind::kImageToDrive,
                      .source = nullptr,
                      .destination = destination,
                      .path = image_,
                      .verifyAfterwards = isVerificationWanted()});
        }
    }

    std::string image_;
};

} // namespace

void showImageToDriveDialog(AppState& state, std::string_view image, HWND owner) {
    ImageToDriveDialog(state, image).runModal(owner);
}

} // namespace torvane
