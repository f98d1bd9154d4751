#include "app/command_guards.h"

#include "app/app_state.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

struct TickTexts {
    const char* noneCaption;
    const char* none;
    const char* several;
};

DriveRecord* requireOneTickedDrive(const AppState& state, const TickTexts& texts) {
    const std::vector<DriveRecord*> ticked = state.view->tickedDrives();
    if (ticked.empty()) {
        prompts::stop(texts.noneCaption, texts.none);
        return nullptr;
    }
    if (ticked.size() > 1) {
        prompts::stop("***** ERROR Too Many Drives *****", texts.several);
        return nullptr;
    }
    return ticked.front();
}

} // namespace

DriveRecord* requireActiveDrive(const AppState& state, const char* text) {
    if (!hasActiveDrive(state)) {
        prompts::stop("***** NO ACTIVE DRIVE *****", text);
        return nullptr;
    }
    return state.activeDrive;
}

DriveRecord* requireDriveToClone(const AppState& state) {
    return requireOneTickedDrive(state,
                                 {"***** ERROR Choose Drive To Clone *****", "You must choose one drive to clone",
                                  "You may only choose one drive to clone"});
}

DriveRecord* requireDriveToImage(const AppState& state) {
    // The caption and the second text speak of cloning on purpose: the two commands share them.
    return requireOneTickedDrive(state, {"***** ERROR Choose Drive To Clone *****",
                                         "You must choose at least one drive to image",
                                         "You may only choose one drive to clone"});
}

DriveRecord* requireDriveToImageForensically(const AppState& state) {
    return requireOneTickedDrive(state, {"***** ERROR Choose Drive To Image *****",
                                         "You must choose at least a drive to image",
                                         "You may only choose one drive to image"});
}

bool requireListedDrives(const AppState& state) {
    if (state.view->driveRowCount() > 0) {
        return true;
    }
    // The stray quotation mark is part of the text.
    prompts::stop("***** ERROR Listed Drives *****", "Please 'use 'Load Drives' from 'Tasks' Menu");
    return false;
}

} // namespace torvane
