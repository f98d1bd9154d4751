#include "copy/dialogs/image_texts_view.h"

#include "resources/resource_ids.h"
#include "state/app_state.h"

#include <string>

namespace torvane {

void showImageTexts(HWND dialog, const AppState& state) {
    const DriveRecord& source = *state.copy.imageSource;
    SetDlgItemTextA(dialog, IDC_COPY_IMAGING, (" Imaging: " + std::string(source.model.view())).c_str());
    SetDlgItemTextA(dialog, IDC_COPY_FOLDER, ("Into: " + std::string(state.chosen.destinationFolder.view())).c_str());
}

} // namespace torvane
