#include "copy/dialogs/free_space.h"

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

} // namespace torvane
