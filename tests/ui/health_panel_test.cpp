#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/ui_test.h"

#include <cmath>
#include <optional>
#include <sstream>

namespace torvane::driver {
namespace {

constexpr int kHealthMessage = 1053;
constexpr int kFirstValueText = 1056;

constexpr int kPivotX = 70;
constexpr int kPivotY = 194;
constexpr int kDialStep = 180;
constexpr RECT kLamp{1064, 140, 1164, 220};
constexpr COLORREF kBackground = RGB(218, 223, 234);

/// ATA attributes 5, 9, 187, 196, 197, 198; -1: the drive does not have it.
struct Counters {
    int reallocated;
    int hours;
    int reported;
    int events;
    int pending;
    int offline;
};

std::string diskJson(int number, const std::string& model, const std::string& rotationRate, const Counters& counters) {
    const std::pair<int, int> attributes[] = {{5, counters.reallocated}, {9, counters.hours},
                                              {187, counters.reported},  {196, counters.events},
                                              {197, counters.pending},   {198, counters.offline}};
    std::ostringstream json;
    json << R"({"number": )" << number << R"(, "bus": "sata", "size": "64 GiB", "road": "ata",
        "identity": {"product": ")"
         << model << R"(", "revision": "R1", "serial": "S-)" << number << R"("},
        "ata": {"model": ")"
         << model << R"(", "serial": "S-)" << number << R"(", "rotationRate": )" << rotationRate
         << R"(, "smart": {"attributes": [)";
    const char* separator = "";
    for (const auto& [id, raw] : attributes) {
        if (raw >= 0) {
            json << separator << R"({"id": )" << id
                 << R"(, "flags": 50, "value": 100, "worst": 100, "threshold": 0, "raw": )" << raw << '}';
            separator = ", ";
        }
    }
    json << "]}}}";
    return json.str();
}

enum Row { kSound, kAgeing, kFailing, kSsd, kNvme, kScsi };

BenchFolder healthBench() {
    BenchFolder folder;
    folder.bench(R"({"title": "drives in every condition"})");
    folder.drive("0", diskJson(0, "SOUND", "7200", {0, 12000, 0, 0, 0, 0}));
    folder.drive("1", diskJson(1, "AGEING", "7200", {0, 30000, 0, -1, 0, 0}));
    folder.drive("2", diskJson(2, "FAILING", "7200", {250, 45000, 80, 19, 20, 50}));
    folder.drive("3", diskJson(3, "FLASH", R"("ssd")", {1, 20000, 0, 0, 0, 0}));
    folder.drive("4", R"({
        "number": 4, "bus": "nvme", "size": "64 GiB", "road": "nvme-query",
        "identity": {"product": "TARN", "revision": "R1", "serial": "S-4"},
        "nvme": {"health": {"criticalWarning": 5, "availableSpare": 3, "availableSpareThreshold": 10,
                            "dataUnitsWritten": 2000000}}})");
    folder.drive("5", R"({
        "number": 5, "bus": "scsi", "size": "64 GiB", "road": "ata",
        "identity": {"product": "PELHAM", "revision": "R1", "serial": "S-5"},
        "ata": {"model": "PELHAM", "serial": "S-5", "rotationRate": 10000}})");
    return folder;
}

bool isDark(COLORREF colour) {
    return GetRValue(colour) < 90 && GetGValue(colour) < 90 && GetBValue(colour) < 90;
}

class HealthPanelTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return healthBench(); }

    /// Makes the drive the active one; the picture of the window's client area afterwards.
    [[nodiscard]] Picture pick(Row row) const {
        const TorvaneWindow window = torvane();
        if (window.driveList().rowCount() == 0) {
            window.loadDrives();
            window.awaitProgressHidden();
        }
        window.driveList().click(row);
        parkMouse();
        window.window().awaitPainted();
        return Picture::ofScreen(window.window().clientRect());
    }

    [[nodiscard]] std::string text(int id) const { return torvane().control(id).text(); }
    [[nodiscard]] std::string valueText(int dial) const { return text(kFirstValueText + dial); }

    static bool hasCaption(const Picture& picture, int dial) {
        for (int x = dial * kDialStep; x < dial * kDialStep + 140; ++x) {
            for (int y = 224; y < 244; ++y) {
                if (isDark(picture.at(x, y))) {
                    return true;
                }
            }
        }
        return false;
    }

    /// The needle as drawn for `value`: hub, shaft and a point within three pixels of where it must end.
    static void expectNeedle(const Picture& picture, int dial, double value) {
        const double length = value >= 0.2 && value < 0.8 ? 55 * 0.85 : 55;
        const double angle = 180 * value * 0.017444444444444446;
        const int pivotX = kPivotX + dial * kDialStep;
        const int endX = static_cast<int>(pivotX - length * std::cos(angle));
        const int endY = static_cast<int>(kPivotY - length * std::sin(angle));
        EXPECT_TRUE(isDark(picture.at(pivotX, kPivotY))) << "dial " << dial << " has no hub";
        EXPECT_TRUE(isDark(picture.at((pivotX + endX) / 2, (kPivotY + endY) / 2)))
            << "dial " << dial << " has no shaft";
        bool pointed = false;
        for (int y = endY - 3; y <= endY + 3; ++y) {
            for (int x = endX - 3; x <= endX + 3; ++x) {
                pointed = pointed || isDark(picture.at(x, y));
            }
        }
        EXPECT_TRUE(pointed) << "dial " << dial << " does not point at " << endX << ", " << endY;
    }

    /// Where a needle at `value` would have its middle there is the dial's pale face.
    static void expectNoNeedle(const Picture& picture, int dial) {
        for (const double value : {0.0, 0.25, 0.5, 0.75, 1.0}) {
            const double angle = 180 * value * 0.017444444444444446;
            const int x = static_cast<int>(kPivotX + dial * kDialStep - 25 * std::cos(angle));
            const int y = static_cast<int>(kPivotY - 25 * std::sin(angle));
            EXPECT_FALSE(isDark(picture.at(x, y))) << "dial " << dial << " has a needle at " << value;
        }
    }

    /// The lamp's colour: the mean of its pixels; none where there is nothing but background.
    static std::optional<COLORREF> lampColour(const Picture& picture) {
        unsigned red = 0;
        unsigned green = 0;
        unsigned blue = 0;
        unsigned painted = 0;
        for (int y = kLamp.top; y < kLamp.bottom; ++y) {
            for (int x = kLamp.left; x < kLamp.right; ++x) {
                const COLORREF colour = picture.at(x, y);
                if (colour != kBackground) {
                    red += GetRValue(colour);
                    green += GetGValue(colour);
                    blue += GetBValue(colour);
                    ++painted;
                }
            }
        }
        if (painted == 0) {
            return std::nullopt;
        }
        return RGB(red / painted, green / painted, blue / painted);
    }
};

TEST_F(HealthPanelTest, ASoundDriveHasTheGreenLamp) {
    const Picture picture = pick(kSound);
    const auto lamp = lampColour(picture);
    ASSERT_TRUE(lamp);
    EXPECT_GT(GetGValue(*lamp), GetRValue(*lamp) + 30);
    EXPECT_GT(GetGValue(*lamp), GetBValue(*lamp) + 15);
    EXPECT_TRUE(text(kHealthMessage).starts_with("No sign of trouble")) << text(kHealthMessage);
    expectNeedle(picture, 0, 12000 / 60000.0);
    for (int dial = 1; dial < 6; ++dial) {
        expectNeedle(picture, dial, 0.0);
        EXPECT_TRUE(hasCaption(picture, dial));
    }
}

TEST_F(HealthPanelTest, AnAgeingDriveHasTheBlueLampAndABlankDialForWhatItDoesNotReport) {
    const Picture picture = pick(kAgeing);
    const auto lamp = lampColour(picture);
    ASSERT_TRUE(lamp);
    EXPECT_GT(GetBValue(*lamp), GetRValue(*lamp) + 30);
    EXPECT_TRUE(text(kHealthMessage).starts_with("Early wear")) << text(kHealthMessage);
    expectNeedle(picture, 0, 0.5);
    expectNoNeedle(picture, 2);
    EXPECT_FALSE(hasCaption(picture, 2));
    EXPECT_TRUE(hasCaption(picture, 3));
}

TEST_F(HealthPanelTest, AFailingDriveHasTheRedLamp) {
    const Picture picture = pick(kFailing);
    const auto lamp = lampColour(picture);
    ASSERT_TRUE(lamp);
    EXPECT_GT(GetRValue(*lamp), GetGValue(*lamp) + 30);
    EXPECT_GT(GetRValue(*lamp), GetBValue(*lamp) + 30);
    EXPECT_TRUE(text(kHealthMessage).starts_with("Failing")) << text(kHealthMessage);
    expectNeedle(picture, 0, 0.75);
    expectNeedle(picture, 1, 1.0);
    expectNeedle(picture, 2, 0.19);
    expectNeedle(picture, 3, 0.2);
    expectNeedle(picture, 4, 0.5);
    expectNeedle(picture, 5, 0.8);
}

TEST_F(HealthPanelTest, ASolidStateDriveHasNeitherLampNorMessage) {
    const Picture picture = pick(kSsd);
    EXPECT_FALSE(lampColour(picture));
    EXPECT_EQ(text(kHealthMessage), "");
    expectNeedle(picture, 0, 0.01);
    expectNeedle(picture, 1, 0.01);
    expectNeedle(picture, 3, 0.0);
    EXPECT_TRUE(hasCaption(picture, 0));
}

TEST_F(HealthPanelTest, AnNvmeDriveShowsItsWarnings) {
    const Picture picture = pick(kNvme);
    EXPECT_FALSE(lampColour(picture));
    expectNeedle(picture, 0, 953 / 1024.0 / 7000);
    for (int dial = 1; dial < 6; ++dial) {
        const bool fails = dial == 1 || dial == 3;
        expectNeedle(picture, dial, fails ? 1.0 : 0.0);
        EXPECT_EQ(valueText(dial), dial == 1 ? "FAILED 003 010" : "RESULT");
    }
    EXPECT_EQ(valueText(0), "Total Bytes Written 953 GB is 0.01 percent of threshold");
    EXPECT_EQ(text(kHealthMessage), "");
}

TEST_F(HealthPanelTest, AnUnknownDriveHasBlankDialsAlone) {
    const Picture picture = pick(kScsi);
    EXPECT_FALSE(lampColour(picture));
    for (int dial = 0; dial < 6; ++dial) {
        expectNoNeedle(picture, dial);
        EXPECT_FALSE(hasCaption(picture, dial));
        EXPECT_EQ(valueText(dial), "");
    }
    EXPECT_EQ(text(kHealthMessage), "");
}

TEST_F(HealthPanelTest, ANewScanClearsThePanel) {
    (void)pick(kFailing);
    torvane().loadDrives();
    torvane().awaitProgressHidden();
    torvane().window().awaitPainted();
    const Picture picture = Picture::ofScreen(torvane().window().clientRect());
    for (int dial = 0; dial < 6; ++dial) {
        expectNoNeedle(picture, dial);
    }
    const auto lamp = lampColour(picture);
    ASSERT_TRUE(lamp) << "the white lamp";
    EXPECT_LT(std::abs(GetRValue(*lamp) - GetBValue(*lamp)), 20);
    EXPECT_EQ(text(kHealthMessage), "");
}

TEST_F(HealthPanelTest, TheWholeMessageFitsItsPlace) {
    for (const Row row : {kSound, kAgeing, kFailing}) {
        const Picture picture = pick(row);
        const RECT place = torvane().control(kHealthMessage).rectIn(torvane().window());
        int last = place.left;
        for (int x = place.left; x < place.right; ++x) {
            for (int y = place.top; y < place.bottom; ++y) {
                last = isDark(picture.at(x, y)) ? x : last;
            }
        }
        EXPECT_GT(last, place.left + 300) << text(kHealthMessage) << " is not shown";
        EXPECT_LT(last, place.right - 30) << text(kHealthMessage) << " reaches the end of its place: it may be cut";
    }
}

} // namespace
} // namespace torvane::driver
