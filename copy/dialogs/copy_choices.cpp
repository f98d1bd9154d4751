#include "copy/dialogs/copy_choices.h"

#include "copy/dialogs/destination_folder.h"
#include "copy/dialogs/free_space.h"
#include "copy/dialogs/volume_space.h"
#include "discovery/drive_volumes.h"
#include "state/app_state.h"
#include "ui/choosers.h"
#include "ui/prompts.h"

#include <string>

namespace torvane {

namespace {

/// The path's drive letter in upper case; 0 for a path without one, as on a share.
char driveLetterOf(std::string_view path) {
    constexpr char kCaseBit = 'a' - 'A';
    if (path.size() < 2 || path[1] != ':') {
        return 0;
    }
    return path[0] >= 'a' && path[0] <= 'z' ? static_cast<char>(path[0] - kCaseBit) : path[0];
}

} // namespace

std::vector<DriveRecord*> destinationCandidates(const AppState& state, const DriveRecord* source) {
    std::vector<DriveRecord*> candidates;
    for (int i = 0; i < state.scan.driveCount; ++i) {
        DriveRecord* const drive = state.scan.drives[static_cast<std::size_t>(i)].get();
        if (drive != source && !isSystemDrive(*drive, state.scan.volumes)) {
            candidates.push_back(drive);
        }
    }
    return candidates;
}

DriveRecord* requireDestination(const std::vector<DriveRecord*>& ticked) {
    constexpr const char* kCaption = "***** ERROR Destination Drive *****";
    if (ticked.empty()) {
        prompts::stop(kCaption, "You must choose one drive as your DESTINATION");
        return nullptr;
    }
    if (ticked.size() > 1) {
        prompts::stop(kCaption, "You must choose only one drive as your DESTINATION");
        return nullptr;
    }
    return ticked.front();
}

bool chooseImageDestination(AppState& state, DriveRecord& drive) {
    if (ChooseDestinationFolder(state.chosen.destinationFolder, false) == 0) {
        return false;
    }
    const std::string_view folder = state.chosen.destinationFolder.view();
    if (const auto text = notEnoughSpaceText(drive.sizeBytes, freeSpaceOfFolder(folder), folder)) {
        prompts::warn("****** NOT ENOUGH SPACE ******", text->c_str());
        return false;
    }
    state.copy.imageSource = &drive;
    return true;
}

bool chooseSourceImage(AppState& state) {
    static constexpr choosers::FileKind kKinds[] = {{"(*.img) Image Files", "*.img"}, {"(*.*) All Files", "*.*"}};
    state.chosen.destinationFolder.clear();
    const std::optional<std::string> image = choosers::existingFile(kKinds);
    if (!image) {
        return false;
    }
    state.chosen.destinationFolder.assign(*image);
    state.copy.sourceImageLetter = driveLetterOf(*image);
    return true;
}

} // namespace torvane
