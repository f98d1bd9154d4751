#pragma once

#include "base/local_moment.h"
#include "copy/engine/block_hasher.h"
#include "copy/evidence/source_map.h"
#include "copy/jobs/comparison.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/drive_status.h"
#include "copy/jobs/job_evidence.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// Who has ended a job before its end.
enum class Stopper : std::uint8_t {
    kNobody,
    kUser,
    kBadBlocks, ///< the limit of unreadable blocks
    kFailedRead,
    kFailedWrite,
    kFailedHash,
    kNoMemory,
};

/// "the user", "the limit of 11 unreadable blocks"
[[nodiscard]] std::string_view stopperInWords(Stopper stopper);

/// The ending of a job that moves its blocks.
inline constexpr std::string_view kUnderWay = "under way";

/// What a job has done, for the row that it leaves in the log file at its end, and for the files that prove it.
struct JobAccount {
    LocalMoment begin;
    std::optional<LocalMoment> end; ///< of its blocks
    std::string_view ending = kNotStarted;
    Stopper stoppedBy = Stopper::kNobody;
    JobLosses losses;
    SourceMap map;                 ///< what of the source is in the copy
    SourceMap read;                ///< what of the source could be read
    std::uint64_t copiedBytes = 0; ///< the part of the source that the copy has room for
    std::string file;              ///< the image that it made; empty for a job that made none
    std::optional<Md5Digest> digest;
    std::optional<Sha256Digest> sha256;
    std::optional<Comparison> comparison; ///< of what was written with its source
    JobEvidence evidence;
};

/// The job is to copy the first `copied` bytes of a source of `bytes`; none of them has been tried.
void expectBytes(JobAccount& account, std::uint64_t bytes, std::uint64_t copied);

/// "Forensic image"
[[nodiscard]] std::string_view titleOf(CopyKind kind);

/// What is copied where: "Image of drive 3 [MODEL] [SERIAL] into [E:\MODEL.41.img]". `file` is where an image goes.
[[nodiscard]] std::string jobInWords(const CopyJob& job, const std::string& file);

/// Runs a job between the two rows of its own in the log file, of its beginning and its end. Nothing of an earlier job
/// is left in the dialog's field of losses. The files that prove what it did tell its end, also where it ended early,
/// and the user is called. Returns what `run` returns.
std::uint32_t runAccounted(const CopyJob& job, JobAccount& account, const std::function<std::uint32_t()>& run);

/// The job's blocks are over: its files tell it. May be called again when there is more to tell.
void endAccount(const CopyJob& job, JobAccount& account);

/// The same, once it is known how it ended.
void endBlocks(const CopyJob& job, JobAccount& account, std::string_view ending, Stopper stoppedBy);

/// The job's blocks are over: its files tell it, then the dialog what it has lost.
void concludeRun(const CopyJob& job, JobAccount& account, std::string_view ending, Stopper stoppedBy);

} // namespace torvane
