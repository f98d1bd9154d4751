// How the panel is drawn: with which calls, pens, fonts and pictures, and what is left of them afterwards.

#include "base/wide_text.h"
#include "tests/component/health_panel_fixture.h"
#include "tests/component/import_patched.h"

#include <gmock/gmock.h>

#include <objidl.h>

#include <gdiplus.h>

#include <string>
#include <string_view>
#include <vector>

// The program's import slots of what the painter calls.
extern "C" {
extern decltype(&BitBlt) __imp_BitBlt;             // NOLINT(bugprone-reserved-identifier): the linker's name
extern decltype(&DrawTextW) __imp_DrawTextW;       // NOLINT(bugprone-reserved-identifier)
extern decltype(&DeleteObject) __imp_DeleteObject; // NOLINT(bugprone-reserved-identifier)
extern decltype(&Gdiplus::DllExports::GdipLoadImageFromFile)
    __imp_GdipLoadImageFromFile;                                                // NOLINT(bugprone-reserved-identifier)
extern decltype(&Gdiplus::DllExports::GdipDisposeImage) __imp_GdipDisposeImage; // NOLINT(bugprone-reserved-identifier)
extern decltype(&Gdiplus::DllExports::GdipCreatePen1) __imp_GdipCreatePen1;     // NOLINT(bugprone-reserved-identifier)
extern decltype(&Gdiplus::DllExports::GdipSetPenStartCap)
    __imp_GdipSetPenStartCap;                                                   // NOLINT(bugprone-reserved-identifier)
extern decltype(&Gdiplus::DllExports::GdipSetPenEndCap) __imp_GdipSetPenEndCap; // NOLINT(bugprone-reserved-identifier)
extern decltype(&Gdiplus::DllExports::GdipDrawLineI) __imp_GdipDrawLineI;       // NOLINT(bugprone-reserved-identifier)
}

namespace torvane {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using testing::gdiObjectCount;
using testing::ImportPatched;
using ::testing::IsEmpty;
using ::testing::SizeIs;

struct Transfer {
    HDC target;
    RECT place;
    POINT source;
    DWORD operation;
};

struct Caption {
    std::string text;
    RECT box;
    UINT format;
    LOGFONTA font;
    COLORREF colour;
    int background;
};

struct Pen {
    Gdiplus::ARGB colour = 0;
    float width = 0;
    int startCap = 0;
    int endCap = 0;

    friend bool operator==(const Pen&, const Pen&) = default;
};

struct Line {
    int fromX;
    int fromY;
    int toX;
    int toY;

    friend bool operator==(const Line&, const Line&) = default;
};

void PrintTo(const Line& line, std::ostream* stream) {
    *stream << line.fromX << "," << line.fromY << " to " << line.toX << "," << line.toY;
}

void PrintTo(const Pen& pen, std::ostream* stream) {
    *stream << std::hex << pen.colour << std::dec << " width " << pen.width << " caps " << pen.startCap << " "
            << pen.endCap;
}

/// What the painter has called since `startRecording`.
struct Recording {
    std::vector<Transfer> transfers;
    std::vector<Caption> captions;
    std::vector<std::string> loadedPictures;
    int releasedPictures = 0;
    Pen pen; ///< the last one made
    std::vector<Pen> linePens;
    std::vector<Line> lines;
};

Recording recording;

BOOL WINAPI recordTransfer(HDC target, int x, int y, int width, int height, HDC, int sourceX, int sourceY,
                           DWORD operation) {
    recording.transfers.push_back({target, {x, y, x + width, y + height}, {sourceX, sourceY}, operation});
    return TRUE;
}

BOOL WINAPI keepObject(HGDIOBJ) {
    return TRUE;
}

class HealthPanelDrawing : public HealthPanelFixture {
  protected:
    void SetUp() override {
        HealthPanelFixture::SetUp();
        recording = {};
    }

    /// Paints with every drawing call recorded and still made.
    void paintRecorded(DriveRecord& drive);
};

decltype(&DrawTextW) realDrawText;
decltype(&Gdiplus::DllExports::GdipLoadImageFromFile) realLoadImage;
decltype(&Gdiplus::DllExports::GdipDisposeImage) realDisposeImage;
decltype(&Gdiplus::DllExports::GdipCreatePen1) realCreatePen;
decltype(&Gdiplus::DllExports::GdipSetPenStartCap) realStartCap;
decltype(&Gdiplus::DllExports::GdipSetPenEndCap) realEndCap;
decltype(&Gdiplus::DllExports::GdipDrawLineI) realDrawLine;

int WINAPI recordCaption(HDC context, LPCWSTR text, int length, LPRECT box, UINT format) {
    Caption caption{ansiText(std::wstring_view(text, static_cast<std::size_t>(length))),
                    *box,
                    format,
                    {},
                    GetTextColor(context),
                    GetBkMode(context)};
    GetObjectA(GetCurrentObject(context, OBJ_FONT), sizeof caption.font, &caption.font);
    recording.captions.push_back(caption);
    return realDrawText(context, text, length, box, format);
}

Gdiplus::GpStatus WINGDIPAPI recordLoading(const WCHAR* name, Gdiplus::GpImage** image) {
    recording.loadedPictures.push_back(std::filesystem::path(name).string());
    return realLoadImage(name, image);
}

Gdiplus::GpStatus WINGDIPAPI recordRelease(Gdiplus::GpImage* image) {
    ++recording.releasedPictures;
    return realDisposeImage(image);
}

Gdiplus::GpStatus WINGDIPAPI recordPen(Gdiplus::ARGB colour, float width, Gdiplus::GpUnit unit, Gdiplus::GpPen** pen) {
    recording.pen = {colour, width, 0, 0};
    return realCreatePen(colour, width, unit, pen);
}

Gdiplus::GpStatus WINGDIPAPI recordStartCap(Gdiplus::GpPen* pen, Gdiplus::GpLineCap cap) {
    recording.pen.startCap = cap;
    return realStartCap(pen, cap);
}

Gdiplus::GpStatus WINGDIPAPI recordEndCap(Gdiplus::GpPen* pen, Gdiplus::GpLineCap cap) {
    recording.pen.endCap = cap;
    return realEndCap(pen, cap);
}

Gdiplus::GpStatus WINGDIPAPI recordLine(Gdiplus::GpGraphics* graphics, Gdiplus::GpPen* pen, INT x1, INT y1, INT x2,
                                        INT y2) {
    recording.linePens.push_back(recording.pen);
    recording.lines.push_back({x1, y1, x2, y2});
    return realDrawLine(graphics, pen, x1, y1, x2, y2);
}

void HealthPanelDrawing::paintRecorded(DriveRecord& drive) {
    realDrawText = __imp_DrawTextW;
    realLoadImage = __imp_GdipLoadImageFromFile;
    realDisposeImage = __imp_GdipDisposeImage;
    realCreatePen = __imp_GdipCreatePen1;
    realStartCap = __imp_GdipSetPenStartCap;
    realEndCap = __imp_GdipSetPenEndCap;
    realDrawLine = __imp_GdipDrawLineI;
    const ImportPatched captions(__imp_DrawTextW, &recordCaption);
    const ImportPatched loading(__imp_GdipLoadImageFromFile, &recordLoading);
    const ImportPatched release(__imp_GdipDisposeImage, &recordRelease);
    const ImportPatched pens(__imp_GdipCreatePen1, &recordPen);
    const ImportPatched startCaps(__imp_GdipSetPenStartCap, &recordStartCap);
    const ImportPatched endCaps(__imp_GdipSetPenEndCap, &recordEndCap);
    const ImportPatched lines(__imp_GdipDrawLineI, &recordLine);
    recording = {};
    paint(drive);
}

TEST_F(HealthPanelDrawing, ReachesTheScreenInOneTransfer) {
    constexpr COLORREF kUntouched = RGB(255, 0, 255);
    const RECT all{0, 0, kWidth, kHeight};
    canvas_.fill(kUntouched);
    for (DriveRecord& drive : driveOfEachLayout()) {
        recording = {};
        {
            const ImportPatched patched(__imp_BitBlt, &recordTransfer);
            paint(drive);
        }
        ASSERT_THAT(recording.transfers, SizeIs(1)) << drive.smartType;
        const Transfer& transfer = recording.transfers.front();
        EXPECT_EQ(transfer.target, canvas_.context());
        EXPECT_EQ(transfer.operation, static_cast<DWORD>(SRCCOPY));
        EXPECT_TRUE(EqualRect(&transfer.place, &all));
        EXPECT_EQ(transfer.source.x, 0);
        EXPECT_EQ(transfer.source.y, 0);
        // The transfer was kept back, so nothing else may have drawn on the screen.
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                ASSERT_EQ(canvas_.at(x, y), kUntouched) << x << ", " << y << " of " << drive.smartType;
            }
        }
    }
}

TEST_F(HealthPanelDrawing, LoadsEachPictureOncePerPaintAndReleasesIt) {
    auto drives = driveOfEachLayout();
    const std::array<std::vector<std::string>, 4> expected{{
        {"gauge-labels2.png", "sw-gauge-poh-small.png", "sw-gauge-small.png", "engine-check-green.png"},
        {"sw-gauge-poh-small.png", "sw-gauge-small.png"},
        {"sw-gauge-poh-small.png", "passfail-gauge.png"},
        {"sw-gauge-small.png"},
    }};
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < drives.size(); ++i) {
            paintRecorded(drives[i]);
            EXPECT_EQ(recording.loadedPictures, expected[i]);
            EXPECT_EQ(recording.releasedPictures, static_cast<int>(expected[i].size()));
        }
    }
}

TEST_F(HealthPanelDrawing, LoadsTheLabelsOfAStandardPanelWithoutAReportToo) {
    DriveRecord drive = soundDrive();
    drive.smartLoaded = 0;
    paintRecorded(drive);
    EXPECT_THAT(recording.loadedPictures, ElementsAre("gauge-labels2.png", "sw-gauge-poh-small.png",
                                                      "sw-gauge-small.png", "engine-check-white.png"));
}

TEST_F(HealthPanelDrawing, NeedlesEndAtTheirPixels) {
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kPowerOnHours] = 30000;
    drive.disk[Counter::kReallocatedSectors] = 0;
    drive.disk[Counter::kReallocationEvents] = 19;
    drive.disk[Counter::kPendingSectors] = 20;
    drive.disk[Counter::kOfflineUncorrectable] = 80;
    drive.disk[Counter::kReportedUncorrectable] = 250;
    paintRecorded(drive);
    EXPECT_THAT(recording.lines,
                ElementsAre(Line{70, 194, 69, 147}, Line{250, 194, 195, 194}, Line{430, 194, 384, 163},
                            Line{610, 194, 572, 166}, Line{790, 194, 834, 161}, Line{970, 194, 1024, 193}));
}

TEST_F(HealthPanelDrawing, NeedlePenIsThickAndBlackWithARoundFootAndAnArrow) {
    for (DriveRecord& drive : driveOfEachLayout()) {
        paintRecorded(drive);
        EXPECT_THAT(recording.linePens, SizeIs(drive.smartType == kSmartTypeUnknown ? 0 : 6));
        EXPECT_THAT(recording.linePens, Each(Pen{0xFF000000, 5.0F, 18, 20}));
    }
}

TEST_F(HealthPanelDrawing, CaptionsAreWrittenInTheirBoxesInTheirFont) {
    constexpr std::array<int, 6> kLeft{0, 180, 360, 540, 720, 900};
    DriveRecord drive = soundDrive();
    paintRecorded(drive);
    ASSERT_THAT(recording.captions, SizeIs(6));
    for (std::size_t i = 0; i < kLeft.size(); ++i) {
        const Caption& caption = recording.captions[i];
        const RECT box{kLeft[i], 224, kLeft[i] + 140, 244};
        EXPECT_TRUE(EqualRect(&caption.box, &box)) << caption.text;
        EXPECT_EQ(caption.format & ~UINT{DT_NOPREFIX}, UINT{DT_CENTER | DT_VCENTER | DT_SINGLELINE}) << caption.text;
        EXPECT_STREQ(caption.font.lfFaceName, "Calibri");
        EXPECT_EQ(caption.font.lfHeight, 20);
        EXPECT_EQ(caption.font.lfWeight, 100);
        EXPECT_EQ(caption.font.lfCharSet, ANSI_CHARSET);
        EXPECT_EQ(caption.font.lfQuality, PROOF_QUALITY);
        EXPECT_EQ(caption.colour, RGB(0, 0, 0));
        EXPECT_EQ(caption.background, TRANSPARENT);
    }
}

std::vector<std::string> texts(const std::vector<Caption>& captions) {
    std::vector<std::string> all;
    for (const Caption& caption : captions) {
        if (!caption.text.empty()) {
            all.push_back(caption.text);
        }
    }
    return all;
}

TEST_F(HealthPanelDrawing, CaptionsNameTheDials) {
    auto [standard, ssd, nvme, unknown] = driveOfEachLayout();
    paintRecorded(standard);
    EXPECT_THAT(texts(recording.captions), ElementsAre("Power On Hours", "Moved Errors", "Slow Sectors",
                                                       "Pending Sectors", "Uncorrectable Errors", "Reported Errors"));
    paintRecorded(ssd);
    EXPECT_THAT(texts(recording.captions), ElementsAre("POH", "Moved Errors", "Slow Sectors", "Pending Sectors",
                                                       "Uncorrectable Errors", "Reported Errors"));
    paintRecorded(nvme);
    EXPECT_THAT(texts(recording.captions), ElementsAre("Gigabytes Written", "Available Space", "Temp Threshold",
                                                       "NVM Sub-System", "Read-Only Mode", "Volatile Memory"));
    paintRecorded(unknown);
    EXPECT_THAT(texts(recording.captions), IsEmpty());
}

class HealthPanelResources : public HealthPanelDrawing {
  protected:
    void SetUp() override {
        HealthPanelDrawing::SetUp();
        paintAll(8); // what the system keeps for itself after the first use
    }

    void paintAll(int repaints) {
        for (int i = 0; i < repaints; ++i) {
            paint(drives_[static_cast<std::size_t>(i) % drives_.size()]);
        }
    }

  private:
    std::array<DriveRecord, 4> drives_ = driveOfEachLayout();
};

TEST_F(HealthPanelResources, NoGdiObjectIsLeftBehind) {
    const int before = gdiObjectCount();
    ASSERT_GT(before, 0);
    paintAll(200);
    EXPECT_EQ(gdiObjectCount(), before);
}

TEST_F(HealthPanelResources, TheCountSeesObjectsThatLive) {
    const int before = gdiObjectCount();
    std::vector<UniqueBrush> brushes(20);
    for (UniqueBrush& brush : brushes) {
        brush.reset(CreateSolidBrush(RGB(1, 2, 3)));
    }
    const UniqueMemoryDc context{CreateCompatibleDC(nullptr)};
    EXPECT_EQ(gdiObjectCount(), before + 21);
    brushes.clear();
    EXPECT_EQ(gdiObjectCount(), before + 1);
}

TEST_F(HealthPanelResources, TheCountSeesWhatAPainterWouldLeave) {
    constexpr int kRepaints = 8;
    const int before = gdiObjectCount();
    {
        const ImportPatched patched(__imp_DeleteObject, &keepObject);
        paintAll(kRepaints);
    }
    // Bitmap, brush and font of each repaint.
    EXPECT_EQ(gdiObjectCount(), before + 3 * kRepaints);
}

} // namespace
} // namespace torvane
