#include "reports/pdf_page.h"

#include "base/bytes.h"
#include "base/stdio_file.h"
#include "base/system_error.h"
#include "base/whole_file.h"
#include "base/wide_text.h"
#include "reports/logo_picture.h"
#include "reports/logo_place.h"
#include "reports/png_check.h"
#include "reports/report_file.h"
#include "reports/report_page.h"
#include "reports/windows_1252.h"
#include "state/event_log.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace torvane {

namespace {

void printPdfError(HPDF_STATUS error, HPDF_STATUS detail, void* /*userData*/) {
    std::printf("ERROR: error_no=%04X, detail_no=%u\n", static_cast<unsigned>(error), static_cast<unsigned>(detail));
}

struct PdfDocumentDeleter {
    void operator()(HPDF_Doc document) const { HPDF_Free(document); }
};
using PdfDocument = std::unique_ptr<std::remove_pointer_t<HPDF_Doc>, PdfDocumentDeleter>;

std::string toPdfText(std::string_view text) {
    const std::wstring wide = wideText(text);
    return toWindows1252(std::u16string(wide.begin(), wide.end()));
}

// Without an encoding of its own, the font draws ASCII alone, and even of that the two straight quotation marks as
// curly ones.
bool needsEncoding(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char character) {
        return static_cast<unsigned char>(character) >= 0x80 || character == '\'' || character == '`';
    });
}

HPDF_Font fontFor(HPDF_Doc document, std::string_view text) {
    return HPDF_GetFont(document, "Helvetica", needsEncoding(text) ? "WinAnsiEncoding" : nullptr);
}

/// Pictures of a document, each loaded once.
class IconLoader {
  public:
    explicit IconLoader(HPDF_Doc document) : document_(document) {}

    /// Null when its file is missing or damaged.
    HPDF_Image load(ReportIcon icon) {
        const auto known = images_.find(icon);
        return known != images_.end() ? known->second : images_[icon] = loadFile(reportIconFile(icon));
    }

  private:
    [[nodiscard]] HPDF_Image loadFile(const char* fileName) const {
        const std::vector<std::uint8_t> bytes = readSmallFile(fileName);
        if (!bytes.empty() && !isWholePng(bytes)) {
            printPdfError(HPDF_INVALID_PNG_IMAGE, 0, nullptr);
            return nullptr;
        }
        return HPDF_LoadPngImageFromFile(document_, fileName);
    }

    HPDF_Doc document_;
    std::map<ReportIcon, HPDF_Image> images_;
};

void openAtTop(HPDF_Doc document, HPDF_Page page) {
    HPDF_Destination destination = HPDF_Page_CreateDestination(page);
    HPDF_Destination_SetXYZ(destination, 0, HPDF_Page_GetHeight(page), 1);
    HPDF_SetOpenAction(document, destination);
}

void drawLine(HPDF_Doc document, HPDF_Page page, const ReportLine& line, int left) {
    const std::string text = toPdfText(line.text);
    HPDF_Font font = fontFor(document, text);
    HPDF_Page_SetFontAndSize(page, font, static_cast<HPDF_REAL>(line.fontSize));
    HPDF_Page_SetRGBFill(page, line.colour.red, line.colour.green, line.colour.blue);
    DrawTextLine(page, text.c_str(), font, static_cast<float>(line.layoutSize), static_cast<float>(left),
                 static_cast<float>(line.yFromTop));
}

void drawIcon(HPDF_Page page, HPDF_Image image, const PlacedReportIcon& placed, HPDF_REAL width, HPDF_REAL height) {
    const HPDF_REAL x = HPDF_Page_GetWidth(page) - static_cast<HPDF_REAL>(placed.fromRight);
    const HPDF_REAL y = HPDF_Page_GetHeight(page) - static_cast<HPDF_REAL>(placed.fromTop);
    HPDF_Page_DrawImage(page, image, x, y, width, height);
}

void drawLogo(HPDF_Doc document, HPDF_Page page) {
    const LogoReading logo = readLogo(kLogoFileName);
    if (!logo.error.empty()) {
        LogEvent("ERROR", "The report goes without its logo [%s]: %s", kLogoFileName, logo.error.c_str());
    }
    if (!logo.picture) {
        return;
    }
    const LogoPicture& picture = *logo.picture;
    if (HPDF_Image image =
            HPDF_LoadRawImageFromMem(document, picture.pixels.data(), static_cast<HPDF_UINT>(picture.width),
                                     static_cast<HPDF_UINT>(picture.height), HPDF_CS_DEVICE_RGB, 8)) {
        const LogoPlace place = placeLogo(picture.width, picture.height);
        HPDF_Page_DrawImage(page, image, place.left, HPDF_Page_GetHeight(page) - place.top - place.height, place.width,
                            place.height);
    }
}

// The library remembers an error until it is told otherwise, and would report it again at its next call.
void carryOn(HPDF_Doc document) {
    HPDF_ResetError(document);
}

void drawPage(HPDF_Doc document, HPDF_Page page, const ReportPage& report) {
    for (const ReportLine& line : report.lines) {
        drawLine(document, page, line, kReportLeft);
        carryOn(document);
    }
    for (const FreeReportLine& line : report.freeLines) {
        drawLine(document, page, line, line.left);
        carryOn(document);
    }
    IconLoader icons(document);
    for (const PlacedReportIcon& placed : report.icons) {
        if (HPDF_Image image = icons.load(placed.icon)) {
            drawIcon(page, image, placed, static_cast<HPDF_REAL>(HPDF_Image_GetWidth(image)),
                     static_cast<HPDF_REAL>(HPDF_Image_GetHeight(image)));
        }
        carryOn(document);
    }
    for (const FreeReportIcon& placed : report.freeIcons) {
        if (HPDF_Image image = icons.load(placed.icon)) {
            drawIcon(page, image, placed, static_cast<HPDF_REAL>(placed.size), static_cast<HPDF_REAL>(placed.size));
        }
        carryOn(document);
    }
    drawLogo(document, page);
    carryOn(document);
}

/// The document's bytes; none when the library could not make them.
std::optional<std::string> bytesOf(HPDF_Doc document) {
    if (HPDF_SaveToStream(document) != HPDF_OK) {
        return std::nullopt;
    }
    HPDF_ResetStream(document);
    auto size = static_cast<HPDF_UINT32>(HPDF_GetStreamSize(document));
    std::string bytes(size, '\0');
    // At the end of the stream the library tells so in place of a success.
    HPDF_ReadFromStream(document, reinterpret_cast<HPDF_BYTE*>(bytes.data()), &size);
    return size == bytes.size() ? std::optional(std::move(bytes)) : std::nullopt;
}

/// Why the document could not be saved, in one line; "" when it was. The library itself opens no file for writing: it
/// takes names in the code page alone, and short ones.
std::string saveDocument(HPDF_Doc document, const char* fileName) {
    const std::optional<std::string> bytes = bytesOf(document);
    if (!bytes) {
        return "there is not enough memory.";
    }
    const std::string newName = newReportFileName(fileName);
    SetLastError(NO_ERROR);
    if (writeWholeFile(newName, *bytes)) {
        return placeNewReport(fileName);
    }
    const DWORD error = GetLastError();
    return error == NO_ERROR || error == ERROR_DISK_FULL ? "not all of it could be written. The disk may be full."
                                                         : systemErrorText(error);
}

} // namespace

void DrawTextLine(HPDF_Page page, const char* text, HPDF_Font font, float size, float x, float yFromTop) {
    const HPDF_TextWidth units =
        HPDF_Font_TextWidth(font, reinterpret_cast<const HPDF_BYTE*>(text), static_cast<HPDF_UINT>(std::strlen(text)));
    const float width = static_cast<float>(units.width) * size / 1000;
    const float left = x >= 0 ? x : (HPDF_Page_GetWidth(page) - width) / 2;
    HPDF_Page_BeginText(page);
    HPDF_Page_MoveTextPos(page, left, HPDF_Page_GetHeight(page) - size - yFromTop);
    HPDF_Page_ShowText(page, text);
    HPDF_Page_EndText(page);
}

PdfOutcome writePdfPage(const ReportPage& page, const char* fileName) {
    const PdfDocument document(HPDF_New(printPdfError, nullptr));
    if (!document) {
        LogEvent("ERROR", "Could not initialize PDF document");
        return {};
    }
    HPDF_SetCompressionMode(document.get(), HPDF_COMP_ALL);
    HPDF_Page sheet = HPDF_AddPage(document.get());
    openAtTop(document.get(), sheet);
    drawPage(document.get(), sheet, page);
    return {.made = true, .notSavedWhy = saveDocument(document.get(), fileName)};
}

} // namespace torvane
