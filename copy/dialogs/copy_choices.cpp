#include "copy/dialogs/copy_choices.h"

#include "discovery/drive_volumes.h"
#include "records/drive_record.h"
#include "ui/choosers.h"
#include "ui/prompts.h"

#include <optional>
#include <string>

namespace torvane {

std::vector<DriveRecord*> destinationCandidates(const std::vector<DriveRecord*>& drives, const VolumeTable& volumes,
                                                const DriveRecord* source) {
    std::vector<DriveRecord*> candidates;
    for (DriveRecord* const drive : drives) {
        if (drive != source && !isSystemDrive(*drive, volumes)) {
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

bool chooseFolder(FixedText<1024>& folder) {
    constexpr std::size_t kLongestFolder = 1023; // bytes; a folder that is cut would be another one
    const std::optional<std::string> chosen = choosers::folder("Choose Destination Folder");
    if (!chosen) {
        prompts::stop("*** ERROR ***", "Please choose a destination folder.");
        return false;
    }
    if (chosen->size() > kLongestFolder) {
        prompts::stop("*** ERROR ***", "The path of this folder is too long. Please choose another one.");
        return false;
    }
    folder.assign(*chosen);
    return true;
}

bool chooseImageDestination(FixedText<1024>& folder, const DriveRecord& drive, VolumeOfFolder volumeOf) {
    if (!chooseFolder(folder)) {
        return false;
    }
    const std::optional<DestinationVolume> volume = volumeOf(folder.view());
    if (!volume) {
        return false;
    }
    if (!volume->isThere) {
        prompts::stop("***** FOLDER NOT REACHED *****", notReachedText(folder.view()).c_str());
        return false;
    }
    const std::int64_t freeBytes = volume->freeBytes.value_or(drive.sizeBytes);
    if (const auto text = notEnoughSpaceText(drive.sizeBytes, freeBytes, folder.view())) {
        prompts::warn("****** NOT ENOUGH SPACE ******", text->c_str());
        return false;
    }
    const auto tooLarge = fileTooLargeText(drive.sizeBytes, volume->fileSystem, folder.view());
    return !tooLarge || prompts::askDefaultNo("***** FILE TOO LARGE FOR FAT32 *****", tooLarge->c_str());
}

bool chooseSourceImage(FixedText<1024>& image) {
    static constexpr choosers::FileKind kKinds[] = {{"(*.img) Image Files", "*.img"}, {"(*.*) All Files", "*.*"}};
    image.clear();
    const std::optional<std::string> chosen = choosers::existingFile(kKinds);
    if (!chosen) {
        return false;
    }
    image.assign(*chosen);
    return true;
}

} // namespace torvane
