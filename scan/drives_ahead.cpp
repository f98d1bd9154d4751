#include "scan/drives_ahead.h"

#include "base/format.h"
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
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

DriveRecordPtr DrivesAhead::takeDrive(std::int32_t driveNumber) {
    return thread_.joinable() ? take(slot(driveNumber).drive) : questions_.probe(driveNumber);
}

ReadOnlyAnswer DrivesAhead::takeReadOnly(std::int32_t driveNumber) {
    return thread_.joinable() ? take(slot(driveNumber).readOnly) : questions_.askReadOnly(driveNumber);
}

void DrivesAhead::askAll() {
    const ToolWatchScope watched(watch_);
    for (std::int32_t number = 0; number < kMaxDrives && !ending(); ++number) {
        bool found = false;
        answer(slot(number).drive, [&] {
            DriveRecordPtr record = questions_.probe(number);
            found = record != nullptr;
            return record;
        });
        if (found) {
            answer(slot(number).readOnly, [&] { return askWatched(number); });
        }
    }
}

ReadOnlyAnswer DrivesAhead::askWatched(std::int32_t driveNumber) {
    if (!watch_.mayBegin()) {
        return {};
    }
    const ToolSubject subject(formatText("drive %d", driveNumber));
    return questions_.askReadOnly(driveNumber);
}

bool DrivesAhead::ending() {
    const std::lock_guard lock(mutex_);
    return ending_;
}

template <typename Answer, typename Ask>
void DrivesAhead::answer(Question<Answer>& question, Ask ask) {
    HeldLogRows rows;
    Answer answer = [&] {
        const LogRowsHeld held(rows);
        return ask();
    }();
    const std::lock_guard lock(mutex_);
    question.answer = std::move(answer);
    question.rows = std::move(rows);
    question.answered = true;
    changed_.notify_all();
}

template <typename Answer>
Answer DrivesAhead::take(Question<Answer>& question) {
    constexpr std::chrono::milliseconds kPause{50};
    std::unique_lock lock(mutex_);
    while (!changed_.wait_for(lock, kPause, [&] { return question.answered; })) {
        lock.unlock();
        if (const std::optional<ToolAtWork> tool = watch_.atWork()) {
            scanWatch_.waitsFor(*tool);
        }
        lock.lock();
    }
    lock.unlock();
    // The asking thread is done with this question.
    scanWatch_.ended();
    question.rows.giveOut();
    return std::move(question.answer);
}

} // namespace torvane
