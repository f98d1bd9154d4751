#include "tests/ui/driver/input.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/health_bench.h"
#include "tests/ui/health_panel_reader.h"
#include "tests/ui/torvane_window.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace torvane::driver {
namespace {

constexpr int kHealthMessage = 1053;

/// The health message in its place under the dials, with messages of the test's own for its three levels.
class HealthMessageTest : public ::testing::Test {
  protected:
    /// Makes the drive the active one.
    void pick(const std::string& model) {
        const ListView list = torvane().driveList();
        list.click(list.rowWith(0, model));
        parkMouse();
        torvane().window().awaitPainted();
        message_ = torvane().control(kHealthMessage);
    }

    /// Starts the program with other texts of the first messages, those for "SOUND", "AGEING" and "WEARING", and loads
    /// the drives.
    void startWith(const std::vector<std::string>& texts) {
        constexpr std::streamoff kTextOffset = 8;
        constexpr std::streamoff kRecordBytes = 4168;
        const Launch launch = freshRun("HealthMessageTest", gradedDrivesBench());
        std::fstream file(launch.program.parent_path() / "Message.db", std::ios::in | std::ios::out | std::ios::binary);
        std::streamoff record = 0;
        for (const std::string& text : texts) {
            file.seekp(record + kTextOffset);
            file.write(text.c_str(), static_cast<std::streamsize>(text.size() + 1));
            record += kRecordBytes;
        }
        file.close();
        ASSERT_TRUE(file);
        program_ = std::make_unique<Program>(launch);
        torvane().loadDrives();
    }

    [[nodiscard]] TorvaneWindow torvane() const { return TorvaneWindow(*program_); }

    [[nodiscard]] RECT writtenArea() const { return healthMessageInk(torvane()); }

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

    std::unique_ptr<Program> program_;
    Window message_;
};

std::string words(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "" : " ") + std::string("advice") + std::to_string(i);
    }
    return text;
}

TEST_F(HealthMessageTest, TakesSmallLettersAndTellsByATipWhatDoesNotFit) {
    const std::string inSmallLetters = words(16);
    const std::string tooLong = words(90);
    startWith({inSmallLetters, "First line\r\nSecond line", tooLong});

    pick("SOUND");
    ASSERT_EQ(message_.text(), inSmallLetters);
    expectSoon([&] {
        EXPECT_LT(height(writtenArea()), 14);
        EXPECT_LT(writtenArea().right, width(message_.rect()));
    });
    EXPECT_EQ(tip(std::chrono::seconds(3)), "") << "the text shows whole";

    pick("AGEING");
    ASSERT_EQ(message_.text(), "First line\r\nSecond line");
    EXPECT_EQ(tip(kPatience), message_.text());

    pick("WEARING");
    ASSERT_EQ(message_.text(), tooLong);
    expectSoon([&] { EXPECT_GT(writtenArea().right, width(message_.rect()) - 150) << "the line is used"; });
    EXPECT_EQ(tip(kPatience), tooLong);
}

} // namespace
} // namespace torvane::driver
