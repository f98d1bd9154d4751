#include "workbench/description/description_parts.h"

#include <algorithm>

namespace torvane::bench {
namespace {

// An extent together with the volume that it belongs to.
struct PlacedExtent {
    const VolumeDescription* volume;
    std::string field;
    VolumeExtent extent;
};

void checkNumbers(const BenchDescription& bench, Mistake& mistake) {
    for (std::size_t i = 1; i < bench.drives.size(); ++i) {
        const DriveDescription& drive = bench.drives[i];
        if (drive.number == bench.drives[i - 1].number) {
            mistake.report(drive.fileName, "number",
                           std::to_string(drive.number) + " is taken by " + bench.drives[i - 1].fileName);
        }
    }
}

void checkPorts(const BenchDescription& bench, Mistake& mistake) {
    for (std::size_t i = 0; i < bench.drives.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (bench.drives[i].scsiPort == bench.drives[j].scsiPort) {
                mistake.report(bench.drives[i].fileName, "scsiPort",
                               std::to_string(bench.drives[i].scsiPort) + " is taken by " + bench.drives[j].fileName);
            }
        }
    }
}

void checkLetters(const BenchDescription& bench, Mistake& mistake) {
    for (std::size_t i = 1; i < bench.volumes.size(); ++i) {
        const VolumeDescription& volume = bench.volumes[i];
        const VolumeDescription& before = bench.volumes[i - 1];
        if (volume.letter == before.letter && volume.letter != 0) {
            mistake.report(volume.fileName, volume.field + ".letter",
                           std::string(1, volume.letter) + " is taken by " + before.fileName + ": " + before.field);
        }
    }
}

void checkGuids(const BenchDescription& bench, Mistake& mistake) {
    for (std::size_t i = 0; i < bench.volumes.size(); ++i) {
        const VolumeDescription& volume = bench.volumes[i];
        const VolumeDescription& first = *bench.volumeNamed(volume.guid);
        if (&first != &volume) {
            mistake.report(volume.fileName, volume.field + ".guid",
                           volume.guid + " is taken by " + first.fileName + ": " + first.field);
        }
    }
}

// The content of a drive, or of what takes its place.
struct PlacedContent {
    const DriveDescription* drive;
    std::string field;
    const Backing* backing;
};

void checkBackingFiles(const BenchDescription& bench, Mistake& mistake) {
    std::vector<PlacedContent> contents;
    contents.reserve(2 * bench.drives.size());
    for (const DriveDescription& drive : bench.drives) {
        for (const PlacedContent& content : {PlacedContent{&drive, "backing.file", &drive.backing},
                                             PlacedContent{&drive, "swap.backing.file", &drive.swap.backing}}) {
            for (const PlacedContent& other : contents) {
                if (content.backing->kind == BackingKind::kFile && other.backing->kind == BackingKind::kFile &&
                    content.backing->file == other.backing->file) {
                    mistake.report(drive.fileName, content.field,
                                   "is the content of " + other.drive->fileName + " already");
                }
            }
            contents.push_back(content);
        }
    }
}

void checkExtent(const BenchDescription& bench, const PlacedExtent& placed, Mistake& mistake) {
    const VolumeExtent& extent = placed.extent;
    const DriveDescription* drive = bench.drive(extent.disk);
    if (drive == nullptr) {
        mistake.report(placed.volume->fileName, placed.field + ".disk",
                       "there is no drive " + std::to_string(extent.disk));
        return;
    }
    if (extent.offset % drive->sectorSize != 0) {
        mistake.report(placed.volume->fileName, placed.field + ".offset", "expected whole sectors");
    }
    if (extent.length == 0 || extent.length % drive->sectorSize != 0) {
        mistake.report(placed.volume->fileName, placed.field + ".length", "expected whole sectors");
    }
    if (extent.offset > drive->size || extent.length > drive->size - extent.offset) {
        mistake.report(placed.volume->fileName, placed.field + ".length",
                       "the extent reaches past the end of drive " + std::to_string(extent.disk));
    }
}

void checkOverlap(std::vector<PlacedExtent>& extents, Mistake& mistake) {
    std::stable_sort(extents.begin(), extents.end(), [](const PlacedExtent& a, const PlacedExtent& b) {
        return a.extent.disk != b.extent.disk ? a.extent.disk < b.extent.disk : a.extent.offset < b.extent.offset;
    });
    for (std::size_t i = 1; i < extents.size(); ++i) {
        const PlacedExtent& before = extents[i - 1];
        const PlacedExtent& here = extents[i];
        if (before.extent.disk == here.extent.disk &&
            here.extent.offset < before.extent.offset + before.extent.length) {
            mistake.report(here.volume->fileName, here.field,
                           "overlaps " + before.volume->fileName + ": " + before.field);
        }
    }
}

} // namespace

void checkWhole(const BenchDescription& bench, Mistake& mistake) {
    checkNumbers(bench, mistake);
    checkPorts(bench, mistake);
    checkLetters(bench, mistake);
    checkGuids(bench, mistake);
    checkBackingFiles(bench, mistake);
    std::vector<PlacedExtent> extents;
    for (const VolumeDescription& volume : bench.volumes) {
        for (std::size_t i = 0; i < volume.extents.size(); ++i) {
            extents.push_back({&volume, volume.field + ".extents[" + std::to_string(i) + "]", volume.extents[i]});
            checkExtent(bench, extents.back(), mistake);
        }
    }
    if (!mistake.found()) {
        checkOverlap(extents, mistake);
    }
}

} // namespace torvane::bench
