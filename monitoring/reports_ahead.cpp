#include "monitoring/reports_ahead.h"

#include "base/format.h"
#include "monitoring/command_runner.h"

namespace torvane {

namespace {

constexpr int kMostAtOnce = 8;

std::optional<CommandAhead> startReport(const PlannedReport& report) {
    return CommandAhead::start(report.commandLine, formatText("drive %d", report.driveNumber));
}

} // namespace

ReportsAhead::ReportsAhead(const char* listing) : reports_(planReports(listing), kMostAtOnce, &startReport) {
    reports_.startMore();
}

ReportsAhead::~ReportsAhead() {
    reports_.forEach([](CommandAhead& report) { report.kill(); });
    reports_.forEach([](CommandAhead& report) { report.awaitKilled(); });
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
