#include "copy/dialogs/destination_folder.h"

#include "ui/choosers.h"
#include "ui/prompts.h"

#include <windows.h>

#include <string>

namespace torvane {

int ChooseDestinationFolder(FixedText<1024>& folder, bool makeCurrent) {
    constexpr const char* kCaption = "*** ERROR ***";
    const std::optional<std::string> chosen = choosers::folder("Choose Destination Folder");
    if (!chosen) {
        prompts::stop(kCaption, "Please choose a destination folder.");
        return 0;
    }
    folder.assign(*chosen);
    if (makeCurrent && SetCurrentDirectoryA(folder.c_str()) == FALSE) {
        const std::string text = "Could not set destination directory to <" + *chosen + ">";
        prompts::stop(kCaption, text.c_str());
        return 0;
    }
    return 1;
}

} // namespace torvane
