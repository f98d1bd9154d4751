#include "copy/dialogs/clone_dialog.h"

#include "copy/dialogs/copy_to_drive_dialog.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"

namespace torvane {

namespace {

constexpr DriveRowsLook kSourceLook{
    .id = IDC_COPY_SOURCE_LIST,
    .label = IDC_COPY_SOURCE_LABEL,
    .place = {10, 26, 335, 72},
    .ticks = false,
    .modelWidth = 142,
    .serialNumberWidth = 104,
    .sizeWidth = 77,
    .numberAndLetters = false,
};
constexpr DriveRowsLook kDestinationLook{
    .id = IDC_COPY_DESTINATION_LIST,
    .label = IDC_COPY_DESTINATION_LABEL,
    .place = {345, 26, 830, 152},
    .ticks = true,
    .modelWidth = 166,
    .serialNumberWidth = 104,
    .sizeWidth = 77,
    .numberAndLetters = true,
};

constexpr ControlPlace kPlaces[] = {
    {IDC_COPY_SOURCE_LABEL, {10, 8, 335, 24}},     {IDC_REVERSE_CLONE, {10, 84, 335, 104}},
    {IDC_REVERSE_HINT, {28, 106, 335, 150}},       {IDC_COPY_DESTINATION_LABEL, {345, 8, 830, 24}},
    {IDC_COPY_STATUS, {10, 252, 330, 274}},        {IDC_COPY_LOSSES, {336, 252, 830, 274}},
    {IDC_COPY_MOUNTING_HINT, {10, 277, 830, 293}}, {IDC_START_CLONE, {10, 296, 180, 324}},
    {IDC_TERMINATE_CLONE, {190, 296, 360, 324}},   {IDC_VERIFY_AFTERWARDS, {374, 300, 650, 320}},
    {IDC_EXIT_CLONE, {660, 296, 830, 324}},
};

constexpr CopyDialogLook kLook{
    .templateId = IDD_CLONE,
    .title = "Drive to Drive Clone",
    .clientSize = {840, 341},
    .places = kPlaces,
    .scene = TrackScene::kClone,
    .carY = kCloneCarY,
    .terminateFirst = "Terminate Clone before Exiting",
};

class CloneDialog : public CopyToDriveDialog {
  public:
    CloneDialog(AppState& state, DriveRecord& source) : CopyToDriveDialog(state, kLook), source_(source) {}

  protected:
    bool onInitialise() override {
        CopyDialog::onInitialise();
        sources_.create(window(), kSourceLook, state().scan.volumes);
        sources_.addRow(source_);
        return listDestinations(kDestinationLook, &source_);
    }

    void layOut() override {
        CopyDialog::layOut();
        placeControl(kSourceLook.id, kSourceLook.place);
        placeControl(kDestinationLook.id, kDestinationLook.place);
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
        if (isBusy(JobKind::kClone)) {
            return;
        }
        DriveRecord* const destination = chooseDestination("Clone could not be started");
        if (destination == nullptr) {
            return;
        }
        const bool reverse = IsDlgButtonChecked(window(), IDC_REVERSE_CLONE) == BST_CHECKED;
        state().raceTrack.reverse = reverse ? 1 : 0;
        startJob({.kind = reverse ? CopyKind::kReverseClone : CopyKind::kForwardClone,
                  .source = &source_,
                  .destination = destination,
                  .path = {},
                  .verifyAfterwards = isVerificationWanted()});
    }

    DriveRecord& source_;
    DriveRowsView sources_;
};

} // namespace

void showCloneDialog(AppState& state, DriveRecord& source, HWND owner) {
    CloneDialog(state, source).runModal(owner);
}

} // namespace torvane
