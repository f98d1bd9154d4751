#include "copy/dialogs/verify_image_dialog.h"

#include "copy/dialogs/copy_dialog.h"
#include "copy/dialogs/typed_digests.h"
#include "copy/engine/digest_text.h"
#include "resources/resource_ids.h"
#include "ui/control_text.h"

#include <string>

namespace torvane {

namespace {

constexpr ControlPlace kPlaces[] = {
    {IDC_COPY_IMAGE_PATH, {10, 95, 830, 111}},
    {IDC_COPY_STATUS, {10, 113, 330, 135}},
    {IDC_COPY_LOSSES, {336, 113, 830, 135}},
    {IDC_KNOWN_MD5_LABEL, {10, 146, 130, 162}},
    {IDC_KNOWN_MD5, {134, 143, 550, 165}},
    {IDC_MD5_VERDICT, {558, 172, 830, 188}},
    {IDC_MADE_MD5_LABEL, {10, 172, 130, 188}},
    {IDC_MADE_MD5, {134, 169, 550, 191}},
    {IDC_KNOWN_SHA256_LABEL, {10, 206, 130, 222}},
    {IDC_KNOWN_SHA256, {134, 203, 550, 225}},
    {IDC_SHA256_VERDICT, {558, 232, 830, 248}},
    {IDC_MADE_SHA256_LABEL, {10, 232, 130, 248}},
    {IDC_MADE_SHA256, {134, 229, 550, 251}},
    {IDC_START_VERIFICATION, {10, 262, 180, 290}},
    {IDC_TERMINATE_VERIFICATION, {190, 262, 360, 290}},
    {IDC_EXIT_VERIFICATION, {660, 262, 830, 290}},
};

constexpr CopyDialogLook kLook{
    .templateId = IDD_VERIFY_IMAGE,
    .title = "Verify Image",
    .clientSize = {840, 294},
    .places = kPlaces,
    .scene = TrackScene::kForensicImage,
    .carY = kImageCarY,
    .terminateFirst = "Terminate Verification before Exiting",
};

class VerifyImageDialog : public CopyDialog {
  public:
    VerifyImageDialog(AppState& state, std::string_view image, const Digests& found)
        : CopyDialog(state, kLook), image_(image), found_(found) {}

  protected:
    bool onInitialise() override {
        setControlText(IDC_COPY_IMAGE_PATH, ("Image: " + image_).c_str());
        if (found_.md5) {
            setControlText(IDC_KNOWN_MD5, hexText(*found_.md5).c_str());
        }
        if (found_.sha256) {
            setControlText(IDC_KNOWN_SHA256, hexText(*found_.sha256).c_str());
        }
        return CopyDialog::onInitialise();
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<VerifyImageDialog> kRoutes[] = {
            {IDC_START_VERIFICATION, &VerifyImageDialog::onStart},
            {IDC_TERMINATE_VERIFICATION, &VerifyImageDialog::onTerminate},
            {IDC_EXIT_VERIFICATION, &VerifyImageDialog::onExit},
            {IDCANCEL, &VerifyImageDialog::onExit},
            {IDOK, &VerifyImageDialog::onNothing},
        };
        return route(*this, kRoutes, id);
    }

  private:
    void onStart() {
        const std::optional<Digests> known =
            requireDigests(controlText(control(IDC_KNOWN_MD5)), controlText(control(IDC_KNOWN_SHA256)));
        if (known) {
            startJob({.kind = CopyKind::kVerifyImage,
                      .source = nullptr,
                      .destination = nullptr,
                      .path = image_,
                      .known = *known});
        }
    }

    std::string image_;
    Digests found_;
};

} // namespace

void showVerifyImageDialog(AppState& state, std::string_view image, const Digests& found, HWND owner) {
    VerifyImageDialog(state, image, found).runModal(owner);
}

} // namespace torvane
