#pragma once

#include "monitoring/command_ahead.h"
#include "monitoring/report_plan.h"
#include "monitoring/started_ahead.h"

namespace torvane {

/// The reports of a listing's drives while they are made: eight at once, and taken one after the other in the listing's
/// order, as if each had been made in its turn. All calls on one thread; its watch (base/tool_watch.h) is asked about
/// the tool that is waited for. What was not taken when this ends is ended.
class ReportsAhead {
  public:
    /// Starts the first of them.
    explicit ReportsAhead(const char* listing);
    ~ReportsAhead();
    ReportsAhead(const ReportsAhead&) = delete;
    ReportsAhead& operator=(const ReportsAhead&) = delete;

    /// The turn of the listing's line `line` (from 0), whose drive's report is made by `commandLine`: what
    /// PARSE_BuildDataFile does, log rows and result included. A report that could not be made ahead is made now, with
    /// no other beside it.
    [[nodiscard]] int buildDataFile(int line, const char* fileName, const char* commandLine);

  private:
    StartedAhead<PlannedReport, CommandAhead> reports_;
};

} // namespace torvane
