#include "workbench/description/bench_description.h"

#include "workbench/description/description_parts.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace torvane::bench {
namespace {

void readDelay(ObjectReader& reader, ToolDescription& tool) {
    reader.number("delayMilliseconds", tool.delayMilliseconds);
    reader.text("delayOnly", tool.delayOnly);
}

void readTool(ObjectReader& reader, ToolDescription& tool) {
    reader.boolean("missing", tool.missing);
    tool.hasOutput = reader.has("output");
    reader.text("output", tool.output);
    reader.boolean("acts", tool.acts);
    if (tool.acts && !tool.hasOutput) {
        reader.fail("acts", "without an output it means nothing");
    }
    tool.hasExitCode = reader.has("exitCode");
    reader.number("exitCode", tool.exitCode);
    readDelay(reader, tool);
    reader.boolean("broadcasts", tool.broadcasts);
}

void readLanguage(ObjectReader& reader, ToolDescription& tool) {
    static constexpr std::array<std::string_view, 2> kLanguages = {"en", "de"};
    std::size_t language = 0;
    reader.choice("language", kLanguages, language);
    tool.speaksGerman = language == 1;
}

RefusedFile readRefusedFile(ObjectReader& reader) {
    RefusedFile file;
    reader.require("path");
    reader.text("path", file.path);
    reader.boolean("newOnly", file.newOnly);
    reader.error("error", file.error);
    return file;
}

ShareDescription readShare(ObjectReader& reader) {
    ShareDescription share;
    reader.require("name");
    reader.text("name", share.name);
    reader.text("fileSystem", share.fileSystem, 16);
    reader.require("freeSpace");
    reader.size("freeSpace", share.freeSpace);
    if (reader.has("name") && (!share.name.starts_with("\\\\") || share.name.ends_with('\\'))) {
        reader.fail("name", R"(expected a name like "\\server\share")");
    }
    return share;
}

void readBenchFile(const DescriptionFile& source, BenchDescription& bench, Mistake& mistake) {
    const ReadingFile file{source.name, mistake};
    const Json content = parseJson(file, source.content);
    if (mistake.found()) {
        return;
    }
    ObjectReader reader(file, content, "");
    reader.text("title", bench.title);
    reader.text("computer", bench.computer, 63);
    reader.boolean("automount", bench.automount);
    reader.boolean("tellsAutomount", bench.tellsAutomount);
    reader.boolean("highContrast", bench.highContrast);
    reader.list("volumes", [&](ObjectReader& item) { bench.volumes.push_back(readVolume(item, std::nullopt)); });
    reader.list("shares", [&](ObjectReader& item) { bench.shares.push_back(readShare(item)); });
    reader.list("refusedFiles", [&](ObjectReader& item) { bench.refusedFiles.push_back(readRefusedFile(item)); });
    reader.object("tools", [&](ObjectReader& tools) {
        tools.object("diskpart", [&](ObjectReader& tool) {
            readTool(tool, bench.diskpart);
            readLanguage(tool, bench.diskpart);
        });
        tools.object("powershell", [&](ObjectReader& tool) { readTool(tool, bench.powershell); });
        tools.object("smartctl", [&](ObjectReader& tool) { readDelay(tool, bench.smartctl); });
    });
    reader.finish();
}

void readDriveFile(const DescriptionFile& source, BenchDescription& bench, Mistake& mistake) {
    const ReadingFile file{source.name, mistake};
    const Json content = parseJson(file, source.content);
    if (mistake.found()) {
        return;
    }
    ObjectReader reader(file, content, "");
    bench.drives.push_back(readDrive(reader, bench.volumes));
}

} // namespace

const DriveDescription* BenchDescription::drive(std::uint32_t number) const {
    const auto found =
        std::find_if(drives.begin(), drives.end(), [&](const DriveDescription& d) { return d.number == number; });
    return found == drives.end() ? nullptr : &*found;
}

const VolumeDescription* BenchDescription::volume(char letter) const {
    const auto found = std::find_if(volumes.begin(), volumes.end(),
                                    [&](const VolumeDescription& v) { return v.letter == letter && v.letter != 0; });
    return found == volumes.end() ? nullptr : &*found;
}

const VolumeDescription* BenchDescription::volumeNamed(std::string_view guid) const {
    const auto found =
        std::find_if(volumes.begin(), volumes.end(), [&](const VolumeDescription& v) { return v.guid == guid; });
    return found == volumes.end() ? nullptr : &*found;
}

BenchReading readBench(const DescriptionFile& bench, const std::vector<DescriptionFile>& drives) {
    BenchReading reading;
    Mistake mistake;
    readBenchFile(bench, reading.bench, mistake);
    for (const DescriptionFile& drive : drives) {
        if (!mistake.found()) {
            readDriveFile(drive, reading.bench, mistake);
        }
    }
    // Stable, so that of two drives with one number the later file is blamed.
    std::stable_sort(reading.bench.drives.begin(), reading.bench.drives.end(),
                     [](const DriveDescription& a, const DriveDescription& b) { return a.number < b.number; });
    std::stable_sort(reading.bench.volumes.begin(), reading.bench.volumes.end(),
                     [](const VolumeDescription& a, const VolumeDescription& b) { return a.letter < b.letter; });
    if (!mistake.found()) {
        checkWhole(reading.bench, mistake);
    }
    reading.error = mistake.text();
    return reading;
}

} // namespace torvane::bench
