#pragma once

#include <hpdf.h>

#include <string>

namespace torvane {

struct ReportPage;

/// Draws one line of text with its baseline `size` + `yFromTop` below the page's top edge. It begins at `x`, or stands
/// in the middle of the page when `x` is negative. `size` is the one that the line is laid out for; the size that it is
/// drawn with is the page's. Lengths are points; `text` is in the font's encoding.
void DrawTextLine(HPDF_Page page, const char* text, HPDF_Font font, float size, float x, float yFromTop);

/// What became of a page.
struct PdfOutcome {
    bool made = false;       ///< false after one "ERROR" log row: no document could be made
    std::string notSavedWhy; ///< in one line; empty: it was saved, if it was made
};

/// Writes the page as a PDF file in the current folder. An older file of that name is kept beside it (report_file.h).
/// When the file could not be saved whole, no file has changed but the new one. Whatever else goes wrong, the library's
/// error is printed on standard output and the page goes on without what failed. On any thread.
[[nodiscard]] PdfOutcome writePdfPage(const ReportPage& page, const char* fileName);

} // namespace torvane
