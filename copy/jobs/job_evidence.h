#pragma once

#include "copy/engine/block_sink.h"
#include "copy/evidence/acquisition_record.h"
#include "copy/evidence/map_file.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/image_number.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

struct JobAccount;

// The files by which a copy proves what it did: beside an image its record and the map of what is missing, beside the
// log the map of a copy onto a drive. Each is written whole or not at all, as often as there is something new to tell,
// and what existed before is never overwritten. One "ERROR" row tells of a file that cannot be written; it changes
// nothing of how the job itself ends.

struct EvidenceFile {
    std::string path; ///< empty: the job leaves no such file
    bool made = false;
    bool failureTold = false;
};

/// Where a rescue stands in its map.
struct RescuePlace {
    MapStatus status;
    bool fromEnd = false;
};

struct JobEvidence {
    EvidenceFile map;
    EvidenceFile recordFile;
    std::optional<std::int64_t> savedAt; ///< between two blocks, or the first one's end; milliseconds of the tick count
    AcquisitionRecord record;            ///< what of it does not stand in the job's account
    std::optional<RescuePlace> rescue;
};

/// Makes record and map beside the image, which was just created. The image counts as not started.
void beginImageEvidence(const CopyJob& job, JobAccount& account, const std::string& image, std::int32_t number);

/// Goes on with an image and its map that are there, and makes a record of its own for what is done to them now:
/// "RESCUE--<image>.20261122-201503.txt".
void beginOldImageEvidence(const CopyJob& job, JobAccount& account, const std::string& image);

/// Makes the map of a rescue onto a drive, or goes on with the one that is there.
void beginRescueEvidence(const CopyJob& job, JobAccount& account);

/// Makes the map of a copy onto a drive, whose first block is about to be moved. It lies in the current folder.
void beginDriveEvidence(const CopyJob& job, JobAccount& account);

/// The first block is about to be moved.
void showUnderWay(const CopyJob& job, JobAccount& account);

/// Brings the files up to date with the account.
void saveEvidence(const CopyJob& job, JobAccount& account);

/// The map alone. False when it could not be written.
[[nodiscard]] bool saveMap(const CopyJob& job, JobAccount& account);

/// The same as `saveEvidence` between two blocks, every few minutes: what a crash or a power failure leaves then tells
/// what is on the medium, and what may not have come as far counts as missing.
void saveEvidenceMeanwhile(const CopyJob& job, JobAccount& account, const BlockSink& sink);
inline constexpr std::int64_t kMillisecondsBetweenEvidence = 180000;

/// The verification of the image begins, and has ended: "verified". The record tells it, the first end that it is told.
void beginVerification(const CopyJob& job, JobAccount& account);
void endVerification(const CopyJob& job, JobAccount& account, std::string_view outcome);

} // namespace torvane
