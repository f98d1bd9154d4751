#include "copy/dialogs/destination_folder.h"

#include "copy/dialogs/copy_choices.h"
#include "ui/prompts.h"

#include <windows.h>

#include <string>

namespace torvane {

int ChooseDestinationFolder(FixedText<1024>& folder, bool makeCurrent) {
    if (!chooseFolder(folder)) {
        return 0;
    }
    if (makeCurrent && SetCurrentDirectoryA(folder.c_str()) == FALSE) {
        const std::string text = "Could not set destination directory to <" + std::string(folder.view()) + ">";
        prompts::stop("*** ERROR ***", text.c_str());
        return 0;
    }
    return 1;
}

} // namespace torvane
