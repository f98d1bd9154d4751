#include "copy/dialogs/rescue_dialog.h"

#include "base/whole_file.h"
#include "copy/dialogs/copy_choices.h"
#include "copy/dialogs/copy_to_drive_dialog.h"
#include "copy/dialogs/image_texts_view.h"
#include "copy/dialogs/rescue_strip_view.h"
#include "copy/dialogs/volume_space.h"
#include "copy/jobs/image_names.h"
#include "copy/jobs/rescue_words.h"
#include "records/drive_record.h"
#include "records/drive_texts.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "ui/prompts.h"
#include "ui/scrolling.h"

#include <optional>
#include <string>
#include <utility>

namespace torvane {

namespace {

constexpr unsigned kMostRetryPasses = 9;

constexpr DriveRowsLook kDestinationLook{
    .id = IDC_COPY_DESTINATION_LIST,
    .label = IDC_RESCUE_ONTO_DRIVE,
    .place = {28, 190, 830, 262},
    .ticks = true,
    .modelWidth = 340,
    .serialNumberWidth = 235,
    .sizeWidth = 90,
    .numberAndLetters = true,
};

constexpr ControlPlace kPlaces[] = {
    {IDC_RESCUE_AMOUNTS, {10, 76, 830, 92}},      {IDC_RESCUE_READS, {10, 94, 830, 110}},
    {IDC_COPY_IMAGING, {10, 120, 830, 136}},      {IDC_RESCUE_INTO_IMAGE, {10, 142, 130, 162}},
    {IDC_COPY_FOLDER, {134, 145, 566, 161}},      {IDC_RESCUE_NEW_IMAGE, {572, 139, 696, 163}},
    {IDC_RESCUE_OLD_IMAGE, {704, 139, 830, 163}}, {IDC_RESCUE_ONTO_DRIVE, {10, 168, 400, 188}},
    {IDC_RETRY_PASSES_LABEL, {10, 275, 90, 291}}, {IDC_RETRY_PASSES, {94, 271, 150, 471}},
    {IDC_RESCUE_FROM_END, {170, 272, 340, 292}},  {IDC_COPY_MOUNTING_HINT, {346, 275, 830, 291}},
    {IDC_COPY_STATUS, {10, 300, 330, 322}},       {IDC_COPY_LOSSES, {336, 300, 830, 322}},
    {IDC_START_RESCUE, {10, 330, 180, 358}},      {IDC_TERMINATE_RESCUE, {190, 330, 360, 358}},
    {IDC_EXIT_RESCUE, {660, 330, 830, 358}},
};

constexpr CopyDialogLook kLook{
    .templateId = IDD_RESCUE,
    .title = "Rescue",
    .clientSize = {840, 366},
    .places = kPlaces,
    .scene = std::nullopt,
    .carY = kCloneCarY,
    .terminateFirst = "Terminate Rescue before Exiting",
};

class RescueDialog : public CopyToDriveDialog {
  public:
    RescueDialog(AppState& state, DriveRecord& source) : CopyToDriveDialog(state, kLook), source_(source) {}

  protected:
    bool onInitialise() override {
        setControlText(IDC_COPY_IMAGING, (" Rescuing: " + jobDriveText(source_)).c_str());
        showImagePlace(window(), kNothingChosen);
        CopyToDriveDialog::onInitialise();
        for (unsigned passes = 0; passes <= kMostRetryPasses; ++passes) {
            SendDlgItemMessageA(window(), IDC_RETRY_PASSES, CB_ADDSTRING, 0,
                                reinterpret_cast<LPARAM>(std::to_string(passes).c_str()));
        }
        SendDlgItemMessageA(window(), IDC_RETRY_PASSES, CB_SETCURSEL, 0, 0);
        CheckRadioButton(window(), IDC_RESCUE_INTO_IMAGE, IDC_RESCUE_ONTO_DRIVE, IDC_RESCUE_INTO_IMAGE);
        listDestinations(kDestinationLook, &source_);
        SetFocus(control(IDC_RESCUE_NEW_IMAGE));
        return false;
    }

    void layOut() override {
        CopyDialog::layOut();
        placeControl(kDestinationLook.id, kDestinationLook.place);
    }

    [[nodiscard]] bool isWayOut(int id) const override { return id == IDCANCEL || id == IDC_EXIT_RESCUE; }

    void paintScene(HDC context) override {
        const auto font = reinterpret_cast<HFONT>(SendMessageA(window(), WM_GETFONT, 0, 0));
        paintRescueStrip(context, shownRescue(), font, scale());
    }

    void onRescueShown() override {
        std::optional<RescueShown> shown = shownRescue();
        if (!shown) {
            return;
        }
        if (state().jobs.active()) {
            shown->figures.sinceGoodRead += shownRescueAge(); // also while nothing comes back
        }
        setControlText(IDC_RESCUE_AMOUNTS, rescueAmountsInWords(shown->figures).c_str());
        setControlText(IDC_RESCUE_READS, rescueReadsInWords(shown->figures).c_str());
        const RECT strip = shownPlace(
            window(), {kRescueStrip.left, kRescueStrip.top - 4, kRescueStrip.right, kRescueStrip.bottom + 4});
        InvalidateRect(window(), &strip, FALSE);
    }

    std::optional<LRESULT> onNotify(NMHDR& header) override {
        const std::optional<LRESULT> answer = CopyToDriveDialog::onNotify(header);
        if (answer && hasTickChanged(header) && hasTickedDestination()) {
            CheckRadioButton(window(), IDC_RESCUE_INTO_IMAGE, IDC_RESCUE_ONTO_DRIVE, IDC_RESCUE_ONTO_DRIVE);
        }
        return answer;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<RescueDialog> kRoutes[] = {
            {IDC_RESCUE_NEW_IMAGE, &RescueDialog::onNewImage},
            {IDC_RESCUE_OLD_IMAGE, &RescueDialog::onOldImage},
            {IDC_START_RESCUE, &RescueDialog::onStart},
            {IDC_TERMINATE_RESCUE, &RescueDialog::onTerminate},
            {IDC_EXIT_RESCUE, &RescueDialog::onExit},
            {IDCANCEL, &RescueDialog::onExit},
            {IDOK, &RescueDialog::onNothing},
        };
        return route(*this, kRoutes, id);
    }

  private:
    /// Of a change of a row in a list.
    static bool hasTickChanged(const NMHDR& header) {
        if (header.code != LVN_ITEMCHANGED) {
            return false;
        }
        const auto& row = reinterpret_cast<const NMLISTVIEW&>(header);
        return ((row.uNewState ^ row.uOldState) & LVIS_STATEIMAGEMASK) != 0;
    }

    static constexpr const char* kNothingChosen = "nothing chosen yet";

    void onNewImage() {
        FixedText<1024> folder;
        if (!isBusy(JobKind::kRescue) && chooseImageDestination(folder, source_, awaitVolumeOfFolder)) {
            chooseImage(std::string(folder.view()), false);
        }
    }

    void onOldImage() {
        FixedText<1024> image;
        if (!isBusy(JobKind::kRescue) && chooseSourceImage(image)) {
            chooseImage(std::string(image.view()), true);
        }
    }

    void chooseImage(std::string path, bool goOn) {
        path_ = std::move(path);
        goOn_ = goOn;
        startedNew_ = false;
        showImagePlace(window(), path_);
        CheckRadioButton(window(), IDC_RESCUE_INTO_IMAGE, IDC_RESCUE_ONTO_DRIVE, IDC_RESCUE_INTO_IMAGE);
    }

    [[nodiscard]] RescueChoice choice(bool goOn) const {
        return {.goOn = goOn,
                .retryPasses =
                    static_cast<unsigned>(SendDlgItemMessageA(window(), IDC_RETRY_PASSES, CB_GETCURSEL, 0, 0)),
                .fromEnd = IsDlgButtonChecked(window(), IDC_RESCUE_FROM_END) == BST_CHECKED};
    }

    void onStart() {
        if (isBusy(JobKind::kRescue)) {
            return;
        }
        IsDlgButtonChecked(window(), IDC_RESCUE_ONTO_DRIVE) == BST_CHECKED ? startOntoDrive() : startIntoImage();
    }

    void startIntoImage() {
        if (path_.empty()) {
            prompts::stop(
                "***** CHOOSE AN IMAGE *****",
                "Please choose where the rescue goes: 'New Image...' for a new one, 'Go On With...' for one that "
                "has its map beside it, or tick a drive");
            return;
        }
        if (startedNew_ && toldImagePlace().starts_with(path_) && toldImagePlace() != path_) {
            chooseImage(toldImagePlace(), true); // it goes on with the image that it has made
        }
        startedNew_ = !goOn_;
        startJob({.kind = CopyKind::kRescue,
                  .source = &source_,
                  .destination = nullptr,
                  .path = path_,
                  .rescue = choice(goOn_)});
    }

    void startOntoDrive() {
        DriveRecord* const destination = chooseDestination("Rescue could not be started");
        if (destination == nullptr) {
            return;
        }
        const std::string map = rescueMapFileName(source_, *destination);
        const bool goOn = isFile(map) && isToGoOn(map);
        if (!goOn && !mayBeginAnew(map)) {
            return;
        }
        startJob({.kind = CopyKind::kRescue,
                  .source = &source_,
                  .destination = destination,
                  .path = {},
                  .rescue = choice(goOn)});
    }

    static bool isToGoOn(const std::string& map) {
        const std::string question = "A rescue of this drive onto this destination was begun before: its map is [" +
                                     map +
                                     "]. Going on reads what is missing, and does not clean the DESTINATION. Go on "
                                     "with it? 'No' asks whether to begin anew";
        return prompts::ask("***** GO ON WITH A RESCUE *****", question.c_str());
    }

    /// Hours of reading may lie on the destination, and their map in another folder.
    static bool mayBeginAnew(const std::string& map) {
        const std::string found = isFile(map) ? "The map [" + map + "] is given up" : "There is no map [" + map + "]";
        const std::string question = found + ": the rescue begins anew, the DESTINATION is cleaned, and what an "
                                             "earlier rescue has brought there is lost. Begin anew?";
        return prompts::askDefaultNo("***** BEGIN THE RESCUE ANEW *****", question.c_str());
    }

    DriveRecord& source_;
    std::string path_; ///< the folder of a new image, or an image
    bool goOn_ = false;
    bool startedNew_ = false; ///< a rescue into a new image in that folder
};

} // namespace

void showRescueDialog(AppState& state, DriveRecord& source, HWND owner) {
    RescueDialog(state, source).runModal(owner);
}

} // namespace torvane
