#pragma once

#include "surface/read_tests.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::testing {

/// One read that reached the drive. Bytes.
struct ReadRequest {
    std::uint64_t offset;
    std::uint64_t length;

    bool operator==(const ReadRequest&) const = default;
    friend std::ostream& operator<<(std::ostream& stream, const ReadRequest& read) {
        return stream << "{" << read.offset << ", " << read.length << "}";
    }
};

/// The C runtime's generator as every new thread finds it: a linear congruence that starts from 1.
class RuntimeNumbers {
  public:
    int next() {
        state_ = state_ * 214013U + 2531011U;
        return static_cast<int>((state_ >> 16) & 0x7FFF);
    }

  private:
    std::uint32_t state_ = 1;
};

/// A drive and a dialog for the read tests that go by a script and keep what was asked of them.
class ScriptedReadTest : public DriveIo, public ReadTestSystem, public ReadTestDisplay {
  public:
    explicit ScriptedReadTest(std::uint64_t bytes, std::int32_t sectorSize = 512) {
        drive.sizeBytes = static_cast<std::int64_t>(bytes);
        drive.bytesPerSector = sectorSize;
    }

    std::uint32_t run(ReadTestKind kind, std::uint32_t (*test)(ReadTestJob&)) {
        ReadTestJob job = makeJob(kind);
        return test(job);
    }
    /// A job that has just begun.
    ReadTestJob makeJob(ReadTestKind kind) {
        claim = jobs.begin(jobKindOf(kind));
        return {.kind = kind,
                .drive = drive,
                .io = *this,
                .system = *this,
                .display = *this,
                .claim = claim.value(),
                .failedRead = {}};
    }

    DriveRecord drive;
    Jobs jobs;
    std::optional<JobClaim> claim;

    // The script.
    std::function<bool(const ReadRequest&)> readFails = [](const ReadRequest&) { return false; };
    TransferOutcome failure = TransferOutcome::kFailed; ///< how a read fails
    std::function<bool(std::uint64_t)> seekFails = [](std::uint64_t) { return false; };
    std::uint64_t mostMemory = std::numeric_limits<std::uint64_t>::max();
    std::function<void()> afterRead = [] {};
    std::function<void(std::string_view)> onStatus = [](std::string_view) {};
    std::uint32_t clock = 1000;
    std::function<std::uint32_t()> readTakes = [] { return 3U; }; ///< milliseconds
    std::function<int()> numbers = [generator = RuntimeNumbers()]() mutable { return generator.next(); };

    // What was seen.
    std::vector<ReadRequest> reads;
    std::vector<std::uint64_t> seeks;
    std::vector<std::uint64_t> allocations;
    std::vector<std::string> statuses;
    std::vector<std::string> progress; ///< of the dialog: "0..100", "7"
    std::vector<int> wideProgress;
    std::vector<std::string> logRows;
    std::vector<std::string> jobRows; ///< of the day's log file
    std::vector<std::string> driveStatuses;
    int fineClock = 0; ///< begins less ends

    bool canReach(const DriveRecord&, std::uint64_t offset) override {
        seeks.push_back(offset);
        return !seekFails(offset);
    }
    TransferOutcome read(const DriveRecord&, std::uint64_t offset, std::span<std::byte> bytes) override {
        reads.push_back({offset, bytes.size()});
        clock += readTakes();
        // Touched at both ends, so that a buffer that is too small shows.
        if (!bytes.empty()) {
            bytes.front() = bytes.back() = std::byte{0xAB};
        }
        const auto size = static_cast<std::uint64_t>(drive.sizeBytes);
        const bool inside = offset < size && bytes.size() <= size - offset;
        const bool whole = inside && !readFails(reads.back());
        afterRead();
        return whole ? TransferOutcome::kWhole : failure;
    }
    TransferOutcome write(const DriveRecord&, std::uint64_t, std::span<const std::byte>) override {
        ADD_FAILURE() << "a read test writes";
        return TransferOutcome::kFailed;
    }
    TransferOutcome flush(const DriveRecord&) override {
        ADD_FAILURE() << "a read test has nothing to flush";
        return TransferOutcome::kFailed;
    }
    ReadBuffer allocate(std::size_t size) override {
        allocations.push_back(size);
        return ReadBuffer(size > mostMemory ? nullptr : static_cast<std::byte*>(std::calloc(size, 1)));
    }
    std::uint32_t milliseconds() override { return clock; }
    void beginFineClock() override { ++fineClock; }
    void endFineClock() override { --fineClock; }
    int random() override { return numbers(); }
    void log(const char* category, const std::string& text) override {
        logRows.push_back(std::string(category) + ": " + text);
    }
    void logJob(const std::string& text) override { jobRows.push_back(text); }
    void setDriveStatus(const DriveRecord&, const std::string& text) override { driveStatuses.push_back(text); }
    void setWideProgress(int position) override { wideProgress.push_back(position); }

    void setStatus(std::string_view text) override {
        statuses.emplace_back(text);
        onStatus(text);
    }
    void startProgress(int maximum) override { progress.push_back("0.." + std::to_string(maximum)); }
    void setProgress(int position) override { progress.push_back(std::to_string(position)); }
};

} // namespace torvane::testing
