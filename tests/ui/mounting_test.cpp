#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

namespace torvane::driver {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kDisabledCaption = "***** MOUNTING DISABLED -- REBOOT *****";
constexpr const char* kDisabledText = "Mounting Status is already DISABLED. If not working TRY REBOOTING for mounting "
                                      "status change to register. Continue DISABLE anyway?";
constexpr const char* kEnabledCaption = "***** MOUNTING ENABLED -- REBOOT *****";
constexpr const char* kEnabledText = "Mounting Status is already ENABLED. If not working TRY REBOOTING for mounting "
                                     "status change to register. Continue ENABLE anyway?";

/// Every test starts the program anew: what diskpart changes stays on the bench.
class MountingTest : public UiTest {
  protected:
    void SetUp() override {
        UiTest::SetUp();
        leaveProgramUsed();
    }
    /// What diskpart was told to change.
    [[nodiscard]] std::vector<std::string> changes() const {
        return program().benchLog({"request=diskpart", "script-line=\"automount "});
    }
    void expectOutcome(const std::string& caption, const std::string& text) const {
        const MessageBoxWindow box = program().awaitBox();
        EXPECT_EQ(box.caption(), caption);
        EXPECT_EQ(box.text(), text);
        box.answer("OK");
        expectNoBox();
    }
};

TEST_F(MountingTest, DisablingSaysWhenItIsDoneAndAsksTheNextTime) {
    torvane().press(kDisableMounting);
    expectOutcome("****** DISABLED ******", "Drive Mounting has been DISABLED");
    const std::vector<std::string> first = changes();
    EXPECT_THAT(first, Contains(HasSubstr("automount disable")));
    EXPECT_THAT(first, Contains(HasSubstr("automount scrub")));

    torvane().press(kDisableMounting);
    expectQuestion(kDisabledCaption, kDisabledText, "No");
    expectNoBox();
    EXPECT_EQ(changes(), first) << "a No runs something";

    torvane().command(kMenuDisableMounting);
    expectQuestion(kDisabledCaption, kDisabledText, "Yes");
    expectOutcome("****** DISABLED ******", "Drive Mounting has been DISABLED");
    EXPECT_GT(changes().size(), first.size());
}

TEST_F(MountingTest, EnablingWhatIsEnabledAsksAndIsDoneOnAYes) {
    torvane().press(kEnableMounting);
    expectQuestion(kEnabledCaption, kEnabledText, "No");
    expectNoBox();
    EXPECT_THAT(changes(), IsEmpty());

    torvane().command(kMenuEnableMounting);
    expectQuestion(kEnabledCaption, kEnabledText, "Yes");
    expectOutcome("****** ENABLED ******", "Drive Mounting has been ENABLED");
    await("diskpart was told", [this] { return !changes().empty(); });
    EXPECT_THAT(changes(), Contains(HasSubstr("automount enable")));
    EXPECT_THAT(changes(), Not(Contains(HasSubstr("automount disable"))));
}

TEST_F(MountingTest, EnablingIsDoneWithoutAQuestionWhenMountingIsDisabled) {
    restart(pairBench().bench(R"({"automount": false})"));
    torvane().press(kEnableMounting);
    // The first look is half a second after the press: it reports what the status was then, changed already or not.
    const MessageBoxWindow box = program().awaitBox();
    EXPECT_THAT(box.caption(), ::testing::AnyOf("****** ENABLED ******", "****** NOT ENABLED ******"));
    box.answer("OK");
    await("diskpart was told", [this] { return changes().size() >= 2; });
    EXPECT_THAT(changes(), Contains(HasSubstr("automount enable")));
}

} // namespace
} // namespace torvane::driver
