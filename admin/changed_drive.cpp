#include "admin/changed_drive.h"

namespace torvane {

const char* changedDriveConsequence(DiskChange end) {
    switch (end) {
    case DiskChange::kOtherDrive:
        return "Nothing was changed";
    case DiskChange::kDriveLost:
        return "What diskpart has changed is not known";
    default:
        return nullptr;
    }
}

std::string changedDriveText(std::string_view role, std::string_view untouched) {
    return std::string("The ")
        .append(role)
        .append(" is not the drive that was loaded any more, or it does not answer. ")
        .append(untouched)
        .append(". Load the drives again");
}

} // namespace torvane
