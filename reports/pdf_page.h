#pragma once

#include <hpdf.h>

namespace torvane {

struct ReportPage;

/// Draws one line of text with its baseline `size` + `yFromTop` below the page's top edge. It begins at `x`, or stands
/// in the middle of the page when `x` is negative. `size` is the one that the line is laid out for; the size that it is
/// drawn with is the page's. Lengths are points; `text` is in the font's encoding.
void DrawTextLine(HPDF_Page page, const char* text, HPDF_Font font, float size, float x, float yFromTop);

/// Writes the page as a PDF file in the current folder. An older file of that name is kept beside it (report_file.h).
/// Returns 0 after one "ERROR" log row when no document could be made, and also after a box when the file could not be
/// saved whole: then no file has changed. Returns 1 otherwise: whatever else goes wrong, the library's error is printed
/// on standard output and the page goes on without what failed.
int writePdfPage(const ReportPage& page, const char* fileName);

} // namespace torvane
