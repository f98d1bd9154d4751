#include "copy/dialogs/image_texts_view.h"

#include "records/drive_record.h"
#include "resources/resource_ids.h"
#include "ui/control_text.h"

namespace torvane {

void showImageTexts(HWND dialog, const DriveRecord& source, const std::string& folder) {
    setWindowText(GetDlgItem(dialog, IDC_COPY_IMAGING), " Imaging: " + std::string(source.model.view()));
    showImagePlace(dialog, folder);
}

void showImagePlace(HWND dialog, const std::string& path) {
    setWindowText(GetDlgItem(dialog, IDC_COPY_FOLDER), "Into: " + path);
}

} // namespace torvane
