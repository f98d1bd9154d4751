#include "admin/destruction_checks.h"

#include "admin/changed_drive.h"
#include "admin/protected_drives.h"
#include "admin/volume_identity.h"
#include "base/wide_text.h"
#include "discovery/disk_identity.h"
#include "discovery/handle_lease.h"
#include "discovery/image_place.h"
#include "discovery/volumes_on_drive.h"
#include "discovery/windows_volume_system.h"
#include "state/app_state.h"
#include "ui/prompts.h"
#include "ui/waiting.h"

#include <memory>

namespace torvane {

namespace {

/// An earlier job's "COMPLETED" must not stand for one that was refused.
Confirmation refuse(const AppState& state, const DriveRecord& drive) {
    state.view->setDriveStatus(drive, "Idle");
    return Confirmation::kRefused;
}

/// What the checks go by, on whatever thread they ask: nothing of it belongs to anybody else.
struct Question {
    Question(const AppState& state, const Destruction& destruction)
        : drive(destruction.drive), volumes(state.scan.volumes), sourceImage(destruction.sourceImage) {}

    LeasedDrive drive;
    VolumeTable volumes;
    std::string sourceImage;
};

/// What `ask` returns, on another thread; none when the user has left.
template <typename Answer>
std::optional<Answer> askElsewhere(const char* whom, const AppState& state, const Destruction& destruction,
                                   Answer (*ask)(const Question&)) {
    const auto question = std::make_shared<const Question>(state, destruction);
    return waiting::resultOf(whom, [question, ask] { return ask(*question); });
}

ImagePlace sourceImagePlace(const Question& question) {
    if (question.sourceImage.empty()) {
        return ImagePlace::kElsewhere;
    }
    WindowsVolumeSystem system;
    return placeOfImage(wideText(question.sourceImage), question.drive.record, question.volumes, system);
}

std::string imagePlaceNote(ImagePlace place) {
    return place == ImagePlace::kNotTold
               ? "Windows does not tell on which drive the image lies. Make sure that it is not this one"
               : "";
}

WarningFacts warningFacts(const Question& question) {
    WindowsVolumeSystem system;
    const DriveRecord& drive = question.drive.record;
    return {.rows = warningRows(drive, volumeRootsOn(drive, question.volumes, system), readVolumeIdentity,
                                readVolumeLength),
            .note = imagePlaceNote(sourceImagePlace(question))};
}

} // namespace

Confirmation checkDestruction(AppState& state, const Destruction& destruction) {
    const auto place = askElsewhere("the volumes", state, destruction, sourceImagePlace);
    if (!place) {
        return Confirmation::kNo;
    }
    if (*place == ImagePlace::kOnTheDrive) {
        prompts::stop("******* WARNING *******", "You cannot copy Image to Source Drive");
        return Confirmation::kNo;
    }
    const std::optional<bool> allowed = mayBeChanged(destruction.drive);
    if (!allowed) {
        return Confirmation::kNo;
    }
    return *allowed ? Confirmation::kYes : refuse(state, destruction.drive);
}

std::optional<WarningFacts> askForWarning(const AppState& state, const Destruction& destruction) {
    return askElsewhere("the volumes", state, destruction, warningFacts);
}

Confirmation checkIdentity(AppState& state, const Destruction& destruction) {
    const auto same = askElsewhere<bool>("the drive", state, destruction, [](const Question& question) {
        return isStillTheProbedDisk(question.drive.record);
    });
    if (!same) {
        return Confirmation::kNo;
    }
    if (*same) {
        return Confirmation::kYes;
    }
    prompts::stop(kDriveHasChanged, changedDriveText("DESTINATION").c_str());
    return refuse(state, destruction.drive);
}

} // namespace torvane
