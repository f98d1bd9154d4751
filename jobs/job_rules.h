#pragma once

#include "jobs/job_kind.h"

#include <array>

namespace torvane {

/// When the flag of a job is up.
enum class JobFlag : std::uint8_t {
    kNever,
    kFromBegin,  ///< from `begin` until the job lowers it
    kWhenRaised, ///< when the job raises it: once everything is prepared
    kUnlessHeld, ///< likewise, but never while a scan or a drive job is at work: the flag is theirs then
};

/// How one kind of job gets along with the others.
struct JobRule {
    JobKind kind;
    JobFlag flag;
    bool waitsForFlag; ///< does not begin while any flag is up
    JobKinds waitsFor; ///< does not begin while one of these is at work, whatever its flag
    bool usesRecords;  ///< drive records stay as long as it is at work
    bool heedsStop;
    bool sharesFlag; ///< its runs have one flag in common: the first to lower it ends the others
};

/// Copies and changes of a disk: one at a time.
inline constexpr JobKinds kDriveJobs{JobKind::kClone,        JobKind::kImage,  JobKind::kForensicImage,
                                     JobKind::kImageToDrive, JobKind::kRescue, JobKind::kDiskChange};
inline constexpr JobKinds kReadTests{JobKind::kShortTest, JobKind::kCriticalTest, JobKind::kNistTest};

/// The drive jobs, and the verification of an image: it reads a file alone, but shows itself where the copies do, and
/// its "Terminate" asks whoever is at work. So of these, too, there is one at a time.
inline constexpr JobKinds kOneAtATime = kDriveJobs | JobKinds{JobKind::kVerifyImage};

inline constexpr JobKinds kRecordUsers = kDriveJobs | kReadTests;
inline constexpr JobKinds kScanAlone{JobKind::kScan};
inline constexpr JobKinds kNobody{};

// A kind that does not wait for itself may be at work several times. An image is begun although a flag is up: one that
// could not be written leaves it up, and may be tried again at once. Nothing but the scan keeps a Short test waiting.
// clang-format off
inline constexpr std::array<JobRule, kJobKinds> kJobRules{{
    // kind                  flag                  waits for: flag, kinds          records  stop   shares
    {JobKind::kScan,          JobFlag::kFromBegin,  true,  kScanAlone | kRecordUsers, false, true,  false},
    {JobKind::kClone,         JobFlag::kWhenRaised, true,  kScanAlone | kOneAtATime,  true,  true,  false},
    {JobKind::kImage,         JobFlag::kWhenRaised, false, kScanAlone | kOneAtATime,  true,  true,  false},
    {JobKind::kForensicImage, JobFlag::kWhenRaised, false, kScanAlone | kOneAtATime,  true,  true,  false},
    {JobKind::kImageToDrive,  JobFlag::kWhenRaised, true,  kScanAlone | kOneAtATime,  true,  true,  false},
    {JobKind::kRescue,        JobFlag::kWhenRaised, true,  kScanAlone | kOneAtATime,  true,  true,  false},
    {JobKind::kVerifyImage,   JobFlag::kWhenRaised, true,  kScanAlone | kOneAtATime,  false, true,  false},
    {JobKind::kDiskChange,    JobFlag::kFromBegin,  true,  kScanAlone | kRecordUsers, true,  false, false},
    {JobKind::kMounting,      JobFlag::kUnlessHeld, false, kNobody,                   false, false, false},
    {JobKind::kShortTest,     JobFlag::kNever,      false, kScanAlone,                true,  false, false},
    {JobKind::kCriticalTest,  JobFlag::kFromBegin,  false, kScanAlone | kDriveJobs,   true,  true,  true},
    {JobKind::kNistTest,      JobFlag::kFromBegin,  false, kScanAlone | kDriveJobs,   true,  true,  true},
}};
// clang-format on

[[nodiscard]] constexpr const JobRule& ruleOf(JobKind kind) {
    return kJobRules[static_cast<std::size_t>(kind)];
}

namespace job_rules_check {

constexpr bool rowsStandInTheirPlaces() {
    for (std::size_t i = 0; i < kJobRules.size(); ++i) {
        if (kJobRules[i].kind != static_cast<JobKind>(i) ||
            kJobRules[i].usesRecords != kRecordUsers.contains(kJobRules[i].kind) ||
            (kJobRules[i].usesRecords && !kJobRules[i].waitsFor.contains(JobKind::kScan))) {
            return false;
        }
    }
    return true;
}
static_assert(rowsStandInTheirPlaces(), "a row stands in another's place, or forgets who frees and who uses records");

} // namespace job_rules_check

} // namespace torvane
