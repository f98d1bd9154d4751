#include "copy/dialogs/image_texts_view.h"

#include "records/drive_record.h"
#include "resources/resource_ids.h"

namespace torvane {

void showImageTexts(HWND dialog, const DriveRecord& source, const std::string& folder) {
    SetDlgItemTextA(dialog, IDC_COPY_IMAGING, (" Imaging: " + std::string(source.model.view())).c_str());
    SetDlgItemTextA(dialog, IDC_COPY_FOLDER, ("Into: " + folder).c_str());
}

} // namespace torvane
