#include "copy/jobs/image_names.h"

#include "base/format.h"
#include "copy/engine/block_layout.h"

#include <cinttypes>

namespace torvane {

namespace {

std::string numbered(std::string_view folder, std::string_view stem, std::int32_t number, std::string_view extension) {
    return std::string(folder).append("\\").append(stem).append(formatText(".%d", number)).append(extension);
}

} // namespace

std::string imageFileName(std::string_view folder, std::string_view model, std::int32_t number) {
    return numbered(folder, model, number, ".img");
}

std::string hashFileName(std::string_view folder, std::string_view model, std::int32_t number) {
    return numbered(folder, std::string("MD5-HASH--").append(model), number, ".txt");
}

std::string hashFileText(const DriveRecord& source, const Md5Digest& digest, const LocalMoment& moment) {
    std::string text = "KVL Data MD5 HASH\n";
    text += formatText("Date:\t\t\t%02d/%02d/%04d\n", moment.month, moment.day, moment.year);
    text += formatText("Time:\t\t\t%02d:%02d:%02d\n", moment.hour, moment.minute, moment.second);
    text += formatText("Drive Model:\t[%s]\n", source.model.c_str());
    text += formatText("Serial Number:\t[%s]\n", source.serialNumber.c_str());
    text += formatText("Total Sectors:\t[%" PRId64 "]\n",
                       sectorOfOffset(static_cast<std::uint64_t>(source.sizeBytes), source.bytesPerSector));
    text += "HASH:\t\t\t";
    for (const std::uint8_t byte : digest) {
        text += formatText("%02X ", byte);
    }
    return text;
}

std::string digestLine(std::string_view title, const Md5Digest& digest) {
    std::string line = std::string(title).append(":");
    for (const std::uint8_t byte : digest) {
        line += formatText(" [%02X]", byte);
    }
    return line + "\n";
}

} // namespace torvane
