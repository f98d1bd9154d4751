// Runs one kind of job, over and over, on the bench in the current folder's "bench", until it is ended from outside.
//
//     copying_program forward-clone | reverse-clone | image | forensic-image | image-to-drive | clean | read-only
//
// Drive 1 is the source, drive 2 the destination; an image to drive comes from "disk.img". Every question is answered
// with Yes. Blocks are of 64 KiB.
#include "admin/disk_commands.h"
#include "copy/engine/copy_drive_io.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/start_copy.h"
#include "copy/jobs/windows_copy_system.h"
#include "discovery/physical_drive_probe.h"
#include "state/app_state.h"
#include "tests/support/recording_main_view.h"
#include "ui/prompts.h"
#include "workbench/bench_client.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace torvane::prompts {

void stop(const char* /*caption*/, const char* /*text*/) {}
void inform(const char* /*caption*/, const char* /*text*/) {}
void warn(const char* /*caption*/, const char* /*text*/) {}
bool ask(const char* /*caption*/, const char* /*text*/) {
    return true;
}
bool askDefaultNo(const char* /*caption*/, const char* /*text*/) {
    return true;
}

} // namespace torvane::prompts

namespace torvane {
namespace {

constexpr std::size_t kBlock = 65536;
constexpr int kWrongUsage = 98;

class NoDisplay : public JobDisplay {
  public:
    void setStatus(std::string_view /*text*/) override {}
    void setLosses(std::string_view /*text*/, bool /*bad*/) override {}
    void showRun(const RunFigures& /*run*/) override {}
    void endRun() override {}
    void setImagePlace(std::string_view /*path*/) override {}
    void callUser(bool /*good*/) override {}
    void showDigests(const Digests&, const Digests&) override {}
    void showRescue(const RescueShown&) override {}
    void repaint() override {}
    void repaintTrack(const TrackArea& /*area*/) override {}
    void startExplosionTimer(int /*milliseconds*/) override {}
};

struct Drives {
    DriveRecordPtr source = ProbePhysicalDrive(1);
    DriveRecordPtr destination = ProbePhysicalDrive(2);
};

struct Task {
    std::string_view name;
    JobKind kind;
    void (*run)(Drives&, JobClaim&);
};

template <std::uint32_t (*Run)(const CopyJob&)>
void copy(Drives& drives, JobClaim& claim) {
    const CopyOrder order{.kind = CopyKind::kForwardClone, // names the job's rule alone, and the claim has that
                          .source = drives.source.get(),
                          .destination = drives.destination.get(),
                          .path = Run == runImageToDrive ? "disk.img" : "."};
    CopyDriveIo io;
    WindowsCopySystem system(appState());
    NoDisplay display;
    OpenImages kept; // not until the program's end: every run opens one more
    static_cast<void>(Run({.order = order,
                           .claim = claim,
                           .track = appState().raceTrack,
                           .drives = io,
                           .system = system,
                           .display = display,
                           .keptImages = kept,
                           .blockSize = kBlock}));
}

void clean(Drives& drives, JobClaim& claim) {
    cleanDisk(appState(), claim, *drives.destination);
}

void changeReadOnlyTwice(Drives& drives, JobClaim& claim) {
    setReadOnly(appState(), claim, *drives.destination);
    clearReadOnly(appState(), claim, *drives.destination);
}

constexpr Task kTasks[] = {
    {"forward-clone", JobKind::kClone, copy<runForwardClone>},
    {"reverse-clone", JobKind::kClone, copy<runReverseClone>},
    {"image", JobKind::kImage, copy<runImageToFile>},
    {"forensic-image", JobKind::kForensicImage, copy<runForensicImage>},
    {"image-to-drive", JobKind::kImageToDrive, copy<runImageToDrive>},
    {"clean", JobKind::kDiskChange, clean},
    {"read-only", JobKind::kDiskChange, changeReadOnlyTwice},
};

int runForEver(const Task& task) {
    testing::RecordingMainView view;
    const testing::ViewInstalled installed(appState(), view);
    Drives drives;
    while (drives.source && drives.destination) {
        std::optional<JobClaim> claim = appState().jobs.begin(task.kind);
        if (!claim) {
            return 1;
        }
        task.run(drives, *claim);
    }
    return 1;
}

} // namespace
} // namespace torvane

int main(int count, char** arguments) {
    const std::string_view wanted = count > 1 ? arguments[1] : "";
    const auto* const task = std::ranges::find(torvane::kTasks, wanted, &torvane::Task::name);
    torvane::bench::Bench bench;
    if (task == std::end(torvane::kTasks) || !bench.open(std::filesystem::current_path() / "bench").empty()) {
        return torvane::kWrongUsage;
    }
    return torvane::runForEver(*task);
}
