#include "copy/dialogs/image_dialog.h"

#include "copy/dialogs/copy_dialog.h"
#include "copy/dialogs/image_texts_view.h"
#include "resources/resource_ids.h"

namespace torvane {

namespace {

constexpr ControlPlace kPlaces[] = {
    {IDC_COPY_IMAGING, {10, 96, 405, 112}}, {IDC_COPY_FOLDER, {420, 96, 830, 112}},
    {IDC_COPY_STATUS, {10, 116, 330, 138}}, {IDC_COPY_LOSSES, {336, 116, 830, 138}},
    {IDC_START_IMAGE, {10, 145, 180, 173}}, {IDC_TERMINATE_IMAGE, {190, 145, 360, 173}},
    {IDC_EXIT_IMAGE, {660, 145, 830, 173}},
};

constexpr CopyDialogLook kLook{
    .templateId = IDD_IMAGE,
    .title = "Drive to Image Clone",
    .clientSize = {840, 179},
    .places = kPlaces,
    .scene = TrackScene::kImage,
    .carY = kImageCarY,
    .terminateFirst = "Terminate Image before Exiting",
};

class ImageDialog : public CopyDialog {
  public:
    ImageDialog(AppState& state, DriveRecord& source, std::string_view folder)
        : CopyDialog(state, kLook), source_(source), folder_(folder) {}

  protected:
    bool onInitialise() override {
        showImageTexts(window(), source_, folder_);
        CopyDialog::onInitialise();
        warnOfSecurity(&source_, nullptr);
        return true;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<ImageDialog> kRoutes[] = {
            {IDC_START_IMAGE, &ImageDialog::onStart}, {IDC_TERMINATE_IMAGE, &ImageDialog::onTerminate},
            {IDC_EXIT_IMAGE, &ImageDialog::onExit},   {IDCANCEL, &ImageDialog::onExit},
            {IDOK, &ImageDialog::onNothing},
        };
        return route(*this, kRoutes, id);
    }

  private:
    // Does not ask whether a job runs: after a failed write the flag is still up, and a new image may start.
    void onStart() {
        startJob({.kind = CopyKind::kImageToFile, .source = &source_, .destination = nullptr, .path = folder_});
    }

    DriveRecord& source_;
    std::string folder_;
};

} // namespace

void showImageDialog(AppState& state, DriveRecord& source, std::string_view folder, HWND owner) {
    ImageDialog(state, source, folder).runModal(owner);
}

} // namespace torvane
