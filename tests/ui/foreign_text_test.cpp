// Texts outside ASCII, of drives and of the user: as they are, wherever they are shown.

#include "tests/ui/driver/input.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/health_bench.h"
#include "tests/ui/health_panel_reader.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <fstream>
#include <ios>
#include <string>

namespace torvane::driver {
namespace {

using ::testing::StartsWith;

constexpr int kHealthMessage = 1053;
constexpr int kSetReadOnly = 32820; // in the drive list's context menu

/// Drive 1 writes its degree sign as one byte, drive 2 in UTF-8.
class ForeignModelTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return pairBench()
            .drive("1-nvme", R"({"number": 1, "bus": "nvme", "size": "16 MiB", "road": "nvme-query",
                "identity": {"product": "TARN 45\u00b0C", "serial": "T1"}})")
            .drive("2-nvme", R"({"number": 2, "bus": "nvme", "size": "16 MiB", "road": "nvme-query",
                "identity": {"product": "TARN 60\u00c2\u00b0C", "serial": "T2"}})");
    }
};

TEST_F(ForeignModelTest, ReadsRightInListTitlesAndBoxes) {
    torvane().loadDrives();
    const ListView list = torvane().driveList();
    EXPECT_EQ(list.cell(1, 0), "TARN 45\xC2\xB0"
                               "C");
    EXPECT_EQ(list.cell(2, 0), "TARN 60\xC2\xB0"
                               "C");
    list.click(1);
    torvane().press(kQuickDiskView);
    const Window viewer = program().awaitDialog();
    EXPECT_EQ(viewer.text(), "Quick Disk View -- TARN 45\xC2\xB0"
                             "C");
    viewer.post(WM_CLOSE);
    await("the viewer has closed", [&] { return !viewer.exists(); });
    torvane().window().post(WM_COMMAND, kSetReadOnly);
    const MessageBoxWindow box = program().awaitBox();
    EXPECT_THAT(box.text(), StartsWith("Disk 001 - TARN 45\xC2\xB0"
                                       "C T1"));
    box.answer("No");
}

TEST(ForeignMessageTest, StandsUnderTheDialsAsItWasWritten) {
    const std::string text = "Zustand gut f\xC3\xBCr M\xC3\xBCller. \xD0\x94\xD0\xB8\xD1\x81\xD0\xBA \xD0\xB8\xD1\x81"
                             "\xD0\xBF\xD1\x80\xD0\xB0\xD0\xB2\xD0\xB5\xD0\xBD";
    const Launch launch = freshRun("ForeignMessage", soundDriveBench());
    std::fstream file(launch.program.parent_path() / "Message.db", std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(8); // the text of the first message
    file.write(text.c_str(), static_cast<std::streamsize>(text.size() + 1));
    file.close();
    ASSERT_TRUE(file);
    const Program program(launch);
    const TorvaneWindow torvane(program);
    torvane.loadDrives();
    torvane.driveList().click(0);
    parkMouse();
    torvane.window().awaitPainted();
    EXPECT_EQ(torvane.control(kHealthMessage).text(), text);
    expectSoon([&] { EXPECT_GT(healthMessageInk(torvane).right, 150); });
}

} // namespace
} // namespace torvane::driver
