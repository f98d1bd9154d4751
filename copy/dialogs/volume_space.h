#pragma once

#include <cstdint>
#include <string_view>

namespace torvane {

/// Free bytes of the volume that holds `folder`, by the folder's first two characters: drive letter and colon. 0 when
/// the system does not tell, as for a folder that has none.
[[nodiscard]] std::int64_t freeSpaceOfFolder(std::string_view folder);

} // namespace torvane
