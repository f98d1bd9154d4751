#include "details/drive_pages.h"
#include "details/tool_report.h"
#include "records/drive_record.h"
#include "tests/fuzz/fuzz_input.h"

#include <cstddef>
#include <cstdint>
#include <string>

// The tool's report as the details of a drive read it: any bytes.

using namespace torvane;
using fuzz::require;

namespace {

bool isOneLine(const std::string& cell) {
    return cell.find_first_of("\r\n\t") == std::string::npos;
}

void requireSound(const DetailPage& page) {
    require(!page.title.empty(), "every page has a title");
    require(page.columns.empty() != page.text.empty(), "a page is a table or a text");
    require(page.columns.empty() || !page.rows.empty(), "a table has a row");
    for (const DetailRow& row : page.rows) {
        require(!row.cells.empty() && row.cells.size() <= page.columns.size(), "each cell has its column");
        for (const std::string& cell : row.cells) {
            require(isOneLine(cell), "a cell is one line");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    constexpr std::size_t kPages = 7;
    DriveRecord drive;
    drive.smartText.assign(reinterpret_cast<const char*>(bytes), size);
    const ToolReport report = readToolReport(drive.smartText);
    require(report.attributes.size() <= kMostReportEntries && report.errors.size() <= kMostReportEntries &&
                report.selfTests.size() <= kMostReportEntries && report.statistics.size() <= kMostReportEntries &&
                report.identity.size() <= kMostReportEntries,
            "lists are bounded");
    const std::vector<DetailPage> pages = drivePages({.drive = drive, .volumes = {}, .readOnly = {}});
    require(pages.size() == kPages, "every drive has every page");
    for (const DetailPage& page : pages) {
        requireSound(page);
    }
    require(!pagesAsText("drive", pages).empty(), "the pages are a text");
    return 0;
}
