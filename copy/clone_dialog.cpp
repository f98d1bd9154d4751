#include "copy/clone_dialog.h"

#include "admin/destruction_warning_dialog.h"
#include "app/app_state.h"
#include "copy/copy_choices.h"
#include "copy/copy_dialog.h"
#include "copy/drive_rows_view.h"
#include "resources/resource_ids.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

constexpr const char* kTitle = "Drive to Drive Clone";

constexpr RECT kSourcePlace{10, 26, 405, 72};
constexpr RECT kDestinationPlace{420, 26, 830, 152};

constexpr ControlPlace kPlaces[] = {
    {IDC_COPY_SOURCE_LABEL, {10, 8, 405, 24}},   {IDC_REVERSE_CLONE, {10, 84, 405, 104}},
    {IDC_REVERSE_HINT, {28, 106, 405, 150}},     {IDC_COPY_DESTINATION_LABEL, {420, 8, 830, 24}},
    {IDC_COPY_STATUS, {10, 252, 830, 274}},      {IDC_START_CLONE, {10, 296, 180, 324}},
    {IDC_TERMINATE_CLONE, {190, 296, 360, 324}}, {IDC_EXIT_CLONE, {660, 296, 830, 324}},
};

constexpr CopyDialogLook kLook{
    .templateId = IDD_CLONE,
    .title = kTitle,
    .clientSize = {840, 341},
    .places = kPlaces,
    .scene = TrackScene::kClone,
    .carY = kCloneCarY,
    .terminateFirst = "Terminate Clone before Exiting",
};

class CloneDialog : public CopyDialog {
  public:
    CloneDialog(AppState& state, DriveRecord& source) : CopyDialog(state, kLook), source_(source) {}

  protected:
    bool onInitialise() override {
        CopyDialog::onInitialise();
        sources_.create(window(), IDC_COPY_SOURCE_LIST, IDC_COPY_SOURCE_LABEL, kSourcePlace, false);
        sources_.addRow(source_);
        destinations_.create(window(), IDC_COPY_DESTINATION_LIST, IDC_COPY_DESTINATION_LABEL, kDestinationPlace, true);
        for (DriveRecord* const drive : destinationCandidates(state(), &source_)) {
            destinations_.addRow(*drive);
        }
        SetFocus(destinations_.window());
        return false;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<CloneDialog> kRoutes[] = {
            {IDC_START_CLONE, &CloneDialog::onStart}, {IDC_TERMINATE_CLONE, &CloneDialog::onTerminate},
            {IDC_EXIT_CLONE, &CloneDialog::onExit},   {IDCANCEL, &CloneDialog::onExit},
            {IDOK, &CloneDialog::onNothing},
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
        state().copy.sourceImageLetter = 0;
        if (!confirmDestruction(state(), window())) {
            state().copy.destination = nullptr;
            prompts::stop("***** Function Cancelled *****", "Clone could not be started");
            return;
        }
        const bool reverse = IsDlgButtonChecked(window(), IDC_REVERSE_CLONE) == BST_CHECKED;
        state().copy.reverse = reverse ? 1 : 0;
        startJob(reverse ? ReverseClone : ForwardClone);
    }

    DriveRecord& source_;
    DriveRowsView sources_;
    DriveRowsView destinations_;
};

} // namespace

void showCloneDialog(AppState& state, DriveRecord& source, HWND owner) {
    state.copy.source = &source;
    state.copy.destination = nullptr;
    CloneDialog(state, source).runModal(owner);
}

} // namespace torvane
