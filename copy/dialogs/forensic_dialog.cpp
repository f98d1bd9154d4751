#include "copy/dialogs/forensic_dialog.h"

#include "copy/dialogs/case_dialog.h"
#include "copy/dialogs/copy_dialog.h"
#include "copy/dialogs/image_texts_view.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

constexpr ControlPlace kPlaces[] = {
    {IDC_COPY_IMAGING, {10, 95, 405, 111}},          {IDC_COPY_FOLDER, {420, 95, 830, 111}},
    {IDC_COPY_STATUS, {10, 113, 330, 135}},          {IDC_COPY_LOSSES, {336, 113, 830, 135}},
    {IDC_START_FORENSIC_IMAGE, {10, 140, 180, 168}}, {IDC_TERMINATE_FORENSIC_IMAGE, {190, 140, 360, 168}},
    {IDC_ALSO_SHA256, {370, 144, 520, 164}},         {IDC_CASE, {530, 140, 650, 168}},
    {IDC_EXIT_FORENSIC_IMAGE, {660, 140, 830, 168}},
};

constexpr CopyDialogLook kLook{
    .templateId = IDD_FORENSIC_IMAGE,
    .title = "Drive to Forensic Image",
    .clientSize = {840, 172},
    .places = kPlaces,
    .scene = TrackScene::kForensicImage,
    .carY = kImageCarY,
    .terminateFirst = "Terminate Image before Exiting",
};

class ForensicDialog : public CopyDialog {
  public:
    ForensicDialog(AppState& state, DriveRecord& source, std::string_view folder)
        : CopyDialog(state, kLook), source_(source), folder_(folder) {}

  protected:
    bool onInitialise() override {
        showImageTexts(window(), source_, folder_);
        CopyDialog::onInitialise();
        warnOfSecurity(&source_, nullptr);
        return true;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<ForensicDialog> kRoutes[] = {
            {IDC_START_FORENSIC_IMAGE, &ForensicDialog::onStart},
            {IDC_TERMINATE_FORENSIC_IMAGE, &ForensicDialog::onTerminateForensic},
            {IDC_CASE, &ForensicDialog::onCase},
            {IDC_EXIT_FORENSIC_IMAGE, &ForensicDialog::onExit},
            {IDCANCEL, &ForensicDialog::onExit},
            {IDOK, &ForensicDialog::onNothing},
        };
        return route(*this, kRoutes, id);
    }

  private:
    void onStart() {
        startJob({.kind = CopyKind::kForensicImage,
                  .source = &source_,
                  .destination = nullptr,
                  .path = folder_,
                  .alsoSha256 = IsDlgButtonChecked(window(), IDC_ALSO_SHA256) == BST_CHECKED,
                  .caseInformation = state().caseInformation});
    }

    void onCase() { editCaseInformation(state().caseInformation, window()); }

    void onTerminateForensic() {
        if (state().jobs.active() && prompts::ask("****** FORENSIC IMAGE RUNNING ******",
                                                  "You are about to EXIT Forensic Image and terminate the current "
                                                  "image. Is that what you wish to do?")) {
            onTerminate();
        }
    }

    DriveRecord& source_;
    std::string folder_;
};

} // namespace

void showForensicDialog(AppState& state, DriveRecord& source, std::string_view folder, HWND owner) {
    ForensicDialog(state, source, folder).runModal(owner);
}

} // namespace torvane
