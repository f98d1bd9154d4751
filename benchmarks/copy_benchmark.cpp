// Times one copy job, with the program's own block size, threads and Win32 calls, on the drives of a bench, or one of
// its stages alone:
//
//   torvane_copy_benchmark.exe BENCH JOB
//
//   forward, reverse    drive 1 cloned onto drive 2
//   flushed             forward, with flushes that reach the medium under the bench's "backing/clone.img", where a
//                       bench's own are done at once
//   image, forensic     an image of drive 1 in the current folder
//   forensic-sha256     the same with SHA-256 beside its MD5
//   verification        the second half of a forensic image: the image read from its medium and hashed again
//   restore             the bench's "backing/source.img", as an image, onto drive 2
//   read-drive ...      a stage (stages.h)
//
// Prints seconds, the peak working set in MiB, when it began (seconds since 1970) and what the drive's "Status" cell
// said last, which a stage has not. The destination is not cleaned by diskpart first, because the peers do nothing of
// the kind either.

#include "base/owned_handle.h"
#include "benchmarks/stages.h"
#include "copy/engine/copy_drive_io.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/start_copy.h"
#include "copy/jobs/windows_copy_system.h"
#include "discovery/physical_drive_probe.h"
#include "state/app_state.h"
#include "ui/prompts.h"
#include "workbench/bench_client.h"

#include <windows.h>

#include <psapi.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace {

/// When something began.
struct Beginning {
    std::chrono::steady_clock::time_point time = std::chrono::steady_clock::now();
    std::chrono::system_clock::time_point date = std::chrono::system_clock::now();

    [[nodiscard]] double secondsSince() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - time).count();
    }
    [[nodiscard]] double secondsSince1970() const {
        return std::chrono::duration<double>(date.time_since_epoch()).count();
    }
};

bool verificationWanted = false;
Beginning verificationBegun;

} // namespace

namespace torvane::prompts {

// The boxes of a job that nobody watches: told on the error stream.
namespace {

void tell(const char* caption, const char* text) {
    std::fprintf(stderr, "%s %s\n", caption, text);
}

} // namespace

void stop(const char* caption, const char* text) {
    tell(caption, text);
}

void inform(const char* caption, const char* text) {
    tell(caption, text);
}

void warn(const char* caption, const char* text) {
    tell(caption, text);
}

bool ask(const char*, const char*) {
    verificationBegun = Beginning();
    return verificationWanted;
}

bool askDefaultNo(const char* caption, const char* text) {
    tell(caption, text);
    return false;
}

} // namespace torvane::prompts

namespace torvane {

namespace {

class BenchmarkSystem : public WindowsCopySystem {
  public:
    using WindowsCopySystem::WindowsCopySystem;

    DiskChange cleanDisk(DriveRecord&) override { return DiskChange::kMade; }
    void setDriveStatus(const DriveRecord&, const std::string& text) override { lastStatus = text; }

    std::string lastStatus;
};

/// A destination whose content lies in a file: that is flushed.
class BackedDriveIo : public CopyDriveIo {
  public:
    explicit BackedDriveIo(const std::string& benchFolder)
        : file_(CreateFileA((benchFolder + "\\backing\\clone.img").c_str(), GENERIC_WRITE,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0,
                            nullptr)) {}
    TransferOutcome flush(const DriveRecord&) override {
        return FlushFileBuffers(file_.get()) != FALSE ? TransferOutcome::kWhole : TransferOutcome::kFailed;
    }

  private:
    UniqueFile file_;
};

class NoDisplay : public JobDisplay {
  public:
    void setStatus(std::string_view) override {}
    void setLosses(std::string_view, bool) override {}
    void showRun(const RunFigures&) override {}
    void endRun() override {}
    void setImagePlace(std::string_view) override {}
    void callUser(bool) override {}
    void showDigests(const Digests&, const Digests&) override {}
    void showRescue(const RescueShown&) override {}
    void repaint() override {}
    void repaintTrack(const TrackArea&) override {}
    void startExplosionTimer(int) override {}
};

struct NamedJob {
    std::string_view name;
    CopyKind kind;
    std::uint32_t (*run)(const CopyJob&);
};

constexpr std::string_view kFlushed = "flushed";
constexpr std::string_view kForensicSha256 = "forensic-sha256";
constexpr std::string_view kVerification = "verification";

constexpr NamedJob kJobs[] = {
    {"forward", CopyKind::kForwardClone, runForwardClone},
    {"reverse", CopyKind::kReverseClone, runReverseClone},
    {kFlushed, CopyKind::kForwardClone, runForwardClone},
    {"image", CopyKind::kImageToFile, runImageToFile},
    {"forensic", CopyKind::kForensicImage, runForensicImage},
    {kForensicSha256, CopyKind::kForensicImage, runForensicImage},
    {kVerification, CopyKind::kForensicImage, runForensicImage},
    {"restore", CopyKind::kImageToDrive, runImageToDrive},
};

std::size_t peakWorkingSetMiB() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PeakWorkingSetSize >> 20;
}

int run(const NamedJob& job, const std::string& benchFolder) {
    AppState& state = appState();
    const bool readsImage = job.kind == CopyKind::kImageToDrive; // which nobody else may have open for writing
    const DriveRecordPtr source = readsImage ? nullptr : ProbePhysicalDrive(1);
    const DriveRecordPtr destination = ProbePhysicalDrive(2);
    if ((!source && !readsImage) || !destination) {
        std::fprintf(stderr, "the bench has no drives 1 and 2\n");
        return 2;
    }
    verificationWanted = job.name == kVerification;
    const CopyOrder order{
        .kind = job.kind,
        .source = source.get(),
        .destination = destination.get(),
        .path = readsImage ? sourceFile(benchFolder) : ".",
        .alsoSha256 = job.name == kForensicSha256,
    };
    JobClaim claim = state.jobs.begin(jobKindOf(job.kind)).value(); // nobody else is at work
    CopyDriveIo ordinary;
    BackedDriveIo backed(benchFolder);
    CopyDriveIo& drives = job.name == kFlushed ? backed : ordinary;
    BenchmarkSystem system(state);
    NoDisplay display;
    const Beginning jobBegun;
    const std::uint32_t exitCode = job.run({.order = order,
                                            .claim = claim,
                                            .track = state.raceTrack,
                                            .drives = drives,
                                            .system = system,
                                            .display = display,
                                            .keptImages = keptImages()});
    const Beginning& begun = verificationWanted ? verificationBegun : jobBegun;
    std::printf("%.3f %zu %.3f %s\n", begun.secondsSince(), peakWorkingSetMiB(), begun.secondsSince1970(),
                system.lastStatus.c_str());
    return exitCode == 1 && state.raceTrack.succeeded == 1 ? 0 : 1;
}

int runStage(std::string_view name, const std::string& benchFolder) {
    const std::optional<double> seconds = secondsOfStage(name, benchFolder);
    if (!seconds) {
        std::fprintf(stderr, "there is no such job or stage, or a transfer failed\n");
        return 2;
    }
    std::printf("%.3f %zu %.3f\n", *seconds, peakWorkingSetMiB(), Beginning().secondsSince1970() - *seconds);
    return 0;
}

int runNamed(const char* benchFolder, std::string_view name) {
    bench::Bench bench;
    const std::string error = bench.open(benchFolder);
    if (!error.empty()) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 2;
    }
    for (const NamedJob& job : kJobs) {
        if (job.name == name) {
            return run(job, benchFolder);
        }
    }
    return runStage(name, benchFolder);
}

} // namespace

} // namespace torvane

int main(int argumentCount, char** arguments) {
    try {
        if (argumentCount != 3) {
            std::fprintf(stderr, "usage: torvane_copy_benchmark BENCH JOB\n");
            return 2;
        }
        return torvane::runNamed(arguments[1], arguments[2]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 2;
    }
}
