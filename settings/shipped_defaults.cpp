#include "settings/shipped_defaults.h"

#include "base/replace_file.h"
#include "base/whole_file.h"
#include "state/event_log.h"

#include <cstdint>
#include <optional>
#include <span>

namespace torvane {

namespace {

void provideFile(const std::string& path, const std::string& shipped) {
    constexpr std::uint64_t kMostBytes = std::uint64_t{16} << 20;
    const std::optional<std::string> bytes = readFileUpTo(shipped, kMostBytes);
    if (!bytes) {
        LogEvent("ERROR", "Could not read [%s] in place of [%s], which is missing", shipped.c_str(), path.c_str());
        return;
    }
    // Another Torvane may have made it meanwhile: then it is there, which is all that is wanted.
    if (makeWholeFile(path.c_str(), std::as_bytes(std::span(*bytes))) != FileSaving::kDone && !isFile(path)) {
        LogEvent("ERROR", "Could not make [%s], which is missing, out of [%s]", path.c_str(), shipped.c_str());
    }
}

} // namespace

void provideMissingFiles(const std::string& programFolder) {
    for (const char* const name : kShippedDefaults) {
        const std::string path = programFolder + "\\" + name;
        const std::string shipped = programFolder + "\\" + kDefaultsFolder + "\\" + name;
        if (!isFile(path) && isFile(shipped)) {
            provideFile(path, shipped);
        }
    }
}

} // namespace torvane
