#include "copy/dialogs/race_track_view.h"

#include "copy/jobs/track.h"
#include "state/race_track_state.h"
#include "tests/component/canvas.h"
#include "tests/component/handle_count.h"
#include "tests/component/import_patched.h"
#include "tests/component/scratch_folder.h"
#include "ui/gdi_plus.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <thread>
#include <vector>

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&MsgWaitForMultipleObjects) __imp_MsgWaitForMultipleObjects;
extern decltype(&Gdiplus::DllExports::GdipLoadImageFromFile) __imp_GdipLoadImageFromFile;
extern decltype(&Gdiplus::DllExports::GdipDisposeImage) __imp_GdipDisposeImage;
extern decltype(&Gdiplus::DllExports::GdipCreateFromHDC) __imp_GdipCreateFromHDC;
extern decltype(&Gdiplus::DllExports::GdipDeleteGraphics) __imp_GdipDeleteGraphics;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using testing::Canvas;
using testing::gdiObjectCount;
using testing::ImportPatched;
using testing::openHandleCount;

// The client area of the clone dialog.
constexpr int kWidth = 980;
constexpr int kHeight = 388;
constexpr COLORREF kDialogColour = RGB(0xDA, 0xDF, 0xEA);

constexpr std::array kScenes{TrackScene::kClone, TrackScene::kImage, TrackScene::kForensicImage,
                             TrackScene::kImageToDrive};

using Pixels = std::vector<std::uint32_t>;

/// What the painter shows before each of its pauses, instead of pausing.
struct Pauses {
    const Canvas* canvas = nullptr;
    std::vector<DWORD> milliseconds;
    std::vector<Pixels> shown;
};

Pauses* pauses = nullptr;

DWORD WINAPI recordPause(DWORD, const HANDLE*, BOOL, DWORD milliseconds, DWORD) {
    if (pauses != nullptr) {
        pauses->milliseconds.push_back(milliseconds);
        pauses->shown.push_back(pauses->canvas->pixels());
    }
    return WAIT_TIMEOUT;
}

class RaceTrackView : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(gdiPlus_.start());
        testing::layOutPictures();
        state_.carX = 310;
        state_.carY = kCloneCarY;
    }

    void paint(TrackScene scene) { paintRaceTrack(canvas_.context(), scene, state_, Scale{}); }

    /// Paints without pausing; what was shown in between.
    Pauses paintInFrames(TrackScene scene) {
        Pauses seen;
        seen.canvas = &canvas_;
        const ImportPatched patched(__imp_MsgWaitForMultipleObjects, &recordPause);
        pauses = &seen;
        paint(scene);
        pauses = nullptr;
        return seen;
    }

    struct Placed {
        const wchar_t* picture;
        int x;
        int y;
    };

    /// The dialog's colour with these pictures on it, in this order.
    [[nodiscard]] static Pixels composed(const std::vector<Placed>& pictures) {
        const Canvas canvas(kWidth, kHeight);
        canvas.fill(kDialogColour);
        for (const Placed& placed : pictures) {
            canvas.draw(placed.picture, placed.x, placed.y);
        }
        return canvas.pixels();
    }

    testing::ScratchFolder folder_;
    GdiPlusSession gdiPlus_;
    RaceTrackState state_;
    Canvas canvas_{kWidth, kHeight};
};

TEST_F(RaceTrackView, DrawsTrackAndCarOnTheDialogsColour) {
    canvas_.fill(RGB(255, 0, 255));
    paint(TrackScene::kClone);
    EXPECT_EQ(canvas_.at(0, 0), kDialogColour);
    EXPECT_EQ(canvas_.at(kWidth - 1, kHeight - 1), kDialogColour);
    EXPECT_TRUE(canvas_.pixels() == composed({{L"race-track.png", 10, 160}, {L"race-car.png", 310, 182}}));
}

TEST_F(RaceTrackView, DrawsAReverseClonesTrack) {
    state_.reverse = 1;
    state_.carX = kTrackFinishX;
    paint(TrackScene::kClone);
    EXPECT_TRUE(canvas_.pixels() == composed({{L"reverse-race-track.png", 10, 160}, {L"race-car.png", 760, 182}}));
}

TEST_F(RaceTrackView, DrawsTheForensicImagesPoliceCarAndCourtHouse) {
    state_.carY = kImageCarY;
    paint(TrackScene::kForensicImage);
    EXPECT_TRUE(canvas_.pixels() == composed({{L"race-track.png", 10, 10}, {L"police-1-car.png", 310, 32}}));
    state_.succeeded = 1;
    state_.carX = kTrackFinishX;
    paint(TrackScene::kForensicImage);
    EXPECT_TRUE(canvas_.pixels() == composed({{L"race-track.png", 10, 10}, {L"court-house.png", 770, 14}}));
}

TEST_F(RaceTrackView, DrawsTheTrophy) {
    state_.succeeded = 1;
    state_.carX = kTrackFinishX;
    paint(TrackScene::kImageToDrive);
    EXPECT_TRUE(canvas_.pixels() == composed({{L"race-track.png", 10, 160}, {L"trophy.png", 770, 164}}));
}

TEST_F(RaceTrackView, PlaysTheExplosionInFourFramesAtEveryPaint) {
    state_.failed = 1;
    const std::vector<Placed> frames{{L"race-track.png", 10, 160},
                                     {L"explosion-a.png", 350, 172},
                                     {L"explosion-b.png", 340, 172},
                                     {L"explosion-c.png", 335, 172},
                                     {L"explosion-d.png", 330, 172}};
    for (int repaint = 0; repaint < 2; ++repaint) {
        const Pauses seen = paintInFrames(TrackScene::kClone);
        EXPECT_EQ(seen.milliseconds, (std::vector<DWORD>{100, 100, 100}));
        ASSERT_EQ(seen.shown.size(), 3U);
        for (std::size_t frame = 0; frame < 3; ++frame) {
            EXPECT_TRUE(seen.shown[frame] ==
                        composed({frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(frame) + 2}))
                << "frame " << frame;
        }
        EXPECT_TRUE(canvas_.pixels() == composed(frames));
    }
    EXPECT_EQ(state_.explosionFrame, 0);
}

TEST_F(RaceTrackView, ExplosionTakesThreeTenthsOfASecond) {
    state_.failed = 1;
    const DWORD before = GetTickCount();
    paint(TrackScene::kImage);
    EXPECT_GE(GetTickCount() - before, 290U);
}

TEST_F(RaceTrackView, AnswersOtherThreadsWhileTheExplosionPlays) {
    const HWND window = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    state_.failed = 1;
    std::atomic<bool> ended = false;
    std::atomic<int> answered = 0;
    std::thread asking([&] {
        while (!ended) {
            DWORD_PTR answer = 0;
            answered += SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, 50, &answer) != 0 ? 1 : 0;
            Sleep(1);
        }
    });
    const DWORD before = GetTickCount();
    paint(TrackScene::kImage);
    EXPECT_GE(GetTickCount() - before, 290U);
    const int answeredMeanwhile = answered;
    ended = true;
    asking.join();
    EXPECT_GT(answeredMeanwhile, 5);
    DestroyWindow(window);
}

TEST_F(RaceTrackView, WreckAloneNeedsNoPause) {
    state_.failed = 1;
    state_.explosionFrame = 1;
    EXPECT_TRUE(paintInFrames(TrackScene::kClone).milliseconds.empty());
    EXPECT_TRUE(canvas_.pixels() == composed({{L"race-track.png", 10, 160}, {L"explosion-d.png", 330, 182}}));
}

TEST_F(RaceTrackView, DoesWithoutPicturesThatAreMissingOrDamaged) {
    std::filesystem::remove("race-car.png");
    paint(TrackScene::kClone);
    EXPECT_TRUE(canvas_.pixels() == composed({{L"race-track.png", 10, 160}}));

    std::filesystem::resize_file("race-track.png", 50);
    paint(TrackScene::kClone);
    EXPECT_TRUE(canvas_.pixels() == composed({}));

    std::filesystem::remove("explosion-b.png");
    state_.failed = 1;
    const Pauses seen = paintInFrames(TrackScene::kClone);
    EXPECT_EQ(seen.milliseconds, (std::vector<DWORD>{100, 100, 100}));
    EXPECT_TRUE(
        canvas_.pixels() ==
        composed({{L"explosion-a.png", 350, 172}, {L"explosion-c.png", 335, 172}, {L"explosion-d.png", 330, 172}}));
}

TEST_F(RaceTrackView, DrawsNothingButItsColourWithoutAnyPicture) {
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        std::filesystem::remove(entry.path());
    }
    for (const TrackScene scene : kScenes) {
        for (const std::int32_t failed : {0, 1}) {
            state_.failed = failed;
            canvas_.fill(RGB(255, 0, 255));
            static_cast<void>(paintInFrames(scene));
            EXPECT_TRUE(canvas_.pixels() == composed({}));
        }
    }
}

TEST_F(RaceTrackView, LoadsItsPicturesAnewAtEveryPaint) {
    paint(TrackScene::kClone);
    std::filesystem::remove("race-car.png");
    std::filesystem::copy("trophy.png", "race-car.png");
    paint(TrackScene::kClone);
    EXPECT_TRUE(canvas_.pixels() == composed({{L"race-track.png", 10, 160}, {L"trophy.png", 310, 182}}));
}

/// GDI+ objects that the program made and has not given back.
struct GdiPlusObjects {
    int images = 0;
    int graphics = 0;
};

GdiPlusObjects living;

struct GdiPlusFunctions {
    decltype(&Gdiplus::DllExports::GdipLoadImageFromFile) load = __imp_GdipLoadImageFromFile;
    decltype(&Gdiplus::DllExports::GdipDisposeImage) dispose = __imp_GdipDisposeImage;
    decltype(&Gdiplus::DllExports::GdipCreateFromHDC) create = __imp_GdipCreateFromHDC;
    decltype(&Gdiplus::DllExports::GdipDeleteGraphics) remove = __imp_GdipDeleteGraphics;
};
const GdiPlusFunctions kOriginals;

/// Counts the GDI+ objects of a scope.
class GdiPlusCount {
  public:
    GdiPlusCount() { living = {}; }

  private:
    using Status = Gdiplus::GpStatus;

    static Status WINGDIPAPI load(const WCHAR* name, Gdiplus::GpImage** image) {
        const Status status = kOriginals.load(name, image);
        living.images += status == Gdiplus::Ok ? 1 : 0;
        return status;
    }
    static Status WINGDIPAPI dispose(Gdiplus::GpImage* image) {
        living.images -= image != nullptr ? 1 : 0;
        return kOriginals.dispose(image);
    }
    static Status WINGDIPAPI create(HDC context, Gdiplus::GpGraphics** graphics) {
        const Status status = kOriginals.create(context, graphics);
        living.graphics += status == Gdiplus::Ok ? 1 : 0;
        return status;
    }
    static Status WINGDIPAPI remove(Gdiplus::GpGraphics* graphics) {
        living.graphics -= graphics != nullptr ? 1 : 0;
        return kOriginals.remove(graphics);
    }

    ImportPatched<decltype(&Gdiplus::DllExports::GdipLoadImageFromFile)> load_{__imp_GdipLoadImageFromFile, &load};
    ImportPatched<decltype(&Gdiplus::DllExports::GdipDisposeImage)> dispose_{__imp_GdipDisposeImage, &dispose};
    ImportPatched<decltype(&Gdiplus::DllExports::GdipCreateFromHDC)> create_{__imp_GdipCreateFromHDC, &create};
    ImportPatched<decltype(&Gdiplus::DllExports::GdipDeleteGraphics)> remove_{__imp_GdipDeleteGraphics, &remove};
};

TEST_F(RaceTrackView, LeavesNothingBehind) {
    const auto paintAll = [&](int repaints) {
        for (int i = 0; i < repaints; ++i) {
            const auto turn = static_cast<std::size_t>(i);
            state_.failed = (turn / kScenes.size()) % 2 == 1 ? 1 : 0;
            state_.succeeded = (turn / kScenes.size()) % 3 == 2 ? 1 : 0;
            state_.reverse = (turn / kScenes.size()) % 5 == 4 ? 1 : 0;
            paintInFrames(kScenes[turn % kScenes.size()]);
        }
    };
    paintAll(12); // what the system keeps for itself after the first use
    const int gdiBefore = gdiObjectCount();
    const DWORD handlesBefore = openHandleCount();
    ASSERT_GT(gdiBefore, 0);
    const GdiPlusCount counting;
    paintAll(500);
    EXPECT_EQ(living.images, 0);
    EXPECT_EQ(living.graphics, 0);
    EXPECT_EQ(gdiObjectCount(), gdiBefore);
    EXPECT_LE(testing::lowestHandleCount(handlesBefore), handlesBefore);
}

TEST_F(RaceTrackView, WhatIsLeftBehindWouldBeCounted) {
    const int gdiBefore = gdiObjectCount();
    const GdiPlusCount counting;
    {
        const UniqueMemoryDc memory{CreateCompatibleDC(canvas_.context())};
        const UniqueBrush brush{CreateSolidBrush(kDialogColour)};
        EXPECT_EQ(gdiObjectCount(), gdiBefore + 2);
        const Gdiplus::Graphics graphics(memory.get());
        const Gdiplus::Image image(L"race-car.png");
        EXPECT_EQ(living.images, 1);
        EXPECT_EQ(living.graphics, 1);
    }
    EXPECT_EQ(gdiObjectCount(), gdiBefore);
    EXPECT_EQ(living.images, 0);
    EXPECT_EQ(living.graphics, 0);
}

} // namespace
} // namespace torvane
