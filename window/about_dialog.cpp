#include "window/about_dialog.h"

#include "resources/resource_ids.h"

namespace torvane {

AboutDialog::AboutDialog() : Dialog(IDD_ABOUT) {}

bool AboutDialog::onCommand(int id) {
    static constexpr CommandRoute<AboutDialog> kRoutes[] = {
        {IDOK, &AboutDialog::onClose},
        {IDCANCEL, &AboutDialog::onClose},
    };
    return route(*this, kRoutes, id);
}

} // namespace torvane
