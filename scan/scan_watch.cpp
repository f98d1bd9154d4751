#include "scan/scan_watch.h"

#include "jobs/jobs.h"

#include <utility>

namespace torvane {

namespace {

constexpr std::chrono::seconds kLongWait{5};

} // namespace

ScanWatch::ScanWatch(const JobClaim& claim, std::function<void(const std::string&)> show)
    : claim_(claim), grace_(claim), show_(std::move(show)) {}

void ScanWatch::enterStage(std::string text) {
    stage_ = std::move(text);
    show_(stage_);
}

bool ScanWatch::mayBegin() {
    return !claim_.stopAsked();
}

bool ScanWatch::mayGoOn(const ToolAtWork& tool) {
    waitsFor(tool);
    return grace_.lasts(tool.runsSince);
}

void ScanWatch::waitsFor(const ToolAtWork& tool) {
    const auto second = std::chrono::floor<std::chrono::seconds>(tool.runsSince);
    if (second >= kLongWait && shownSecond_ != second) {
        shownSecond_ = second;
        show_(stillWaitingText(tool));
    }
}

void ScanWatch::ended() {
    grace_.ended();
    if (std::exchange(shownSecond_, std::nullopt)) {
        show_(stage_);
    }
}

} // namespace torvane
