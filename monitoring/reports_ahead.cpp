#include "monitoring/reports_ahead.h"

#include "base/tool_watch.h"
#include "monitoring/command_runner.h"

#include <chrono>

namespace torvane {

namespace {

constexpr int kMostAtOnce = 8;

std::optional<CommandAhead> startReport(const PlannedReport& report) {
    return CommandAhead::start(report.commandLine, driveSubject(report.driveNumber));
}

} // namespace

ReportsAhead::ReportsAhead(const char* listing) : reports_(planReports(listing), kMostAtOnce, &startReport) {
    reports_.startMore();
}

ReportsAhead::~ReportsAhead() {
    // For all of them together: one that a driver holds goes only when the driver lets go of it.
    constexpr std::chrono::seconds kPatience{1};
    reports_.forEach([](CommandAhead& report) { report.kill(); });
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    reports_.forEach([&](const CommandAhead& report) { report.awaitKilled(deadline); });
}

int ReportsAhead::buildDataFile(int line, const char* fileName, const char* commandLine) {
    reports_.startMore();
    const auto isOfLine = [&](const PlannedReport& report) { return report.line == line; };
    if (CommandAhead* const report = reports_.find(isOfLine)) {
        return report->buildDataFile(fileName, [this] { reports_.startMore(); });
    }
    bool wanted = true;
    reports_.forEach([&](CommandAhead& other) { wanted = wanted && other.awaitEnd([] {}); });
    return PARSE_BuildDataFile(fileName, commandLine);
}

} // namespace torvane
