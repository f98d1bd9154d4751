#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/health_bench.h"
#include "tests/ui/health_panel_reader.h"
#include "tests/ui/torvane_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>

namespace torvane::driver {
namespace {

constexpr int kHealthMessage = 1053;

/// The health message in its place under the dials. Each test starts the program itself, some with another message.
class HealthMessageTest : public ::testing::Test {
  protected:
    /// Two parts of the tests may run at the same time.
    static std::string ownFolder() {
        return std::string("HealthMessageTest.") + ::testing::UnitTest::GetInstance()->current_test_info()->name();
    }

    /// Starts the program and loads the drives.
    void start(const Launch& launch) {
        program_ = std::make_unique<Program>(launch);
        torvane().loadDrives();
    }

    /// Makes the drive the active one.
    void pick(const std::string& model) {
        const ListView list = torvane().driveList();
        list.click(list.rowWith(0, model));
        parkMouse();
        torvane().window().awaitPainted();
        message_ = torvane().control(kHealthMessage);
    }

    /// Starts the program with other bytes in its first message, that for sound drives, and picks one.
    void showWith(std::streamoff offset, const std::string& bytes) {
        const Launch launch = freshRun(ownFolder(), soundDriveBench());
        std::fstream file(launch.program.parent_path() / "Message.db", std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(offset);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        file.close();
        ASSERT_TRUE(file);
        start(launch);
        pick("SOUND");
    }
    void showMessage(const std::string& text) {
        showWith(kTextOffset, text + '\0');
        ASSERT_EQ(message_.text(), text);
    }

    [[nodiscard]] TorvaneWindow torvane() const { return TorvaneWindow(*program_); }

    /// The smallest rectangle that holds everything dark, in pixels of the message's place.
    [[nodiscard]] RECT writtenArea() const {
        const Picture picture = Picture::ofScreen(message_.rect());
        RECT area{picture.width(), picture.height(), 0, 0};
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (distance(picture.at(x, y), RGB(0, 0, 0)) < 150) {
                    area = {std::min<LONG>(area.left, x), std::min<LONG>(area.top, y),
                            std::max<LONG>(area.right, x + 1), std::max<LONG>(area.bottom, y + 1)};
                }
            }
        }
        return area;
    }

    /// The text of the tip that shows when the mouse rests on the message; empty when none does in that time.
    [[nodiscard]] std::string tip(std::chrono::milliseconds limit) const {
        const POINT middle = centre(message_.rect());
        SetCursorPos(middle.x, middle.y);
        std::string text;
        (void)waitUntil(
            [&] {
                for (const Window& window : topLevelWindows(program_->processId())) {
                    if (window.className() == "tooltips_class32" && window.visible()) {
                        text = window.text();
                    }
                }
                return !text.empty();
            },
            limit);
        return text;
    }

    static constexpr std::streamoff kColourOffset = 0;
    static constexpr std::streamoff kLevelOffset = 4;
    static constexpr std::streamoff kTextOffset = 8;
    std::unique_ptr<Program> program_;
    Window message_;
};

TEST_F(HealthMessageTest, EveryShippedOneStandsOnOneLineInLargeLetters) {
    start(freshRun(ownFolder(), healthBench()));
    for (const char* model : {"SOUND", "AGEING", "WEARING", "FAILING"}) {
        pick(model);
        expectSoon([&] {
            const RECT written = writtenArea();
            EXPECT_GT(width(written), 400) << message_.text();
            EXPECT_LT(written.right, width(message_.rect()) - 30) << message_.text() << " may be cut";
            EXPECT_LE(height(written), 18) << message_.text();
            EXPECT_GE(written.top, 2) << "letters touch the captions";
        });
    }
}

std::string words(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "" : " ") + std::string("advice") + std::to_string(i);
    }
    return text;
}

TEST_F(HealthMessageTest, ALongOneTakesTwoLinesAndShowsWhole) {
    showMessage(words(30));
    expectSoon([&] {
        EXPECT_GT(height(writtenArea()), 18);
        EXPECT_LE(writtenArea().bottom, height(message_.rect()));
    });
    EXPECT_EQ(tip(std::chrono::seconds(3)), "");
}

TEST_F(HealthMessageTest, OneWithItsOwnLinesKeepsThem) {
    showMessage("First line\r\nSecond line");
    expectSoon([&] {
        EXPECT_GT(height(writtenArea()), 18);
        EXPECT_LT(writtenArea().right, 150);
    });
}

TEST_F(HealthMessageTest, OneOfAnUnknownColourHasNoLamp) {
    showWith(kColourOffset, "\7");
    expectPanel(torvane(), {"SOUND", kStandardPanel, {0.2, 0, 0, 0, 0, 0}, "none", "No sign of trouble"});
}

TEST_F(HealthMessageTest, WithoutOneForTheLevelThereIsNoLamp) {
    showWith(kLevelOffset, "\7");
    expectPanel(torvane(), {"SOUND", kStandardPanel, {0.2, 0, 0, 0, 0, 0}, "none", ""});
}

TEST_F(HealthMessageTest, WhatDoesNotFitIsToldByATip) {
    const std::string text = words(90);
    showMessage(text);
    expectSoon([&] {
        EXPECT_GT(height(writtenArea()), 18);
        EXPECT_GT(writtenArea().right, width(message_.rect()) - 150) << "both lines are used";
    });
    EXPECT_EQ(tip(kPatience), text);
}

} // namespace
} // namespace torvane::driver
