#include "base/format.h"
#include "copy/jobs/copy_steps.h"
#include "copy/jobs/destination_steps.h"
#include "copy/jobs/job_account.h"
#include "copy/jobs/rescue_plan.h"
#include "copy/jobs/rescue_target.h"
#include "copy/jobs/rescue_watch.h"
#include "records/drive_texts.h"
#include "records/sector_size.h"

#include <algorithm>
#include <cinttypes>
#include <memory>
#include <vector>

namespace torvane {

namespace {

/// How it ended, and where the map was lost on the way: the rescue ends then, and may have saved it at last.
struct RescueOutcome {
    RescueResult result;
    bool lostItsMap;
};

Stopper stopperOf(const RescueOutcome& outcome) {
    const RescueResult& result = outcome.result;
    if (outcome.lostItsMap || result.ending == RescueEnding::kWriteFailed) {
        return Stopper::kFailedWrite;
    }
    return result.ending == RescueEnding::kFinished ? Stopper::kNobody : Stopper::kUser;
}

const char* endStatus(const RescueOutcome& outcome, bool everything) {
    if (outcome.lostItsMap) {
        return " The MAP could not be saved. Rescue stopped";
    }
    switch (outcome.result.ending) {
    case RescueEnding::kFinished:
        return everything ? " Rescue SUCCESSFULLY Completed" : " Rescue Completed, not everything could be read";
    case RescueEnding::kWriteFailed:
        return " Could not WRITE. Rescue stopped";
    case RescueEnding::kStopped:
    case RescueEnding::kSourceLeft:
        break;
    }
    return " Rescue stopped. It can go on later";
}

/// A destination that lacks something is kept from the system, which would mount and change it.
void adoptDestination(const CopyJob& job, bool everything) {
    if (everything) {
        showNewTableToSystem(job);
    }
    job.system.rememberPartitionTable(*job.order.destination);
}

bool wasMountedMeanwhile(const CopyJob& job, const RescueTarget& target) {
    const auto* const drive = dynamic_cast<const DriveRescueTarget*>(&target);
    return drive != nullptr && drive->wasShutOut() && !isDestinationUnmounted(job);
}

void conclude(const CopyJob& job, JobAccount& account, const RescueOutcome& outcome, const RescueTarget& target) {
    const RescueEnding ending = outcome.result.ending;
    const std::uint64_t missing = account.map.size() - account.map.bytes(RangeStatus::kFinished);
    const bool finished = ending == RescueEnding::kFinished && !outcome.lostItsMap;
    const bool failed = ending == RescueEnding::kWriteFailed || outcome.lostItsMap;
    account.losses.bytesNotCopied = missing;
    account.losses.failedWrites = failed ? 1 : 0;
    account.losses.mountedMeanwhile = wasMountedMeanwhile(job, target);
    if (job.order.destination != nullptr) {
        adoptDestination(job, missing == 0);
    }
    concludeRun(job, account, finished ? kCompleted : kNotCompleted, stopperOf(outcome));
    job.display.setStatus(endStatus(outcome, missing == 0));
    for (const DriveRecord* const drive : drivesOf(job)) {
        job.system.setDriveStatus(*drive, driveOutcomeText(finished ? "" : kNotCompleted, account.losses));
    }
    job.claim.lower();
}

/// The rescue reads by sector, and in multiples of it.
bool hasUsableSectors(const CopyJob& job) {
    const std::uint64_t sector = sectorSizeOf(*job.order.source);
    if (kRescueRead % sector == 0) {
        return true;
    }
    tellRescueNotBegun(job, formatText("The drive has sectors of %" PRIu64
                                       " bytes, which a rescue cannot read. Nothing was read or written",
                                       sector));
    return false;
}

std::unique_ptr<RescueDrive> openSource(const CopyJob& job) {
    std::unique_ptr<RescueDrive> drive = job.rescue->openDrive(*job.order.source, job.order.destination);
    if (!drive) {
        tellRescueNotBegun(job, jobDriveText(*job.order.source) +
                                    " could not be opened. Nothing was read or written. Load the drives again");
    }
    return drive;
}

/// Before the first read.
RescueFigures amountsOf(const SourceMap& map) {
    RescueFigures figures;
    figures.rescued = map.bytes(RangeStatus::kFinished);
    figures.missing = map.bytes(RangeStatus::kNonTrimmed) + map.bytes(RangeStatus::kNonScraped);
    figures.bad = map.bytes(RangeStatus::kBad);
    figures.badAreas = map.count(RangeStatus::kBad);
    figures.untried = map.bytes(RangeStatus::kNonTried);
    return figures;
}

/// Of a drive that has come back: it is the one that the copy was begun of.
bool isNoWorse(const Samples& now, const Samples& begun) {
    switch (now.verdict) {
    case SampleVerdict::kSame:
    case SampleVerdict::kNotTold:
        return true;
    case SampleVerdict::kMostlySame:
        return std::ranges::includes(begun.unequal, now.unequal);
    case SampleVerdict::kOther:
    case SampleVerdict::kGone:
        break;
    }
    return false;
}

std::uint32_t rescue(const CopyJob& job, JobAccount& account) {
    if (!showIdle(job) || !hasUsableSectors(job) || !isSourceUnchanged(job)) {
        return endRefused(job);
    }
    const std::unique_ptr<RescueDrive> drive = openSource(job);
    const RescuePlan plan = drive ? planRescue(job, account, *drive) : RescuePlan{};
    if (!plan.target) {
        account.ending = kNotStarted;
        return endRefused(job);
    }
    account.losses.bytesNotCopied = account.map.size();
    account.ending = kUnderWay;
    WantedSource source(
        job, *drive, [&] { return isNoWorse(compareSamples(job, *drive, account.map, plan.readCopy), plan.samples); });
    JobWatch watch(job, account);
    watch.showNow(amountsOf(account.map), account.map);
    std::vector<std::byte> buffer(kRescueBuffer);
    const RescueOptions options{.sectorSize = static_cast<std::uint32_t>(sectorSizeOf(*job.order.source)),
                                .retryPasses = job.order.rescue.retryPasses,
                                .fromEnd = job.order.rescue.fromEnd};
    const RescueResult result = runRescue(account.map, options, plan.origin, source, *plan.target, watch, buffer);
    watch.showEnd(result.figures, account.map);
    conclude(job, account, {.result = result, .lostItsMap = watch.hasLostItsMap() || !result.mapSaved}, *plan.target);
    return 1;
}

} // namespace

std::uint32_t runRescueJob(const CopyJob& job) {
    if (job.order.destination != nullptr) {
        return runOntoDrive(job, [&](JobAccount& account) { return rescue(job, account); });
    }
    JobAccount account;
    return runAccounted(job, account, [&] { return rescue(job, account); });
}

} // namespace torvane
