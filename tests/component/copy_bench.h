#pragma once

#include "copy/engine/copy_drive_io.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/start_copy.h"
#include "copy/jobs/windows_copy_system.h"
#include "copy/rescue/windows_rescue_system.h"
#include "discovery/physical_drive_probe.h"
#include "state/app_state.h"
#include "tests/component/handle_count.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"
#include "workbench/devices/pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torvane::testing {

/// A job's dialog without a window: keeps what the job showed. `onStatus` runs at every status text, in the job's
/// thread.
class RecordingDisplay : public JobDisplay {
  public:
    void setStatus(std::string_view text) override {
        {
            const std::lock_guard lock(mutex_);
            statuses_.emplace_back(text);
        }
        if (onStatus) {
            onStatus(text);
        }
    }
    void setLosses(std::string_view text, bool bad) override {
        const std::lock_guard lock(mutex_);
        losses_ = (bad ? "red: " : "") + std::string(text);
    }
    void showRun(const RunFigures& run) override {
        const std::lock_guard lock(mutex_);
        runs_.push_back(run);
    }
    void endRun() override {}
    void setImagePlace(std::string_view path) override {
        const std::lock_guard lock(mutex_);
        imagePlaces_.emplace_back(path);
    }
    void callUser(bool good) override {
        const std::lock_guard lock(mutex_);
        calls_.emplace_back(good ? "good" : "bad");
    }
    void showDigests(const Digests& known, const Digests& made) override {
        const std::lock_guard lock(mutex_);
        known_ = known;
        made_ = made;
    }
    void showRescue(const RescueShown& shown) override {
        const std::lock_guard lock(mutex_);
        rescues_.push_back(shown.figures);
    }
    void repaint() override {}
    void repaintTrack(const TrackArea&) override {}
    void startExplosionTimer(int milliseconds) override {
        const std::lock_guard lock(mutex_);
        timers_.push_back(milliseconds);
    }

    [[nodiscard]] std::vector<std::string> statuses() const {
        const std::lock_guard lock(mutex_);
        return statuses_;
    }
    [[nodiscard]] std::string lastStatus() const {
        const std::lock_guard lock(mutex_);
        return statuses_.empty() ? "" : statuses_.back();
    }
    /// The words of losses; behind "red: " when they tell of any.
    [[nodiscard]] std::string losses() const {
        const std::lock_guard lock(mutex_);
        return losses_;
    }
    /// Every figure of every run.
    [[nodiscard]] std::vector<RunFigures> runs() const {
        const std::lock_guard lock(mutex_);
        return runs_;
    }
    /// Where the image was said to go.
    [[nodiscard]] std::vector<std::string> imagePlaces() const {
        const std::lock_guard lock(mutex_);
        return imagePlaces_;
    }
    /// "good" or "bad" for each time that the user was called.
    [[nodiscard]] std::vector<std::string> calls() const {
        const std::lock_guard lock(mutex_);
        return calls_;
    }
    [[nodiscard]] std::vector<int> timers() const {
        const std::lock_guard lock(mutex_);
        return timers_;
    }

    [[nodiscard]] std::vector<RescueFigures> rescues() const {
        const std::lock_guard lock(mutex_);
        return rescues_;
    }

    /// What a verification was told, and what it has made.
    [[nodiscard]] std::pair<Digests, Digests> digests() const {
        const std::lock_guard lock(mutex_);
        return {known_, made_};
    }

    std::function<void(std::string_view)> onStatus;

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> statuses_;
    std::string losses_;
    std::vector<RunFigures> runs_;
    std::vector<std::string> imagePlaces_;
    std::vector<std::string> calls_;
    Digests known_;
    Digests made_;
    std::vector<RescueFigures> rescues_;
    std::vector<int> timers_;
};

/// The content of a drive whose backing is {"pattern": "noise", "seed": seed}.
[[nodiscard]] inline std::string noise(std::uint64_t seed, std::uint64_t offset, std::size_t size) {
    std::string bytes(size, '\0');
    bench::Backing backing;
    backing.kind = bench::BackingKind::kNoise;
    backing.seed = seed;
    bench::fillPattern(backing, offset, {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()});
    return bytes;
}

[[nodiscard]] inline std::string unreadable(std::size_t size) {
    std::string bytes(size, '\0');
    fillWithUnreadableMarker(std::as_writable_bytes(std::span(bytes)));
    return bytes;
}

/// True for an open file with this ending of its name.
[[nodiscard]] inline bool isFileOf(HANDLE file, std::wstring_view ending) {
    std::wstring path(MAX_PATH, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, path.data(), MAX_PATH, VOLUME_NAME_DOS);
    return std::wstring_view(path).substr(0, std::min<std::size_t>(length, path.size())).ends_with(ending);
}

/// Copy jobs on bench drives. Blocks are scaled down to 64 KiB, but for the tests that run a job as the program does.
class CopyBench : public ::testing::Test {
  protected:
    static constexpr std::size_t kBlock = 65536;
    /// As a block size: more than any system gives.
    static constexpr std::size_t kTooMuchMemory = std::size_t{1} << 62;

    CopyBench() { order_.path = std::filesystem::current_path().string(); }
    ~CopyBench() override {
        keptImages().clear();
        state().jobs.askToStop(); // a flag that was left up
    }

    static AppState& state() { return appState(); }

    /// Opens the bench and probes the drive.
    DriveRecord& drive(int number) {
        if (!opened_) {
            bench_.open();
            opened_ = true;
        }
        DriveRecordPtr record = ProbePhysicalDrive(number);
        if (!record) {
            throw std::runtime_error("the bench has no such drive"); // ends the test
        }
        drives_.push_back(std::move(record));
        return *drives_.back();
    }

    /// Leave for any of the jobs. It ends with the result.
    static JobClaim claim() { return state().jobs.begin(JobKind::kImage).value(); }

    /// Runs the job of `order_` with scaled-down blocks on this thread.
    std::uint32_t run(std::uint32_t (*job)(const CopyJob&), std::size_t blockSize = kBlock) {
        JobClaim own = claim();
        return run(job, own, blockSize);
    }
    std::uint32_t runAskedToStop(std::uint32_t (*job)(const CopyJob&)) {
        JobClaim own = claim();
        terminate();
        return run(job, own, kBlock);
    }

    /// The same with the program's own blocks.
    std::uint32_t run(DWORD (*operation)(AppState&, JobClaim&, const CopyOrder&, JobDisplay&)) {
        JobClaim own = claim();
        return operation(state(), own, order_, display_);
    }

    /// Starts the job of `order_` as the program does, as `kind`.
    bool start(CopyKind kind) {
        order_.kind = kind;
        return startCopy(state(), order_, display_);
    }
    /// True once no job is at work any more.
    static bool awaitEnd() {
        const auto isOver = [] { return state().jobs.atWork().empty(); };
        for (int patience = 6000; !isOver() && patience > 0; --patience) {
            Sleep(10);
        }
        return isOver();
    }

    static void terminate() { state().jobs.askToStop(); }

    /// What lies on a drive that was written, `size` bytes from `offset` on. Sparse beyond what was ever written.
    static std::string content(int number, std::uint64_t offset, std::size_t size) {
        std::string bytes(size, '\0');
        std::ifstream file(backingFile(number), std::ios::binary);
        file.seekg(static_cast<std::streamoff>(offset));
        file.read(bytes.data(), static_cast<std::streamsize>(size));
        return bytes;
    }
    static std::string backingFile(int number) { return "bench\\backing\\drive" + std::to_string(number) + ".img"; }

    /// The event log as "CATEGORY: message", without the probes' own rows.
    [[nodiscard]] std::vector<std::string> events() const {
        std::vector<std::string> rows;
        for (const LogRow& row : view_.logRows()) {
            if (row.category != "DIAG") {
                rows.push_back(row.category + ": " + row.message);
            }
        }
        return rows;
    }
    [[nodiscard]] std::string lastDriveStatus(const DriveRecord& drive) const {
        const std::vector<std::string> all = view_.driveStatuses(drive);
        return all.empty() ? "" : all.back();
    }

    TestBench bench_;
    RecordingMainView view_;
    ViewInstalled installed_{appState(), view_};
    ScriptedPrompts user_;
    RecordingDisplay display_;
    CopyOrder order_{.kind = CopyKind::kForwardClone, .source = nullptr, .destination = nullptr, .path = {}};

  private:
    std::uint32_t run(std::uint32_t (*job)(const CopyJob&), JobClaim& own, std::size_t blockSize) {
        CopyDriveIo drives;
        WindowsCopySystem system(state());
        WindowsRescueSystem rescue;
        return job({.order = order_,
                    .claim = own,
                    .track = state().raceTrack,
                    .drives = drives,
                    .system = system,
                    .display = display_,
                    .keptImages = keptImages(),
                    .blockSize = blockSize,
                    .rescue = &rescue});
    }

    bool opened_ = false;
    std::vector<DriveRecordPtr> drives_; // closed before the bench
};

} // namespace torvane::testing
