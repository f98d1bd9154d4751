#include "admin/destruction_checks.h"

#include "admin/changed_drive.h"
#include "admin/protected_drives.h"
#include "base/wide_text.h"
#include "discovery/disk_identity.h"
#include "discovery/image_place.h"
#include "discovery/windows_volume_system.h"
#include "state/app_state.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

/// An earlier job's "COMPLETED" must not stand for one that was refused.
Confirmation refuse(const AppState& state, const DriveRecord& drive) {
    state.view->setDriveStatus(drive, "Idle");
    return Confirmation::kRefused;
}

ImagePlace sourceImagePlace(const AppState& state, const Destruction& destruction) {
    if (destruction.sourceImage.empty()) {
        return ImagePlace::kElsewhere;
    }
    WindowsVolumeSystem system;
    return placeOfImage(wideText(destruction.sourceImage), destruction.drive, state.scan.volumes, system);
}

} // namespace

Confirmation checkDestruction(AppState& state, const Destruction& destruction) {
    if (sourceImagePlace(state, destruction) == ImagePlace::kOnTheDrive) {
        prompts::stop("******* WARNING *******", "You cannot copy Image to Source Drive");
        return Confirmation::kNo;
    }
    return mayBeChanged(destruction.drive) ? Confirmation::kYes : refuse(state, destruction.drive);
}

std::string imagePlaceNote(const AppState& state, const Destruction& destruction) {
    return sourceImagePlace(state, destruction) == ImagePlace::kNotTold
               ? "Windows does not tell on which drive the image lies. Make sure that it is not this one"
               : "";
}

Confirmation checkIdentity(AppState& state, const Destruction& destruction) {
    if (isStillTheProbedDisk(destruction.drive)) {
        return Confirmation::kYes;
    }
    prompts::stop(kDriveHasChanged, changedDriveText("DESTINATION").c_str());
    return refuse(state, destruction.drive);
}

} // namespace torvane
