#include "monitoring/ssd_attribute_database.h"

#include "base/owned_handle.h"
#include "base/whole_file.h"
#include "state/event_log.h"

#include <optional>
#include <utility>

namespace torvane {
namespace {

constexpr const char* kFileName = "SSDAttribute.db";

} // namespace

int LoadSsdAttributeDatabase(SsdAttributeDatabase& database) {
    database = {};
    const UniqueFile file{
        CreateFileA(kFileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    if (!file) {
        LogEvent("ERROR", "Could not SSD Attribute Database: [%s] OPEN_EXISTING FAILED", kFileName);
        return 0;
    }
    const std::optional<std::uint64_t> size = sizeOfFile(file.get());
    LoadedText records = size && *size <= MAXDWORD ? allocateZeroed(*size + 1) : nullptr;
    if (!records || !readWholeFile(file.get(), *size, records.get())) {
        // The row names the loader of texts, and is kept: one search of a log finds both.
        LogEvent("ERROR", "PARSE_LoadFileIntoBuffer: Could not READ [%s] for processing", kFileName);
        return 0;
    }
    database.records = std::move(records);
    database.recordCount = static_cast<std::int32_t>(*size / kSsdAttributeRecordBytes);
    return 1;
}

} // namespace torvane
