#pragma once

#include "base/whole_file.h"

#include <cstddef>
#include <cstdint>

namespace torvane {

/// "SSDAttribute.db", records of fixed size that nothing interprets. The technician's portable drive carries the file.
struct SsdAttributeDatabase {
    LoadedText records; ///< null: not loaded
    std::int32_t recordCount = 0;
};
inline constexpr std::size_t kSsdAttributeRecordBytes = 544;

/// Loads the file from the current directory. A part of a record at its end is kept but not counted.
/// Returns 1; 0 with `database` empty, after one "ERROR" log row, when it cannot be opened or is read short.
/// One of the program's named operations; no command calls it.
int LoadSsdAttributeDatabase(SsdAttributeDatabase& database);

} // namespace torvane
