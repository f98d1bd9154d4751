#pragma once

#include "base/local_moment.h"
#include "copy/engine/block_hasher.h"
#include "copy/evidence/source_map.h"
#include "records/case_information.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

struct DriveRecord;

/// Who has made the image and with what, as system and program tell it. Empty: not told.
struct RecordedProgram {
    std::string name;
    std::string version;
    std::string build;
    std::string machine;
    std::string user;
};

/// The drive that was imaged. Empty texts: not told.
struct RecordedSource {
    int driveNumber = 0;
    std::string transport;
    std::string model;
    std::string serialNumber;        ///< as the lists show it
    std::string deviceSerialNumber;  ///< as the device itself told it
    std::string printedSerialNumber; ///< what its controller tells, and its label has
    std::string firmware;
    std::uint64_t sizeBytes = 0;
    std::uint64_t sectorSize = 0; ///< bytes
    std::optional<bool> readOnlyBefore;
    std::optional<bool> readOnlyAfter;
};

/// The verification that followed an image.
struct RecordedVerification {
    LocalMoment begin;
    std::optional<LocalMoment> end;
    std::string outcome;
};

/// What was done to make an image.
struct AcquisitionRecord {
    RecordedProgram program;
    std::string job;
    CaseInformation caseInformation;
    RecordedSource source;
    std::string image; ///< its path
    std::string map;   ///< the path of its map of what is missing
    LocalMoment begin;
    std::optional<LocalMoment> end; ///< none while it is under way
    std::string ending;
    std::string losses; ///< in words
    std::string stoppedBy;
    std::optional<Md5Digest> md5;
    std::optional<Sha256Digest> sha256;
    std::uint64_t missingBytes = 0;      ///< of the source: those that are not in the image
    std::vector<MappedRange> unreadable; ///< places of the source that could not be read
    std::uint64_t writeFailures = 0;     ///< blocks that could not be written whole
    std::optional<RecordedVerification> verification;
};

/// What a drive's record tells of it; of its read-only attribute it knows nothing.
[[nodiscard]] RecordedSource recordedSource(const DriveRecord& drive);

/// The record as lines of "Key: value", in an order that stays. Each value is one line, whatever it was given. Lines
/// end in CR LF.
[[nodiscard]] std::string acquisitionRecordText(const AcquisitionRecord& record);

} // namespace torvane
