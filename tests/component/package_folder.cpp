#include "tests/component/package_folder.h"

#include <string>

namespace torvane::testing {

std::filesystem::path packageFolder() {
    return TORVANE_PACKAGE_FOLDER;
}

std::filesystem::path renderingsFolder(int dpi) {
    return std::filesystem::path(TORVANE_RENDERINGS_FOLDER) / std::to_string(dpi);
}

} // namespace torvane::testing
