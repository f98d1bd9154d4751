#include "jobs/jobs.h"

#include "jobs/job_rules.h"

#include <algorithm>
#include <utility>

namespace torvane {

JobClaim::JobClaim(JobClaim&& other) noexcept : jobs_(std::exchange(other.jobs_, nullptr)), number_(other.number_) {}

JobClaim& JobClaim::operator=(JobClaim&& other) noexcept {
    if (this != &other) {
        release();
        jobs_ = std::exchange(other.jobs_, nullptr);
        number_ = other.number_;
    }
    return *this;
}

JobClaim::~JobClaim() {
    release();
}

bool JobClaim::raise() {
    const std::lock_guard lock(jobs_->mutex_);
    Jobs::Entry& entry = jobs_->entry(number_);
    entry.flagUp = jobs_->mayRaise(entry);
    return entry.flagUp;
}

void JobClaim::raiseAnew() {
    const std::lock_guard lock(jobs_->mutex_);
    Jobs::Entry& entry = jobs_->entry(number_);
    entry.stopAsked = false;
    entry.flagUp = true;
}

void JobClaim::lower() {
    const std::lock_guard lock(jobs_->mutex_);
    jobs_->lower(jobs_->entry(number_));
}

bool JobClaim::isRaised() const {
    const std::lock_guard lock(jobs_->mutex_);
    return jobs_->entry(number_).flagUp;
}

bool JobClaim::stopAsked() const {
    const std::lock_guard lock(jobs_->mutex_);
    return jobs_->entry(number_).stopAsked;
}

void JobClaim::leaveRaised() {
    const std::lock_guard lock(jobs_->mutex_);
    jobs_->entry(number_).leavesFlagUp = true;
}

void JobClaim::release() {
    if (Jobs* const jobs = std::exchange(jobs_, nullptr)) {
        jobs->erase(number_);
        jobs->tellChange();
    }
}

std::optional<JobClaim> Jobs::begin(JobKind kind) {
    std::optional<JobClaim> claim = enter(kind);
    if (claim) {
        tellChange();
    }
    return claim;
}

std::optional<JobClaim> Jobs::enter(JobKind kind) {
    const std::lock_guard lock(mutex_);
    if (obstacleFor(kind)) {
        return std::nullopt;
    }
    entries_.push_back({.number = ++lastNumber_, .kind = kind, .flagUp = ruleOf(kind).flag == JobFlag::kFromBegin});
    return JobClaim(*this, lastNumber_);
}

void Jobs::erase(std::uint64_t number) {
    const std::lock_guard lock(mutex_);
    Entry& own = entry(number);
    if (own.flagUp && own.leavesFlagUp) {
        flagLeftUp_ = true;
    } else {
        lower(own);
    }
    std::erase_if(entries_, [number](const Entry& each) { return each.number == number; });
}

void Jobs::tellChange() const {
    if (changed_) {
        changed_();
    }
}

Jobs::Obstacle Jobs::whyNot(JobKind kind) const {
    const std::lock_guard lock(mutex_);
    return obstacleFor(kind);
}

bool Jobs::active() const {
    const std::lock_guard lock(mutex_);
    return anyFlagUp();
}

JobKinds Jobs::atWork() const {
    const std::lock_guard lock(mutex_);
    return kindsAtWork();
}

void Jobs::askToStop() {
    const std::lock_guard lock(mutex_);
    flagLeftUp_ = false;
    for (Entry& entry : entries_) {
        entry.flagUp = false;
        entry.stopAsked = ruleOf(entry.kind).heedsStop;
    }
}

Jobs::Obstacle Jobs::obstacleFor(JobKind kind) const {
    const JobRule& rule = ruleOf(kind);
    return {.flag = rule.waitsForFlag && anyFlagUp(), .kinds = kindsAtWork() & rule.waitsFor};
}

JobKinds Jobs::kindsAtWork() const {
    JobKinds kinds;
    for (const Entry& entry : entries_) {
        kinds.add(entry.kind);
    }
    return kinds;
}

bool Jobs::mayRaise(const Entry& entry) const {
    const bool held = !(kindsAtWork() & (kOneAtATime | kScanAlone)).empty();
    return !entry.stopAsked && (!held || ruleOf(entry.kind).flag != JobFlag::kUnlessHeld);
}

bool Jobs::anyFlagUp() const {
    return flagLeftUp_ || std::ranges::any_of(entries_, &Entry::flagUp);
}

Jobs::Entry& Jobs::entry(std::uint64_t number) {
    return *std::ranges::find(entries_, number, &Entry::number);
}

void Jobs::lower(Entry& entry) {
    if (!entry.flagUp) {
        return; // asked to stop: whatever flag is up by now is another's
    }
    entry.flagUp = false;
    flagLeftUp_ = false;
    if (!ruleOf(entry.kind).sharesFlag) {
        return;
    }
    for (Entry& other : entries_) {
        if (ruleOf(other.kind).sharesFlag && other.flagUp) {
            other.flagUp = false;
            other.stopAsked = true;
        }
    }
}

} // namespace torvane
