#include "tests/component/package_folder.h"

namespace torvane::testing {

std::filesystem::path packageFolder() {
    return TORVANE_PACKAGE_FOLDER;
}

} // namespace torvane::testing
