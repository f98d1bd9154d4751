#include "window/command_guards.h"

#include "jobs/job_rules.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "state/last_drive_job.h"
#include "state/still_at_work.h"
#include "ui/prompts.h"

#include <algorithm>

namespace torvane {

namespace {

struct TickTexts {
    const char* noneCaption;
    const char* none;
    const char* several;
};

DriveRecord* requireOne(const std::vector<DriveRecord*>& ticked, const TickTexts& texts) {
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

DriveRecord* requireOneToImage(const AppState& state, const TickTexts& texts) {
    const std::vector<DriveRecord*> ticked = state.view->tickedDrives();
    // A drive of unknown size, all ones, ends the command without a word.
    const auto isSizeless = [](const DriveRecord* drive) { return drive->sizeBytes == -1; };
    return std::any_of(ticked.begin(), ticked.end(), isSizeless) ? nullptr : requireOne(ticked, texts);
}

} // namespace

DriveRecord* requireDriveToClone(const AppState& state) {
    return requireOne(state.view->tickedDrives(),
                      {"***** ERROR Choose Drive To Clone *****", "You must choose one drive to clone",
                       "You may only choose one drive to clone"});
}

DriveRecord* requireDriveToImage(const AppState& state) {
    // The caption and the second text speak of cloning: the two commands share them.
    return requireOneToImage(state,
                             {"***** ERROR Choose Drive To Clone *****", "You must choose at least one drive to image",
                              "You may only choose one drive to clone"});
}

DriveRecord* requireDriveToImageForensically(const AppState& state) {
    return requireOneToImage(state,
                             {"***** ERROR Choose Drive To Image *****", "You must choose at least a drive to image",
                              "You may only choose one drive to image"});
}

DriveRecord* requireDriveToRescue(const AppState& state) {
    return requireOneToImage(state, {"***** CHOOSE A DRIVE TO RESCUE *****", "Please tick the drive to rescue",
                                     "Please tick only one drive to rescue"});
}

bool requireListedDrives(const AppState& state) {
    if (state.view->driveRowCount() > 0) {
        return true;
    }
    // The stray quotation mark is part of the text.
    prompts::stop("***** ERROR Listed Drives *****", "Please 'use 'Load Drives' from 'Tasks' Menu");
    return false;
}

bool lastDriveJobIsStillEnding(const Jobs& jobs) {
    const JobKinds atWork = jobs.atWork() & kOneAtATime;
    if (atWork.empty()) {
        return false;
    }
    LogEvent("STATUS", "%s", kLastDriveJobStillEnding);
    sayWhoIsAtWork({.kinds = atWork});
    return true;
}

} // namespace torvane
