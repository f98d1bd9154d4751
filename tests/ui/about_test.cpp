#include "tests/ui/driver/input.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace torvane::driver {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

constexpr WPARAM kAbout = 16;
constexpr int kBuild = 1402;
constexpr int kSmartctl = 1403;
constexpr int kLicences = 1404;
constexpr int kText = 1406;

class AboutTest : public UiTest {
  protected:
    [[nodiscard]] Window openAbout() const {
        torvane().window().post(WM_SYSCOMMAND, kAbout);
        return program().awaitDialog();
    }
    static void close(const Window& dialog) {
        pressKey(dialog, VK_ESCAPE);
        await("the dialog has closed", [&] { return !dialog.exists(); });
    }
};

TEST_F(AboutTest, TellsVersionBuildAndToolAndShowsTheLicences) {
    const Window about = openAbout();
    EXPECT_THAT(about.child(kBuild).text(), MatchesRegex(R"(Version \d+\.\d+\.\d+, build \w+-?\w*)"));
    EXPECT_THAT(about.child(kSmartctl).text(), MatchesRegex("smartctl.exe: version \\d+\\.\\d+\\.\\d+\\.\\d+"));
    press(about.child(kLicences));
    Window licences;
    await("the licences show", [&] {
        licences = program().dialog().value_or(Window());
        return licences.text() == "Licences";
    });
    EXPECT_THAT(licences.child(kText).text(), AllOf(StartsWith("TORVANE"), HasSubstr("smartmontools")));
    close(licences);
    close(about);
}

TEST_F(AboutTest, TellsWhatIsMissing) {
    std::filesystem::rename(program().folder() / "smartctl.exe", program().folder() / "away.exe");
    std::filesystem::rename(program().folder() / "license.txt", program().folder() / "away.txt");
    const Window about = openAbout();
    EXPECT_EQ(about.child(kSmartctl).text(), "smartctl.exe is missing: no drive can be asked for its health");
    press(about.child(kLicences));
    expectBoxOver(about, "***** NO LICENCE FILE *****",
                  "license.txt, which belongs beside the program, could not be read", BoxIcon::kStop, "OK");
    close(about);
    std::filesystem::rename(program().folder() / "away.exe", program().folder() / "smartctl.exe");
    std::filesystem::rename(program().folder() / "away.txt", program().folder() / "license.txt");
}

} // namespace
} // namespace torvane::driver
