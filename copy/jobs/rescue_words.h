#pragma once

#include "copy/rescue/rescue_run.h"

#include <string>

namespace torvane {

/// What the rescue is at: "Copying, pass 1", "Trimming", "Scraping", "Retrying, pass 2".
[[nodiscard]] std::string rescueStepInWords(const RescueStep& step);

/// "Rescued 41.2 GB, missing 1.5 MB, bad 12 KB in 3 areas, untried 424.6 GB". What there is nothing of is left out but
/// for the rescued.
[[nodiscard]] std::string rescueAmountsInWords(const RescueFigures& figures);

/// "118 MB/s, 3 failed reads of 12,345, slowest read 2.1 s, last good read 0:00:04 ago".
[[nodiscard]] std::string rescueReadsInWords(const RescueFigures& figures);

} // namespace torvane
