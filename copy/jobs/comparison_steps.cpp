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
    CopiedPart(const CopyJob& job, const CopyRange& range) : inner_(job.drives, *job.order.destination), range_(range) {}

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

/// Where the next block of an image lies is not known once one could not be read.
bool mayGoOn(const CopyJob& job, TransferOutcome source) {
    return job.order.source != nullptr ? source != TransferOutcome::kGone : source == TransferOutcome::kWhole;
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

bool isComparisonWanted(const CopyJob& job, RunEnd end) {
    return job.order.verifyAfterwards && end == RunEnd::kWhole && job.claim.isRaised();
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
    const auto compare = [&](const Block& sourceBlock) {
        const Block destinationBlock = found.take();
        if (isLost(copy, sourceBlock.extent)) {
            ++comparison.lost;
        } else if (sourceBlock.outcome == TransferOutcome::kWhole && destinationBlock.outcome == TransferOutcome::kWhole) {
            compareBlock(forDestination(sourceBlock, copy.range), destinationBlock, comparison);
        } else {
            ++comparison.unreadable;
        }
        return mayGoOn(job, sourceBlock.outcome) && destinationBlock.outcome != TransferOutcome::kGone;
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
    return isEqual(*comparison) ? runOutcomeText(end, losses) + ", verified" : driveOutcomeText("not verified", losses);
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
