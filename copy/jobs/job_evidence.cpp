#include "copy/jobs/job_evidence.h"

#include "base/program_identity.h"
#include "copy/evidence/map_file.h"
#include "copy/jobs/image_names.h"
#include "copy/jobs/job_account.h"
#include "copy/rescue/rescue_map.h"

#include <iterator>
#include <utility>

namespace torvane {

namespace {

constexpr const char* kProgramName = "Torvane";

bool save(const CopyJob& job, EvidenceFile& file, const std::string& text) {
    if (job.system.saveText(file.path, text, file.made ? TextUse::kReplaced : TextUse::kNew)) {
        file.made = true;
        return true;
    }
    if (!std::exchange(file.failureTold, true)) {
        job.system.logError("Could not WRITE [" + file.path + "]");
    }
    return false;
}

std::string endingText(const JobAccount& account) {
    std::string text(account.ending);
    return account.stoppedBy == Stopper::kNobody
               ? text
               : text.append(", stopped by ").append(stopperInWords(account.stoppedBy));
}

std::string mapText(const CopyJob& job, const JobAccount& account) {
    const std::vector<std::string> headings{std::string("Mapfile. Created by ")
                                                .append(kProgramName)
                                                .append(" ")
                                                .append(programVersion())
                                                .append(", build ")
                                                .append(programBuild()),
                                            jobInWords(job, account.file), "Start time: " + momentText(account.begin),
                                            "Current time: " + momentText(job.system.now()),
                                            "Ending: " + endingText(account)};
    const std::optional<RescuePlace>& rescue = account.evidence.rescue;
    return rescue ? rescueMapText(account.map, rescue->status, rescue->fromEnd, headings)
                  : mapFileText(account.map, headings);
}

std::vector<MappedRange> unreadablePlaces(const SourceMap& read) {
    std::vector<MappedRange> places = read.ranges();
    std::erase_if(places, [](const MappedRange& range) {
        return range.status == RangeStatus::kFinished || range.status == RangeStatus::kNonTried;
    });
    return places;
}

std::string recordText(const CopyJob& job, const JobAccount& account) {
    AcquisitionRecord record = account.evidence.record;
    record.caseInformation = job.order.caseInformation;
    record.image = account.file;
    record.map = account.evidence.map.path;
    record.begin = account.begin;
    record.end = account.end;
    record.ending = account.ending;
    record.losses = lossesInWords(account.losses);
    record.stoppedBy = stopperInWords(account.stoppedBy);
    record.md5 = account.digest;
    record.sha256 = account.sha256;
    record.missingBytes = account.map.size() - account.map.bytes(RangeStatus::kFinished);
    record.unreadable = unreadablePlaces(account.evidence.rescue ? account.map : account.read);
    record.writeFailures = account.losses.failedWrites;
    return acquisitionRecordText(record);
}

void saveRecord(const CopyJob& job, JobAccount& account) {
    RecordedSource& source = account.evidence.record.source;
    const DriveRecord* const drive = job.order.source;
    if (drive != nullptr && account.end && !source.readOnlyAfter) {
        source.readOnlyAfter = job.system.isReadOnly(*drive);
    }
    static_cast<void>(save(job, account.evidence.recordFile, recordText(job, account)));
}

/// What a record tells whatever becomes of the image.
void beginRecord(const CopyJob& job, JobAccount& account, const std::string& image) {
    const DriveRecord& source = *job.order.source;
    const MachineNames names = job.system.machineNames();
    account.file = image;
    JobEvidence& evidence = account.evidence;
    evidence.map.path = mapFileName(image);
    evidence.record.program = {.name = kProgramName,
                               .version = programVersion(),
                               .build = programBuild(),
                               .machine = names.machine,
                               .user = names.user};
    evidence.record.job = titleOf(job.order.kind);
    evidence.record.source = recordedSource(source);
    evidence.record.source.readOnlyBefore = job.system.isReadOnly(source);
}

} // namespace

void beginImageEvidence(const CopyJob& job, JobAccount& account, const std::string& image, std::int32_t number) {
    beginRecord(job, account, image);
    account.evidence.recordFile.path = acquisitionFileName(job.order.path, job.order.source->model.view(), number);
    saveEvidence(job, account);
}

void beginOldImageEvidence(const CopyJob& job, JobAccount& account, const std::string& image) {
    beginRecord(job, account, image);
    account.evidence.map.made = true;
    account.evidence.recordFile.path = rescueRecordFileName(image, account.begin);
    showUnderWay(job, account);
}

void beginRescueEvidence(const CopyJob& job, JobAccount& account) {
    account.evidence.map = {.path = rescueMapFileName(*job.order.source, *job.order.destination),
                            .made = true}; // the one that is there has become this one's, or was kept aside
    showUnderWay(job, account);
}

void beginDriveEvidence(const CopyJob& job, JobAccount& account) {
    const CopyOrder& order = job.order;
    account.evidence.map.path = order.source != nullptr ? cloneMapFileName(*order.source, account.begin)
                                                        : imageToDriveMapFileName(order.path, account.begin);
    showUnderWay(job, account);
}

void showUnderWay(const CopyJob& job, JobAccount& account) {
    account.ending = kUnderWay;
    saveEvidence(job, account);
}

void saveEvidence(const CopyJob& job, JobAccount& account) {
    JobEvidence& evidence = account.evidence;
    if (evidence.map.path.empty()) {
        return;
    }
    if (!evidence.recordFile.path.empty()) {
        saveRecord(job, account);
    }
    static_cast<void>(saveMap(job, account)); // the log has told it
}

bool saveMap(const CopyJob& job, JobAccount& account) {
    return save(job, account.evidence.map, mapText(job, account));
}

void saveEvidenceMeanwhile(const CopyJob& job, JobAccount& account, const BlockSink& sink) {
    const std::int64_t now = job.system.tick();
    std::int64_t& savedAt = account.evidence.savedAt.emplace(account.evidence.savedAt.value_or(now));
    if (now - savedAt < kMillisecondsBetweenEvidence) {
        return;
    }
    savedAt = now;
    const SourceMap reached = account.map;
    for (const BlockExtent& place : sink.unconfirmed()) {
        account.map.mark(place.offset, place.length, RangeStatus::kNonTried);
    }
    saveEvidence(job, account);
    account.map = reached;
}

void beginVerification(const CopyJob& job, JobAccount& account) {
    account.evidence.record.verification = {.begin = job.system.now(), .end = {}, .outcome = std::string(kUnderWay)};
    saveRecord(job, account);
}

void endVerification(const CopyJob& job, JobAccount& account, std::string_view outcome) {
    RecordedVerification& verification = *account.evidence.record.verification;
    if (verification.end) {
        return; // told before a box that was answered since
    }
    verification.end = job.system.now();
    verification.outcome = outcome;
    saveRecord(job, account);
}

} // namespace torvane
