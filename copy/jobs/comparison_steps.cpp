#include "copy/jobs/comparison_steps.h"

#include "base/format.h"
#include "copy/jobs/destination_steps.h"
#include "records/sector_size.h"

#include <algorithm>
#include <cinttypes>

namespace torvane {

namespace {

/// Read ahead of the blocks that are compared: with the source's and the destination's, 256 MiB in all.
constexpr std::uint64_t kCompareAhead = 2;

bool isLost(const FinishedCopy& copy, const BlockExtent& extent) {
    return copy.isLost && copy.isLost(extent);
}

/// Another source but for what is left out, which counts as read.
class ComparedSource : public BlockSource {
  public:
    ComparedSource(BlockSource& inner, const FinishedCopy& copy) : inner_(inner), copy_(copy) {}

    TransferOutcome fetch(const BlockExtent& extent, std::span<std::byte> bytes) override {
        return isLost(copy_, extent) ? TransferOutcome::kWhole : inner_.fetch(extent, bytes);
    }

  private:
    BlockSource& inner_;
    const FinishedCopy& copy_;
};

/// The destination as far as the copy goes, which may be less than the block.
class CopiedPart : public BlockSource {
  public:
    CopiedPart(const CopyJob& job, const CopyRange& range)
        : inner_(job.drives, *job.order.destination), range_(range) {}

    TransferOutcome fetch(const BlockExtent& extent, std::span<std::byte> bytes) override {
        const std::size_t length = bytesUpTo(range_.destinationEnd, extent);
        return inner_.fetch({.offset = extent.offset, .length = length}, bytes.first(length));
    }

  private:
    DriveSource inner_;
    const CopyRange& range_;
};

void compareBlock(const Block& wanted, const Block& found, Comparison& comparison) {
    ++comparison.compared;
    const auto [differs, _] = std::mismatch(wanted.bytes.begin(), wanted.bytes.end(), found.bytes.begin());
    if (differs == wanted.bytes.end()) {
        return;
    }
    ++comparison.differing;
    const std::uint64_t place = wanted.extent.offset + static_cast<std::uint64_t>(differs - wanted.bytes.begin());
    comparison.firstDifference = std::min(comparison.firstDifference.value_or(place), place);
}

/// A failing drive is pushed no further than by the copy itself: `failedReads` are the copy's and those since. Where
/// the next block of an image lies is not known once one could not be read.
bool mayGoOn(const CopyJob& job, TransferOutcome source, std::uint64_t failedReads) {
    return job.order.source != nullptr ? source != TransferOutcome::kGone && failedReads < kBadBlockLimit
                                       : source == TransferOutcome::kWhole;
}

ComparisonEnd endOf(RunEnd end) {
    switch (end) {
    case RunEnd::kWhole:
        return ComparisonEnd::kWhole;
    case RunEnd::kGaveUp:
        return ComparisonEnd::kNotMade;
    default:
        return ComparisonEnd::kStopped;
    }
}

} // namespace

std::optional<Comparison> compareIfWanted(const CopyJob& job, RunEnd end, const std::function<Comparison()>& compare) {
    if (!job.order.verifyAfterwards || !movedFullBlocks(end)) {
        return std::nullopt;
    }
    const bool stopped = end != RunEnd::kWhole || !job.claim.isRaised();
    return stopped ? Comparison{.end = ComparisonEnd::kStopped} : compare();
}

Comparison compareWithSource(const CopyJob& job, const FinishedCopy& copy) {
    Comparison comparison;
    ComparedSource source(copy.source, copy);
    CopiedPart copied(job, copy.range);
    ComparedSource destination(copied, copy);
    BlockPipeline wanted(source, copy.order, kCompareAhead);
    BlockPipeline found(destination, copy.order, kCompareAhead);
    if (!wanted.hasBuffers() || !found.hasBuffers()) {
        reportNoMemory(job);
        return comparison;
    }
    job.display.endRun();
    job.display.setStatus(" Beginning Verification");
    CopyProgress progress(job, copy.order,
                          {.track = kCloneTrack,
                           .direction = copy.direction,
                           .label = " Status",
                           .activity = "Verifying",
                           .drives = drivesOf(job),
                           .losses = &copy.losses});
    std::uint64_t failedReads = 0;
    if (job.order.source != nullptr) {
        failedReads = job.order.source->badReadCount;
    }
    const auto compare = [&](const Block& sourceBlock) {
        const Block destinationBlock = found.take();
        if (isLost(copy, sourceBlock.extent)) {
            ++comparison.lost;
        } else if (sourceBlock.outcome == TransferOutcome::kWhole &&
                   destinationBlock.outcome == TransferOutcome::kWhole) {
            compareBlock(forDestination(sourceBlock, copy.range), destinationBlock, comparison);
        } else {
            ++comparison.unreadable;
            failedReads += sourceBlock.outcome == TransferOutcome::kWhole ? 0 : 1;
        }
        return mayGoOn(job, sourceBlock.outcome, failedReads) && destinationBlock.outcome != TransferOutcome::kGone;
    };
    found.start();
    comparison.end = endOf(moveBlocks(job, wanted, progress, {}, compare));
    found.stop();
    return comparison;
}

std::string copyOutcomeText(RunEnd end, const JobLosses& losses, const std::optional<Comparison>& comparison) {
    if (!comparison) {
        return runOutcomeText(end, losses);
    }
    if (isEqual(*comparison)) {
        return runOutcomeText(end, losses) + ", verified";
    }
    return driveOutcomeText(end == RunEnd::kWhole ? "not verified" : "not completed, not verified", losses);
}

void showComparison(const CopyJob& job, const Comparison& comparison) {
    const std::uint64_t sectorSize = sectorSizeOf(*job.order.destination);
    const bool equal = isEqual(comparison);
    std::string text = equal ? "The DESTINATION holds what was copied: " : "The DESTINATION has NOT been verified: ";
    text += comparisonInWords(comparison, sectorSize);
    if (comparison.firstDifference) {
        text += formatText(". A sector has %" PRIu64 " bytes", sectorSize);
    }
    job.system.inform(equal ? "****** VERIFY SUCCEEDED ******" : "****** VERIFY FAILED ******", text.c_str());
}

} // namespace torvane
