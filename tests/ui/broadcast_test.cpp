// Tools that tell all windows of something, as a change of the file associations does, and wait for each.

#include "tests/ui/driver/input.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace torvane::driver {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr int kBeginScan = 1026;
constexpr int kExitScan = 1025;
constexpr int kSetReadOnly = 32820; // in the drive list's context menu

class BroadcastTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        return pairBench().bench(
            R"({"tools": {"powershell": {"broadcasts": true}, "diskpart": {"broadcasts": true}}})");
    }

    /// Expects that a tool has told all windows since, and that each has answered at once.
    void expectAnswered(const std::string& what) {
        std::vector<std::string> lines = program().benchLog({"request=broadcast"});
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(seen_));
        seen_ += lines.size();
        EXPECT_THAT(lines, Not(IsEmpty())) << what;
        EXPECT_THAT(lines, Each(HasSubstr("result=ok"))) << what;
    }

  private:
    std::size_t seen_ = 0;
};

TEST_F(BroadcastTest, EveryCommandThatWaitsForAToolAnswersMeanwhile) {
    torvane().loadDrives();
    expectAnswered("the scan");
    torvane().driveList().click(1);
    torvane().press(kCreateReport);
    program().awaitBox().answer("OK");
    expectAnswered("the report");
    torvane().press(kDataServices);
    await("the page is opened", [&] { return !program().benchLog({"opened=", "about-page.php"}).empty(); });
    expectAnswered("a web page");
    torvane().window().post(WM_COMMAND, kSetReadOnly);
    program().awaitBox().answer("Yes");
    program().awaitBox().answer("OK");
    expectAnswered("a change of the disk");
    torvane().press(kDisableMounting);
    program().awaitBox().answer("OK");
    expectAnswered("mounting");
    torvane().driveList().click(0);
    torvane().command(kMenuBitLocker);
    const Window dialog = program().awaitDialog();
    press(dialog.child(kBeginScan));
    await("the volume was asked", [&] { return !program().benchLog({"request=powershell", "BitLocker"}).empty(); });
    press(dialog.child(kExitScan));
    await("the dialog has closed", [&] { return !dialog.exists(); });
    expectAnswered("BitLocker");
    expectEnd();
    torvane().press(kExit);
    program().awaitBox().answer("Yes");
    program().awaitBox().answer("No"); // mounting is disabled
    program().awaitEnd();
    expectAnswered("the end");
}

} // namespace
} // namespace torvane::driver
