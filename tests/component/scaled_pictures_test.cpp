// What the health panel and the race track show on screens finer than 96 dots to the inch: everything where it is at
// 96, larger, from the renderings that the program carries.

#include "copy/dialogs/race_track_view.h"
#include "copy/jobs/track.h"
#include "state/race_track_state.h"
#include "tests/component/health_panel_fixture.h"

#include <filesystem>
#include <vector>

namespace torvane {
namespace {

using testing::Canvas;
using testing::Painting;

constexpr Scale kScales[] = {Scale{120}, Scale{144}, Scale{192}};

// The client area of the clone dialog at 96 dots.
constexpr PixelSize kCloneDialog{980, 388};

struct Placed {
    const char* picture;
    int x; ///< at 96 dots, as y
    int y;
};

/// The dialogs' colour with these renderings on it, in this order.
Painting composed(Scale scale, PixelSize size, const std::vector<Placed>& pictures) {
    const Canvas canvas(scale.px(size.width), scale.px(size.height));
    canvas.fill(kBackground);
    for (const Placed& placed : pictures) {
        const auto file = testing::renderingsFolder(scale.dpi) / placed.picture;
        canvas.draw(file.wstring(), scale.px(placed.x), scale.px(placed.y));
    }
    return canvas.painting();
}

bool isDark(COLORREF colour) {
    return GetRValue(colour) < 90 && GetGValue(colour) < 90 && GetBValue(colour) < 90;
}

/// Is something dark within `reach` pixels of the place?
bool isDarkNear(const Painting& picture, int x, int y, int reach) {
    for (int row = y - reach; row <= y + reach; ++row) {
        for (int column = x - reach; column <= x + reach; ++column) {
            if (isDark(picture.at(column, row))) {
                return true;
            }
        }
    }
    return false;
}

class ScaledPanel : public HealthPanelFixture {
  protected:
    [[nodiscard]] Painting painted(Scale scale, DriveRecord* drive) {
        const PanelWindow window(scale);
        const Canvas canvas(scale.px(kWidth), scale.px(kHeight));
        state_.activeDrive = drive;
        state_.activeDriveChosen = drive != nullptr ? 1 : 0;
        PaintHealthPanel(state_, window.get(), canvas.context(), scale);
        return canvas.painting();
    }
};

TEST_F(ScaledPanel, ShowsItsRenderingsPixelForPixel) {
    for (const Scale scale : kScales) {
        const Painting expected = composed(scale, {kWidth, kHeight},
                                           {{"sw-gauge-poh-small.png", 10, 140},
                                            {"sw-gauge-small.png", 190, 140},
                                            {"sw-gauge-small.png", 370, 140},
                                            {"sw-gauge-small.png", 550, 140},
                                            {"sw-gauge-small.png", 730, 140},
                                            {"sw-gauge-small.png", 910, 140},
                                            {"engine-check-white.png", 1064, 140}});
        EXPECT_TRUE(painted(scale, nullptr) == expected) << scale.dpi;
    }
}

TEST_F(ScaledPanel, PointsItsNeedlesAtTheSameFigures) {
    DriveRecord drive = soundDrive();
    drive.disk[Counter::kPowerOnHours] = 30000;
    drive.disk[Counter::kReallocatedSectors] = 0;
    drive.disk[Counter::kReallocationEvents] = 100;
    drive.disk[Counter::kPendingSectors] = 20;
    struct Needle {
        PixelRect run; ///< from the hub to the point, at 96 dots
    };
    constexpr Needle kNeedles[] = {
        {{70, 194, 69, 147}}, {{250, 194, 195, 194}}, {{430, 194, 484, 193}}, {{610, 194, 572, 166}}};
    for (const Scale scale : kScales) {
        const Painting picture = painted(scale, &drive);
        for (const Needle& needle : kNeedles) {
            const PixelRect run = scale.px(needle.run);
            EXPECT_TRUE(isDark(picture.at(run.left, run.top))) << "hub at " << run.left << ", dpi " << scale.dpi;
            EXPECT_TRUE(isDark(picture.at((run.left + run.right) / 2, (run.top + run.bottom) / 2)))
                << "shaft from " << run.left << ", dpi " << scale.dpi;
            EXPECT_TRUE(isDarkNear(picture, run.right, run.bottom, scale.px(3)))
                << "point at " << run.right << ", " << run.bottom << ", dpi " << scale.dpi;
        }
    }
}

TEST_F(ScaledPanel, DrawsItsNeedlesAsThickAsTheScaleAsks) {
    DriveRecord drive = driveWithoutValues(kSmartTypeStandard);
    drive.disk[Counter::kPowerOnHours] = 30000;
    for (const Scale scale : kScales) {
        const Painting picture = painted(scale, &drive);
        int thickness = 0;
        // Across the upright needle of the first dial, well above its round foot.
        for (int x = scale.px(55); x < scale.px(85); ++x) {
            thickness += isDark(picture.at(x, scale.px(176))) ? 1 : 0;
        }
        EXPECT_NEAR(thickness, scale.px(5), 2) << scale.dpi;
    }
}

TEST_F(ScaledPanel, WritesItsCaptionsUnderTheDials) {
    DriveRecord drive = soundDrive();
    for (const Scale scale : kScales) {
        const Painting picture = painted(scale, &drive);
        for (int dial = 0; dial < 6; ++dial) {
            const PixelRect box = scale.px(PixelRect{180 * dial, 224, 180 * dial + 140, 244});
            int first = box.right;
            int last = box.left;
            int top = box.bottom;
            int bottom = box.top;
            for (int y = box.top; y < box.bottom; ++y) {
                for (int x = box.left; x < box.right; ++x) {
                    if (isDark(picture.at(x, y))) {
                        first = std::min(first, x);
                        last = std::max(last, x);
                        top = std::min(top, y);
                        bottom = std::max(bottom, y);
                    }
                }
            }
            EXPECT_NEAR((first + last) / 2.0, scale.px(70 + 180 * dial), scale.px(2)) << dial << ", " << scale.dpi;
            // Capital letters of a font 20 high are 10 to 12 high.
            EXPECT_GE(bottom - top, scale.px(9)) << dial << ", " << scale.dpi;
        }
    }
}

class ScaledTrack : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(gdiPlus_.start());
        testing::layOutPictures();
        state_.carX = 310;
        state_.carY = kCloneCarY;
    }

    [[nodiscard]] Painting painted(Scale scale, TrackScene scene) const {
        const PixelSize size = scale.px(kCloneDialog);
        const Canvas canvas(size.width, size.height);
        paintRaceTrack(canvas.context(), scene, state_, scale);
        return canvas.painting();
    }

    /// The part of the picture that is not the dialog's colour, in pixels.
    static PixelRect drawnArea(const Painting& picture) {
        PixelRect area{picture.width, picture.height, 0, 0};
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                if (picture.at(x, y) != kBackground) {
                    area = {std::min(area.left, x), std::min(area.top, y), std::max(area.right, x + 1),
                            std::max(area.bottom, y + 1)};
                }
            }
        }
        return area;
    }

    static void expectNear(const PixelRect& area, const PixelRect& expected, int dpi) {
        EXPECT_NEAR(area.left, expected.left, 1) << dpi;
        EXPECT_NEAR(area.top, expected.top, 1) << dpi;
        EXPECT_NEAR(area.right, expected.right, 1) << dpi;
        EXPECT_NEAR(area.bottom, expected.bottom, 1) << dpi;
    }

    testing::ScratchFolder folder_;
    GdiPlusSession gdiPlus_;
    RaceTrackState state_;
};

TEST_F(ScaledTrack, ShowsItsRenderingsPixelForPixel) {
    for (const Scale scale : kScales) {
        EXPECT_TRUE(painted(scale, TrackScene::kClone) ==
                    composed(scale, kCloneDialog, {{"race-track.png", 10, 160}, {"race-car.png", 310, 182}}))
            << scale.dpi;
    }
}

TEST_F(ScaledTrack, ShowsAReverseCloneAndAForensicImage) {
    for (const Scale scale : kScales) {
        state_.succeeded = 0;
        state_.reverse = 1;
        state_.carX = kTrackFinishX;
        state_.carY = kCloneCarY;
        EXPECT_TRUE(painted(scale, TrackScene::kClone) ==
                    composed(scale, kCloneDialog, {{"reverse-race-track.png", 10, 160}, {"race-car.png", 760, 182}}))
            << scale.dpi;
        state_.carY = kImageCarY;
        state_.succeeded = 1;
        EXPECT_TRUE(painted(scale, TrackScene::kForensicImage) ==
                    composed(scale, kCloneDialog, {{"race-track.png", 10, 10}, {"court-house.png", 770, 14}}))
            << scale.dpi;
    }
}

TEST_F(ScaledTrack, ShowsTheWreckOfAFailedJob) {
    state_.failed = 1;
    state_.explosionFrame = 1;
    for (const Scale scale : kScales) {
        EXPECT_TRUE(painted(scale, TrackScene::kClone) ==
                    composed(scale, kCloneDialog, {{"race-track.png", 10, 160}, {"explosion-d.png", 330, 182}}))
            << scale.dpi;
    }
}

TEST_F(ScaledTrack, ShowsNothingForAPictureThatIsMissingOrDamaged) {
    std::filesystem::remove("race-car.png");
    for (const Scale scale : kScales) {
        EXPECT_TRUE(painted(scale, TrackScene::kClone) == composed(scale, kCloneDialog, {{"race-track.png", 10, 160}}))
            << scale.dpi;
    }
    std::filesystem::resize_file("race-track.png", 50);
    for (const Scale scale : kScales) {
        EXPECT_TRUE(painted(scale, TrackScene::kClone) == composed(scale, kCloneDialog, {})) << scale.dpi;
    }
}

TEST_F(ScaledTrack, EnlargesAPictureThatTheUserReplaced) {
    std::filesystem::remove("race-track.png");
    std::filesystem::remove("race-car.png");
    // One of ours under another's name is the user's choice as well, and opaque from edge to edge.
    std::filesystem::copy(testing::packageFolder() / "reverse-race-track.png", "race-car.png");
    state_.carX = 40;
    state_.carY = 100;
    const PixelRect placeAt96 = drawnArea(painted(Scale{}, TrackScene::kClone));
    const Painting asRendered = composed(Scale{192}, kCloneDialog, {{"reverse-race-track.png", 40, 100}});
    for (const Scale scale : kScales) {
        expectNear(drawnArea(painted(scale, TrackScene::kClone)), scale.px(placeAt96), scale.dpi);
    }
    EXPECT_FALSE(painted(Scale{192}, TrackScene::kClone) == asRendered)
        << "from the user's file, not from the rendering of the picture that it resembles";
}

// Between two renderings the larger is reduced, beyond the largest that one is enlarged.
TEST_F(ScaledTrack, FitsItsRenderingsToOtherScales) {
    const PixelRect placeAt96 = drawnArea(painted(Scale{}, TrackScene::kClone));
    for (const Scale scale : {Scale{108}, Scale{168}, Scale{240}, Scale{288}}) {
        expectNear(drawnArea(painted(scale, TrackScene::kClone)), scale.px(placeAt96), scale.dpi);
    }
}

} // namespace
} // namespace torvane
