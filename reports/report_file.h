#pragma once

#include <string>

namespace torvane {

/// The file that a report is written into before it is given its name: "ReportX.pdf.new", in the same folder.
[[nodiscard]] std::string newReportFileName(const char* fileName);

/// Gives the new report, whole by now, its name. An older report of that name is kept beside it, with the date of its
/// last writing in its name; it gives way only now, and is put back when the new one cannot take its place. Returns why
/// the new report could not be placed, in one line; "" when it was.
[[nodiscard]] std::string placeNewReport(const char* fileName);

/// The report could not be saved for that reason: removes what there is of the new one, writes an "ERROR" log row and
/// tells the user in a box.
void reportNotSaved(const char* fileName, const std::string& reason);

} // namespace torvane
