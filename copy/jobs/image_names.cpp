#include "copy/jobs/image_names.h"

#include "base/file_name_part.h"
#include "base/format.h"
#include "base/utf8.h"
#include "copy/engine/block_layout.h"

#include <cinttypes>

namespace torvane {

namespace {

std::string numbered(std::string_view folder, std::string_view stem, std::int32_t number, std::string_view extension) {
    return std::string(folder).append("\\").append(stem).append(formatText(".%d", number)).append(extension);
}

constexpr std::string_view kHashFileStem = "MD5-HASH--";
constexpr std::string_view kAcquisitionStem = "ACQUISITION--";

/// Most bytes of each outside text in a name.
constexpr std::size_t kMostNameBytes = 64;

std::string dated(std::string_view stem, const LocalMoment& begin, std::string_view extension) {
    return std::string(stem)
        .append(formatText(".%04d%02d%02d-%02d%02d%02d", begin.year, begin.month, begin.day, begin.hour, begin.minute,
                           begin.second))
        .append(extension);
}

/// "<model>.<serial number>"
std::string driveInName(const DriveRecord& drive) {
    return fileNamePart(drive.model.view(), kMostNameBytes) + "." +
           fileNamePart(drive.serialNumber.view(), kMostNameBytes);
}

/// With its backslash; empty for a bare name.
std::string folderOf(std::string_view path) {
    return std::string(path.substr(0, path.size() - fileNameOf(path).size()));
}

/// A file of the image's number beside it.
std::string besideImage(std::string_view imagePath, std::string_view stem) {
    const std::string_view name = fileNameOf(imagePath);
    return folderOf(imagePath).append(stem).append(name.substr(0, name.rfind('.'))).append(".txt");
}

} // namespace

std::string imageFileName(std::string_view folder, std::string_view model, std::int32_t number) {
    return numbered(folder, model, number, ".img");
}

std::string hashFileName(std::string_view folder, std::string_view model, std::int32_t number) {
    return numbered(folder, std::string(kHashFileStem).append(model), number, ".txt");
}

std::string hashFileOfImage(std::string_view imagePath) {
    return besideImage(imagePath, kHashFileStem);
}

std::string acquisitionFileOfImage(std::string_view imagePath) {
    return besideImage(imagePath, kAcquisitionStem);
}

std::string acquisitionFileName(std::string_view folder, std::string_view model, std::int32_t number) {
    return numbered(folder, std::string(kAcquisitionStem).append(model), number, ".txt");
}

std::string mapFileName(std::string_view imagePath) {
    return std::string(imagePath).append(".map");
}

std::string cloneMapFileName(const DriveRecord& source, const LocalMoment& begin) {
    return dated("CLONE--" + driveInName(source), begin, ".map");
}

std::string imageToDriveMapFileName(std::string_view imagePath, const LocalMoment& begin) {
    const std::string_view name = cutAtCharacter(fileNameOf(imagePath), kMostNameBytes);
    return dated("IMAGE-TO-DRIVE--" + fileNamePart(name, kMostNameBytes), begin, ".map");
}

std::string rescueRecordFileName(std::string_view imagePath, const LocalMoment& begin) {
    return dated(folderOf(imagePath).append("RESCUE--").append(fileNameOf(imagePath)), begin, ".txt");
}

std::string rescueMapFileName(const DriveRecord& source, const DriveRecord& destination) {
    return "RESCUE--" + driveInName(source) + "--" + driveInName(destination) + ".map";
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
