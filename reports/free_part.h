#pragma once

namespace torvane {

struct ReportFacts;
struct ReportPage;

/// Adds what stands below a report's own lines: interface, capacity and firmware, the verdict in words, an NVMe drive's
/// wear, and the key to the icons where the report has some. `top`: points from the page's upper edge to where the free
/// part begins. A row that would leave the page is left out; no line of the report moves.
void addFreePart(ReportPage& page, const ReportFacts& facts, int top);

} // namespace torvane
