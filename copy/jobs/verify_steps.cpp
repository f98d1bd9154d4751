#include "copy/jobs/verify_steps.h"

#include "copy/engine/hash_at_once.h"
#include "copy/jobs/copy_steps.h"
#include "copy/jobs/hash_errors.h"
#include "copy/jobs/image_names.h"

namespace torvane {

namespace {

using BeforeBox = std::function<void()>;

bool addOrTell(const CopyJob& job, const Hashers& hashers, std::span<const std::byte> bytes,
               const BeforeBox& beforeBox) {
    const AddedAtOnce added = addAtOnce(hashers.md5.get(), hashers.sha256.get(), bytes);
    if (!added.first || !added.second) {
        beforeBox();
        showHashError(job, added.first ? DigestKind::kSha256 : DigestKind::kMd5, HashTrouble::kNoData);
        return false;
    }
    return true;
}

std::optional<Digests> digestsOrTell(const CopyJob& job, const Hashers& hashers, const BeforeBox& beforeBox) {
    Digests digests = digestsOf(hashers);
    const bool md5Missing = hashers.md5 && !digests.md5;
    if (md5Missing || (hashers.sha256 && !digests.sha256)) {
        beforeBox();
        showHashError(job, md5Missing ? DigestKind::kMd5 : DigestKind::kSha256, HashTrouble::kNoDigest);
        return std::nullopt;
    }
    return digests;
}

} // namespace

std::optional<Digests> digestsOfImage(const CopyJob& job, BlockPipeline& blocks, CopyProgress& progress,
                                      const Digests& known, const BeforeBox& beforeBox, bool* stopped) {
    const std::optional<Hashers> hashers = makeHashersOrTell(job, kindsOf(known), beforeBox);
    if (!hashers) {
        return std::nullopt;
    }
    std::uint64_t done = 0;
    const auto hashBlock = [&](const Block& block) {
        if (block.outcome != TransferOutcome::kWhole) {
            job.display.setStatus("Could not READ image for VERIFICATION");
            return false;
        }
        return addOrTell(job, *hashers, block.bytes, beforeBox);
    };
    const RunEnd end = moveBlocks(job, blocks, progress, {}, hashBlock, [&] { ++done; });
    job.display.endRun();
    if (end == RunEnd::kGaveUp) {
        return std::nullopt;
    }
    if (stopped != nullptr) {
        *stopped = end != RunEnd::kWhole;
    }
    progress.update(done);
    return digestsOrTell(job, *hashers, beforeBox);
}

bool agree(const Digests& known, const Digests& made) {
    return (!known.md5 || known.md5 == made.md5) && (!known.sha256 || known.sha256 == made.sha256);
}

void showVerdict(const CopyJob& job, const Digests& known, const Digests& made) {
    if (known.md5 && made.md5) {
        job.system.print(digestLine("Match HASH", *known.md5));
        job.system.print(digestLine("Gen   HASH", *made.md5));
    }
    if (agree(known, made)) {
        job.system.inform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    } else {
        job.system.inform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
    }
}

void logVerification(const CopyJob& job, const std::string& imageName, std::string_view state) {
    job.system.logJob(std::string("Verification of [").append(imageName).append("]: ").append(state));
}

} // namespace torvane
