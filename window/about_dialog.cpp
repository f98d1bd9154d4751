#include "window/about_dialog.h"

#include "resources/resource_ids.h"
#include "ui/program_icon.h"

#include <utility>

namespace torvane {

AboutDialog::AboutDialog() : Dialog(IDD_ABOUT) {}

bool AboutDialog::onInitialise() {
    showIcon(scale());
    return true;
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

bool AboutDialog::onCommand(int id) {
    static constexpr CommandRoute<AboutDialog> kRoutes[] = {
        {IDOK, &AboutDialog::onClose},
        {IDCANCEL, &AboutDialog::onClose},
    };
    return route(*this, kRoutes, id);
}

} // namespace torvane
