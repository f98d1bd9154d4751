#pragma once

#include "copy/engine/windows_copy_system.h"
#include "copy/jobs/copy_jobs.h"
#include "copy/jobs/copy_workers.h"
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
    [[nodiscard]] std::vector<int> timers() const {
        const std::lock_guard lock(mutex_);
        return timers_;
    }

    std::function<void(std::string_view)> onStatus;

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> statuses_;
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

/// Copy jobs on bench drives. Blocks are scaled down to 64 KiB, but for the tests that run a job as the program does.
class CopyBench : public ::testing::Test {
  protected:
    static constexpr std::size_t kBlock = 65536;
    /// As a block size: more than any system gives.
    static constexpr std::size_t kTooMuchMemory = std::size_t{1} << 62;

    CopyBench() {
        state().copy.display = &display_;
        state().chosen.destinationFolder.assign(std::filesystem::current_path().string());
        state().jobActive = 0;
    }
    ~CopyBench() override {
        state().copy.openImages.clear();
        state().copy.display = nullptr;
        state().copy.stopAsked = 0;
        state().copy.source = nullptr;
        state().copy.destination = nullptr;
        state().copy.imageSource = nullptr;
        state().chosen.destinationFolder.clear();
        state().jobActive = 0;
        state().worker.reset();
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

    /// An image's folder, or the image to be copied, as a job is started with it.
    static std::string path() { return std::string(state().chosen.destinationFolder.view()); }

    /// Runs the job with scaled-down blocks on this thread.
    std::uint32_t run(std::uint32_t (*job)(const CopyJob&), std::size_t blockSize = kBlock) {
        WindowsCopySystem system(state());
        return job({.state = state().copy,
                    .running = state().jobActive,
                    .system = system,
                    .display = display_,
                    .destinationPath = path(),
                    .blockSize = blockSize});
    }

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

  private:
    bool opened_ = false;
    std::vector<DriveRecordPtr> drives_; // closed before the bench
};

} // namespace torvane::testing
