#include "copy/evidence/map_file.h"
#include "tests/fuzz/fuzz_input.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

using namespace torvane;
using fuzz::require;

namespace {

/// A map that was read is written, and read again as the same.
void requireStays(const MapFile& file) {
    const auto again = readMapFile(mapFileText(file.map, file.status, file.comments), file.map.size());
    const auto* second = std::get_if<MapFile>(&again);
    require(second != nullptr, "what was written is a map");
    require(second->map.ranges() == file.map.ranges(), "its ranges stay");
    require(second->status == file.status, "its status stays");
}

void read(const std::string& text, std::optional<std::uint64_t> size) {
    const auto result = readMapFile(text, size);
    if (const auto* file = std::get_if<MapFile>(&result)) {
        require(!size || file->map.size() == *size, "the map is of the whole source");
        require(file->map.size() <= std::numeric_limits<std::int64_t>::max(), "places are those of a file");
        requireStays(*file);
    } else {
        require(!std::get<MapFault>(result).reason.empty(), "a reason is told");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string text(bytes, bytes + size);
    read(text, std::nullopt);
    read(text, 1 << 20);
    return 0;
}
