#include "copy/dialogs/destination_volume.h"

#include "base/format.h"

#include <cinttypes>

namespace torvane {

std::optional<std::string> notEnoughSpaceText(std::int64_t imageBytes, std::int64_t freeBytes,
                                              std::string_view folder) {
    if (freeBytes >= imageBytes) {
        return std::nullopt;
    }
    return formatText("IMAGE Drive is [%" PRId64 " bytes]. This is [%" PRId64 " bytes] greater than the total FREE "
                      "SPACE of [%" PRId64 " bytes] on Destination Volume [%s]. Imaging Cancelled",
                      imageBytes, imageBytes - freeBytes, freeBytes, std::string(folder).c_str());
}

std::optional<std::string> fileTooLargeText(std::int64_t imageBytes, std::string_view fileSystem,
                                            std::string_view folder) {
    constexpr std::int64_t kLargestFile = 0xFFFFFFFF;
    if ((fileSystem != "FAT" && fileSystem != "FAT32") || imageBytes <= kLargestFile) {
        return std::nullopt;
    }
    return formatText("The image will have %" PRId64 " bytes. The volume of [%s] has the file system %s, which ends "
                      "files at %" PRId64 " bytes (4 GB): the image would break off there. Choose a folder on an exFAT "
                      "or NTFS volume. Do you want to continue anyway?",
                      imageBytes, std::string(folder).c_str(), std::string(fileSystem).c_str(), kLargestFile);
}

std::string notReachedText(std::string_view folder) {
    return "The folder [" + std::string(folder) +
           "] cannot be reached. Nothing was made. A letter that Windows has mapped to a share for you does not count "
           "for a program that runs as administrator: choose the share by its name, \\\\server\\share";
}

} // namespace torvane
