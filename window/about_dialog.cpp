#include "window/about_dialog.h"

#include "base/file_version.h"
#include "base/program_identity.h"
#include "base/whole_file.h"
#include "resources/resource_ids.h"
#include "ui/program_icon.h"
#include "ui/prompts.h"
#include "ui/text_dialog.h"

#include <string>
#include <utility>

namespace torvane {

namespace {

/// Beside the program, from which it is run.
std::string smartctlInWords() {
    constexpr const char* kProgram = "smartctl.exe";
    constexpr std::uint64_t kMostBytes = 64ULL << 20;
    if (!isFile(kProgram)) {
        return std::string(kProgram) + " is missing: no drive can be asked for its health";
    }
    const std::string bytes = readFileUpTo(kProgram, kMostBytes).value_or("");
    const std::optional<FileVersion> version = fileVersionOf(bytes);
    return std::string(kProgram) + (version ? ": version " + inWords(*version) : ": does not tell its version");
}

} // namespace

AboutDialog::AboutDialog() : Dialog(IDD_ABOUT) {}

bool AboutDialog::onInitialise() {
    showIcon(scale());
    setControlText(IDC_ABOUT_BUILD, (std::string("Version ") + programVersion() + ", build " + programBuild()).c_str());
    setControlText(IDC_ABOUT_SMARTCTL, smartctlInWords().c_str());
    SetFocus(control(IDOK));
    return false;
}

// The dialog leaves its layout to its template, which would have shown the icon in the size of another monitor's.
void AboutDialog::showIcon(Scale scale) {
    constexpr PixelSize kIconSize{32, 32};
    UniqueIcon icon = programIcon(IDI_TORVANE, scale.px(kIconSize));
    const HWND place = GetWindow(window(), GW_CHILD); // the template's first control
    SendMessageA(place, STM_SETICON, reinterpret_cast<WPARAM>(icon.get()), 0);
    icon_ = std::move(icon);
}

std::optional<LRESULT> AboutDialog::onMessage(UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_DPICHANGED) {
        showIcon(Scale{LOWORD(wParam)});
    }
    return std::nullopt;
}

void AboutDialog::onLicences() {
    constexpr const char* kFile = "license.txt";
    constexpr std::uint64_t kMostBytes = 1ULL << 20;
    if (const std::optional<std::string> text = readFileUpTo(kFile, kMostBytes)) {
        showText("Licences", *text, window());
    } else {
        prompts::stop("***** NO LICENCE FILE *****",
                      "license.txt, which belongs beside the program, could not be read");
    }
}

bool AboutDialog::onCommand(int id) {
    static constexpr CommandRoute<AboutDialog> kRoutes[] = {
        {IDC_ABOUT_LICENCES, &AboutDialog::onLicences},
        {IDOK, &AboutDialog::onClose},
        {IDCANCEL, &AboutDialog::onClose},
    };
    return route(*this, kRoutes, id);
}

} // namespace torvane
