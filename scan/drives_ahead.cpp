#include "scan/drives_ahead.h"

#include "jobs/jobs.h"
#include "scan/scan_watch.h"

#include <chrono>
#include <utility>

namespace torvane {

bool DrivesAhead::Watch::mayBegin() {
    return !claim_.stopAsked();
}

bool DrivesAhead::Watch::mayGoOn(const ToolAtWork& tool) {
    const std::lock_guard lock(mutex_);
    atWork_ = tool;
    return grace_.lasts(tool.runsSince);
}

void DrivesAhead::Watch::ended() {
    const std::lock_guard lock(mutex_);
    atWork_.reset();
    grace_.ended();
}

std::optional<ToolAtWork> DrivesAhead::Watch::atWork() {
    const std::lock_guard lock(mutex_);
    return atWork_;
}

DrivesAhead::DrivesAhead(DriveQuestions questions, const JobClaim& claim, ScanWatch& watch, const StartThread& start)
    : questions_(std::move(questions)), scanWatch_(watch), watch_(claim), thread_(start([this] { askAll(); })) {}

DrivesAhead::~DrivesAhead() {
    endThread();
}

std::optional<ReadOnlyAnswer> DrivesAhead::takeReadOnly(const DriveRecord& record) {
    const bool wanted = watch_.mayBegin();
    if (thread_.joinable()) {
        await([&] { return slot(record.driveNumber).passed; });
        giveOutRows(record.driveNumber);
    }
    if (!wanted) {
        return std::nullopt;
    }
    const Slot& seen = slot(record.driveNumber);
    return seen.answer && isOf(seen.drive, record) ? *seen.answer : askInTurn(record.driveNumber);
}

void DrivesAhead::finish() {
    endThread();
    giveOutRows(kMaxDrives - 1);
}

// --- the asking thread

void DrivesAhead::askAll() {
    const ToolWatchScope watched(watch_);
    for (std::int32_t number = 0; number < kMaxDrives && !ending(); ++number) {
        pass(number, askAbout(number));
    }
}

DrivesAhead::Slot DrivesAhead::askAbout(std::int32_t driveNumber) {
    Slot seen;
    const std::optional<SeenDrive> drive = look(driveNumber);
    if (drive && beginQuestion()) {
        seen.drive = *drive;
        const LogRowsHeld held(seen.rows);
        const ToolSubject subject(driveSubject(driveNumber));
        seen.answer = questions_.askReadOnly(driveNumber);
    }
    return seen;
}

// The record goes at once, and its handle with it. The scan's own probe tells the rows.
std::optional<DrivesAhead::SeenDrive> DrivesAhead::look(std::int32_t driveNumber) const {
    HeldLogRows untold;
    const LogRowsHeld held(untold);
    const DriveRecordPtr record = questions_.probe(driveNumber);
    return record ? std::optional(SeenDrive{.device = record->device, .sizeBytes = record->sizeBytes}) : std::nullopt;
}

bool DrivesAhead::beginQuestion() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return !asksInTurn_ || ending_; });
    asking_ = !ending_ && watch_.mayBegin();
    return asking_;
}

void DrivesAhead::pass(std::int32_t driveNumber, Slot seen) {
    seen.passed = true;
    const std::lock_guard lock(mutex_);
    slot(driveNumber) = std::move(seen);
    asking_ = false;
    changed_.notify_all();
}

bool DrivesAhead::ending() {
    const std::lock_guard lock(mutex_);
    return ending_;
}

// --- the scan's thread

ReadOnlyAnswer DrivesAhead::askInTurn(std::int32_t driveNumber) {
    {
        const std::lock_guard lock(mutex_);
        asksInTurn_ = true;
    }
    await([&] { return !asking_; });
    const ReadOnlyAnswer answer = watch_.mayBegin() ? questions_.askReadOnly(driveNumber) : ReadOnlyAnswer{};
    const std::lock_guard lock(mutex_);
    asksInTurn_ = false;
    changed_.notify_all();
    return answer;
}

/// Waits for the asking thread, and has the scan's status tell for which tool.
template <typename Reached>
void DrivesAhead::await(Reached reached) {
    constexpr std::chrono::milliseconds kPause{50};
    std::unique_lock lock(mutex_);
    while (!changed_.wait_for(lock, kPause, reached)) {
        lock.unlock();
        if (const std::optional<ToolAtWork> tool = watch_.atWork()) {
            scanWatch_.waitsFor(*tool);
        }
        lock.lock();
    }
    lock.unlock();
    scanWatch_.ended();
}

/// Of questions whose answers are not taken, too: their tools have run, and some rows are told once and never again.
void DrivesAhead::giveOutRows(std::int32_t lastNumber) {
    for (std::int32_t number = 0; number <= lastNumber; ++number) {
        slot(number).rows.giveOut();
    }
}

void DrivesAhead::endThread() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        changed_.notify_all();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

bool DrivesAhead::isOf(const SeenDrive& seen, const DriveRecord& record) {
    return isSameDevice(seen.device, record.device.descriptor) && isSameDevice(record.device, seen.device.descriptor) &&
           seen.device.identifySerial == record.device.identifySerial && seen.sizeBytes == record.sizeBytes;
}

} // namespace torvane
