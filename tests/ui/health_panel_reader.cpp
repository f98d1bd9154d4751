#include "tests/ui/health_panel_reader.h"

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace torvane::driver {

const PanelLayout kStandardPanel{
    "sw-gauge-poh-small.png",
    "sw-gauge-small.png",
    {"Power On Hours", "Moved Errors", "Slow Sectors", "Pending Sectors", "Uncorrectable Errors", "Reported Errors"}};
const PanelLayout kSsdPanel{
    "sw-gauge-poh-small.png",
    "sw-gauge-small.png",
    {"POH", "Moved Errors", "Slow Sectors", "Pending Sectors", "Uncorrectable Errors", "Reported Errors"}};
const PanelLayout kNvmePanel{
    "sw-gauge-poh-small.png",
    "passfail-gauge.png",
    {"Gigabytes Written", "Available Space", "Temp Threshold", "NVM Sub-System", "Read-Only Mode", "Volatile Memory"}};
const PanelLayout kUnknownPanel{"sw-gauge-small.png", "sw-gauge-small.png", {}};

namespace {

constexpr int kHealthMessage = 1053;
constexpr int kFirstValueText = 1056;
constexpr COLORREF kBackground = RGB(218, 223, 234);

// Where the panel has its parts, client pixels of the main window.
constexpr int kDialStep = 180;
constexpr POINT kFirstDial{10, 140};
constexpr POINT kFirstPivot{70, 194};
constexpr RECT kFirstCaption{0, 224, 140, 244};
constexpr RECT kLamp{1064, 140, 1164, 220};

struct Vector {
    double x;
    double y;
};

/// Where the needle of a value ends, from its pivot: 55 pixels long, 85 percent of that in the dial's shallow middle;
/// on a whole pixel, counted from the window's corner and cut towards it.
Vector needleOf(double value) {
    value = std::min(value, 1.0);
    const double length = value >= 0.2 && value < 0.8 ? 55 * 0.85 : 55;
    const double angle = 180 * value * 0.017444444444444446;
    return {std::trunc(kFirstPivot.x - length * std::cos(angle)) - kFirstPivot.x,
            std::trunc(kFirstPivot.y - length * std::sin(angle)) - kFirstPivot.y};
}

Picture cut(const Picture& picture, const RECT& rect) {
    Picture part(width(rect), height(rect), 0);
    part.draw(picture, -rect.left, -rect.top);
    return part;
}

/// A dial's picture without a needle.
const Picture& plainDial(const std::filesystem::path& file) {
    static std::map<std::filesystem::path, Picture> loaded;
    const auto known = loaded.find(file);
    return known != loaded.end() ? known->second
                                 : loaded.emplace(file, Picture::ofFile(file.string(), kBackground)).first->second;
}

/// The panel as the screen shows it, and how it is read.
class PanelReader {
  public:
    PanelReader(const TorvaneWindow& torvane, std::filesystem::path artwork)
        : picture_(Picture::ofScreen(torvane.window().clientRect())), artwork_(std::move(artwork)) {}

    /// The lamp's colour by the mean of its coloured pixels; "none" where there is nothing but background.
    [[nodiscard]] std::string lamp() const {
        std::array<int, 3> sum{};
        int painted = 0;
        int coloured = 0;
        for (int y = kLamp.top; y < kLamp.bottom; ++y) {
            for (int x = kLamp.left; x < kLamp.right; ++x) {
                const COLORREF colour = picture_.at(x, y);
                painted += colour != kBackground ? 1 : 0;
                const std::array<int, 3> parts{GetRValue(colour), GetGValue(colour), GetBValue(colour)};
                const auto [least, most] = std::minmax_element(parts.begin(), parts.end());
                if (*most - *least > 80) {
                    ++coloured;
                    std::transform(parts.begin(), parts.end(), sum.begin(), sum.begin(), std::plus<>());
                }
            }
        }
        if (painted == 0) {
            return "none";
        }
        return coloured < 1000 ? "white" : colourName(sum[0] / coloured, sum[1] / coloured, sum[2] / coloured);
    }

    /// Expects the dial without a needle, or with one that points and ends as `value` asks, and nothing else on it.
    void expectDial(int dial, const std::string& image, NeedleValue value) const {
        const std::filesystem::path file = artwork_ / image;
        const Picture& plain = plainDial(file);
        const RECT place{kFirstDial.x + dial * kDialStep, kFirstDial.y, kFirstDial.x + dial * kDialStep + plain.width(),
                         kFirstDial.y + plain.height()};
        const Picture shown = cut(picture_, place);
        const Vector end = value ? needleOf(*value) : Vector{0, 0};
        const double length = std::hypot(end.x, end.y);
        double reach = 0;
        double headAside = 0;
        int headPixels = 0;
        int strayPixels = 0;
        for (int y = 0; y < plain.height(); ++y) {
            for (int x = 0; x < plain.width(); ++x) {
                if (distance(shown.at(x, y), plain.at(x, y)) <= kNoticeable) {
                    continue;
                }
                const Vector from{static_cast<double>(x + kFirstDial.x - kFirstPivot.x),
                                  static_cast<double>(y + kFirstDial.y - kFirstPivot.y)};
                const double along = value ? (from.x * end.x + from.y * end.y) / length : 0;
                const double aside = value ? (from.x * end.y - from.y * end.x) / length : 0;
                strayPixels += !value || along < -kHubRadius || std::abs(aside) > kHeadWidth ? 1 : 0;
                reach = std::max(reach, along);
                if (along > length - kHeadLength) {
                    headAside += aside;
                    ++headPixels;
                }
            }
        }
        EXPECT_EQ(strayPixels, 0) << "dial " << dial << " is not " << image << (value ? " with that needle" : " alone");
        if (value) {
            EXPECT_TRUE(isBlack(pixelAlong(dial, end, 0))) << "dial " << dial << " has no hub";
            EXPECT_TRUE(isBlack(pixelAlong(dial, end, 0.5))) << "dial " << dial << " has no shaft";
            EXPECT_TRUE(isBlack(pixelAlong(dial, end, 1 - kTipDepth / length)))
                << "dial " << dial << " has no needle just before its end";
            // The needle's point is finer than a pixel, so its last pixels are pale.
            EXPECT_GE(reach, length - kTipTolerance) << "the needle of dial " << dial << " is too short";
            EXPECT_LE(reach, length + kBeyondTolerance) << "the needle of dial " << dial << " is too long";
            EXPECT_GT(headPixels, 0) << dial;
            EXPECT_NEAR(headAside / std::max(headPixels, 1), 0, 1) << "the needle of dial " << dial << " points aside";
        }
    }

    /// Expects exactly that text in the caption's place, in its font.
    void expectCaption(int dial, const std::string& text) const {
        const RECT place{kFirstCaption.left + dial * kDialStep, kFirstCaption.top,
                         kFirstCaption.right + dial * kDialStep, kFirstCaption.bottom};
        Picture expected(width(place), height(place), kBackground);
        expected.writeCentred(text, "Calibri", 20, 100);
        const Picture shown = cut(picture_, place);
        int different = 0;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                different += distance(shown.at(x, y), expected.at(x, y)) > kNoticeable ? 1 : 0;
            }
        }
        EXPECT_EQ(different, 0) << "the caption of dial " << dial << " is not '" << text << "'";
    }

  private:
    static constexpr int kNoticeable = 60; // of 765; less is the smoothing of edges
    static constexpr double kHubRadius = 7;
    static constexpr double kHeadWidth = 7;
    static constexpr double kHeadLength = 10;
    static constexpr double kTipDepth = 4;
    static constexpr double kTipTolerance = 2.5;
    static constexpr double kBeyondTolerance = 1.5;

    static bool isBlack(COLORREF colour) { return distance(colour, RGB(0, 0, 0)) < 90; }

    static std::string colourName(int red, int green, int blue) {
        if (red > green + 60) {
            return "red";
        }
        if (red > blue + 60) {
            return "yellow";
        }
        return green > blue ? "green" : "blue";
    }

    [[nodiscard]] COLORREF pixelAlong(int dial, Vector end, double part) const {
        return picture_.at(kFirstPivot.x + dial * kDialStep + static_cast<int>(std::lround(end.x * part)),
                           kFirstPivot.y + static_cast<int>(std::lround(end.y * part)));
    }

    Picture picture_;
    std::filesystem::path artwork_;
};

void expectShown(const PanelReader& panel, const ExpectedPanel& expected) {
    for (std::size_t i = 0; i < kDialCount; ++i) {
        const int dial = static_cast<int>(i);
        panel.expectDial(dial, i == 0 ? expected.layout.firstDial : expected.layout.otherDials, expected.needles[i]);
        panel.expectCaption(dial, expected.needles[i] ? expected.layout.captions[i] : "");
    }
    EXPECT_EQ(panel.lamp(), expected.lamp);
}

} // namespace

std::array<std::string, kDialCount> counterTexts(const std::array<int, kDialCount>& counters) {
    std::array<std::string, kDialCount> texts;
    for (std::size_t i = 0; i < counters.size(); ++i) {
        std::array<char, 40> years{};
        std::snprintf(years.data(), years.size(), " h, %.1f y", counters[i] / 8760.0);
        std::string number = std::to_string(counters[i]);
        if (number.size() > 3) {
            number.insert(number.size() - 3, ",");
        }
        texts[i] = counters[i] < 0 ? "not reported" : number + (i == 0 ? years.data() : "");
    }
    return texts;
}

std::array<std::string, kDialCount> ssdCounterTexts(const std::array<int, kDialCount>& counters) {
    std::array<std::string, kDialCount> texts = counterTexts(counters);
    texts.back().insert(0, "Reported Errors: ");
    return texts;
}

std::ostream& operator<<(std::ostream& stream, const ExpectedPanel& expected) {
    return stream << expected.model;
}

void expectPanel(const TorvaneWindow& torvane, const ExpectedPanel& expected) {
    SCOPED_TRACE(expected.model);
    parkMouse();
    torvane.window().awaitPainted();
    expectSoon([&] { expectShown(PanelReader(torvane, packageFolder()), expected); });
    for (std::size_t i = 0; i < kDialCount; ++i) {
        const int dial = static_cast<int>(i);
        const Window value = torvane.control(kFirstValueText + dial);
        EXPECT_EQ(value.text(), expected.valueTexts[i]) << "under dial " << dial;
        EXPECT_EQ(value.visible(), !expected.valueTexts[i].empty()) << "under dial " << dial;
    }
    const Window message = torvane.control(kHealthMessage);
    EXPECT_EQ(message.text().substr(0, std::max<std::size_t>(expected.message.size(), 1)), expected.message);
    EXPECT_EQ(message.visible(), !expected.message.empty());
}

void clickAndExpectPanel(const TorvaneWindow& torvane, const ExpectedPanel& expected) {
    const ListView list = torvane.driveList();
    list.click(list.rowWith(0, expected.model));
    expectPanel(torvane, expected);
}

RECT healthMessageInk(const TorvaneWindow& torvane) {
    constexpr int kDark = 150; // of 765
    const Picture picture = Picture::ofScreen(torvane.control(kHealthMessage).rect());
    RECT area{picture.width(), picture.height(), 0, 0};
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (distance(picture.at(x, y), RGB(0, 0, 0)) < kDark) {
                area = {std::min<LONG>(area.left, x), std::min<LONG>(area.top, y), std::max<LONG>(area.right, x + 1),
                        std::max<LONG>(area.bottom, y + 1)};
            }
        }
    }
    return area;
}

} // namespace torvane::driver
