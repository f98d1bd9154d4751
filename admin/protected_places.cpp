#include "admin/protected_places.h"

#include "base/format.h"
#include "discovery/disk_place.h"

#include <array>

namespace torvane {

namespace {

/// One reason for which a drive is protected.
struct Reason {
    DiskPlace place;
    const char* holds;
};

DiskPlace placeOfFolder(const std::wstring& folder, VolumeSystem& system) {
    return folder.empty() ? DiskPlace{.kind = DiskPlace::Kind::kOnNoDisk, .disks = {}} : diskPlaceOf(folder, system);
}

} // namespace

std::optional<Refusal> protectionOf(std::int32_t diskNumber, const ProtectedFolders& folders, VolumeSystem& system) {
    const DiskPlace windows = placeOfFolder(folders.windows, system);
    const DiskPlace volumeC = system.placeOfDevice(volumeDevice(L'C'));
    // Where Windows lies on another volume, whose disks are known, C: may be an empty card reader.
    if (windows.kind == DiskPlace::Kind::kNotTold ||
        (volumeC.kind == DiskPlace::Kind::kNotTold && windows.kind != DiskPlace::Kind::kOnDisks)) {
        return Refusal{"***** WINDOWS DRIVE NOT KNOWN *****",
                       "It cannot be told which drive holds Windows, so no drive is changed. Nothing was written. "
                       "Restart the computer, or see whether drive C: can be opened"};
    }
    const std::array reasons{
        Reason{windows, "Windows"},
        Reason{volumeC, "volume C:"},
        Reason{placeOfFolder(folders.program, system), "the folder that this program runs from"},
        Reason{placeOfFolder(folders.current, system), "the folder that this program works in"},
    };
    for (const Reason& reason : reasons) {
        if (reason.place.isOn(diskNumber)) {
            return Refusal{"***** PROTECTED DRIVE *****",
                           formatText("Drive %d holds %s. It is never changed. Nothing was written. Choose another "
                                      "drive",
                                      diskNumber, reason.holds)};
        }
    }
    return std::nullopt;
}

} // namespace torvane
