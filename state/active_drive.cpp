#include "state/active_drive.h"

#include "state/app_state.h"
#include "ui/prompts.h"

namespace torvane {

bool hasActiveDrive(const AppState& state) {
    return state.activeDriveChosen == 1 && state.activeDrive != nullptr;
}

DriveRecord* requireActiveDrive(const AppState& state, const char* text) {
    if (!hasActiveDrive(state)) {
        prompts::stop("***** NO ACTIVE DRIVE *****", text);
        return nullptr;
    }
    return state.activeDrive;
}

} // namespace torvane
