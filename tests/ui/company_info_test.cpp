#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/text.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <array>
#include <fstream>
#include <string>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;

constexpr int kName = 1010;
constexpr int kAddress = 1011;
constexpr int kPhone = 1012;
constexpr int kExitCompany = 32801;
constexpr int kSaveCompany = 32802;
constexpr int kSaveButton = 1400;
constexpr int kExitButton = 1401;
constexpr const char* kNotSaved = "***** COMPANY INFORMATION NOT SAVED *****";
constexpr const char* kDropThem = "The company information was edited but not saved. Do you want to drop the changes?";
constexpr std::array<int, 3> kTexts = {kName, kAddress, kPhone};

/// A text in a field of 256 bytes.
std::string field(const std::string& text) {
    return text + std::string(256 - text.size(), '\0');
}

class CompanyInfoTest : public UiTest {
  protected:
    [[nodiscard]] std::filesystem::path file() const { return program().folder() / "Config.db"; }
    [[nodiscard]] std::string fileBytes() const { return readFile(file()); }

    [[nodiscard]] Window openDialog() const {
        torvane().command(kMenuCompany);
        return program().awaitDialog();
    }
    static void setText(const Window& dialog, int id, const std::string& text) {
        SendMessageW(dialog.child(id).handle(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(toWide(text).c_str()));
    }
    static void choose(const Window& dialog, int item) { dialog.post(WM_COMMAND, static_cast<WPARAM>(item)); }
    void expectStopBoxOver(const Window& dialog, const std::string& caption, const std::string& text) const {
        expectBoxOver(dialog, caption, text, BoxIcon::kStop, "OK");
    }
    static void close(const Window& dialog) {
        choose(dialog, kExitCompany);
        await("the dialog has closed", [&] { return !dialog.exists(); });
    }
    void expectLastLog(const std::string& type, const std::string& message) const {
        EXPECT_EQ(torvane().log().back().type, type);
        EXPECT_EQ(torvane().log().back().message, message);
    }
};

TEST_F(CompanyInfoTest, OfAFreshInstallAsksToBeFilledIn) {
    ASSERT_EQ(fileBytes().size(), 768U) << "it ships";
    EXPECT_EQ(fileBytes().substr(0, 256), field("KVL Data"));
    const Window dialog = openDialog();
    EXPECT_EQ(dialog.child(kName).text(), "KVL Data");
    EXPECT_THAT(dialog.child(kAddress).text(), HasSubstr("Your address"));
    EXPECT_THAT(dialog.child(kPhone).text(), HasSubstr("Your phone"));
    close(dialog);
}

TEST_F(CompanyInfoTest, HasALabelBesideEachText) {
    const Window dialog = openDialog();
    const std::array<RECT, 3> places{RECT{10, 14, 100, 34}, RECT{10, 48, 100, 68}, RECT{10, 82, 100, 102}};
    const std::array<const char*, 3> words{"Company", "Address", "Phone"};
    const RECT client = dialog.clientRect();
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Window label = dialog.child(8000 + static_cast<int>(i));
        const Window text = dialog.child(kTexts.at(i));
        EXPECT_EQ(label.text(), words.at(i));
        EXPECT_EQ(toText(label.rectIn(dialog)), toText(places.at(i)));
        EXPECT_TRUE(label.visible() && text.visible());
        EXPECT_TRUE(inside(text.rect(), client));
        EXPECT_FALSE(overlap(text.rect(), label.rect()));
        EXPECT_TRUE(label.rect().top < centre(text.rect()).y && centre(text.rect()).y < label.rect().bottom)
            << "on one line";
        EXPECT_GE(width(text.rect()), 164) << "dialog units are no smaller than pixels";
    }
    close(dialog);
}

TEST_F(CompanyInfoTest, IsInTheProgramsColours) {
    const Window dialog = openDialog();
    parkMouse();
    dialog.awaitPainted();
    expectSoon([&] {
        const Picture picture = Picture::ofScreen(dialog.clientRect());
        EXPECT_EQ(toText(picture.at(4, 4)), toText(RGB(218, 223, 234)));
        const Picture label = Picture::ofScreen(dialog.child(8000).rect());
        EXPECT_EQ(toText(label.commonest()), toText(RGB(218, 223, 234)));
    });
    close(dialog);
}

TEST_F(CompanyInfoTest, IsTypedSavedAndShownAgain) {
    const Window dialog = openDialog();
    bringToFront(dialog);
    // The first text has the focus, and all of it is selected.
    await("the first text has the focus", [&] { return focused(dialog) == dialog.child(kName); });
    for (const char key : {'A', 'C', 'M', 'E'}) {
        pressKey(dialog, static_cast<WORD>(key));
    }
    pressKey(dialog, VK_TAB);
    EXPECT_EQ(focused(dialog), dialog.child(kAddress));
    pressKey(dialog, 'B');
    pressKey(dialog, VK_TAB);
    pressKey(dialog, '7');
    await("all is typed", [&] { return dialog.child(kPhone).text() == "7"; });
    choose(dialog, kSaveCompany);
    expectStopBoxOver(dialog, "***** CONFIG FILE SAVED *****", "Config file successfully saved.");
    EXPECT_EQ(fileBytes(), field("acme") + field("b") + field("7"));
    expectLastLog("SUCCESS", "Config file SAVED");
    close(dialog);

    const Window again = openDialog();
    EXPECT_EQ(again.child(kName).text(), "acme");
    EXPECT_EQ(again.child(kAddress).text(), "b");
    EXPECT_EQ(again.child(kPhone).text(), "7");
    close(again);
}

TEST_F(CompanyInfoTest, IsCutAt255CharactersAndKeepsForeignOnes) {
    const Window dialog = openDialog();
    setText(dialog, kName, std::string(256, 'n'));
    setText(dialog, kAddress, std::string(1000, 'a'));
    const std::string phone = toUtf8(L"\u00FC\u20AC");
    setText(dialog, kPhone, phone);
    press(dialog.child(kSaveButton));
    expectStopBoxOver(dialog, "***** CONFIG FILE SAVED *****", "Config file successfully saved.");
    EXPECT_EQ(fileBytes(), field(std::string(255, 'n')) + field(std::string(255, 'a')) + field(phone));
    close(dialog);
}

TEST_F(CompanyInfoTest, ThatIsLeftUnsavedStaysAsItWas) {
    const std::string before = fileBytes();
    const Window dialog = openDialog();
    const std::string name = dialog.child(kName).text();
    setText(dialog, kName, "never saved");
    pressKey(dialog, VK_ESCAPE);
    expectBoxOver(dialog, kNotSaved, kDropThem, BoxIcon::kNone, "No");
    EXPECT_EQ(dialog.child(kName).text(), "never saved") << "nothing is lost by a slip";
    press(dialog.child(kExitButton));
    expectBoxOver(dialog, kNotSaved, kDropThem, BoxIcon::kNone, "Yes");
    await("the dialog has closed", [&] { return !dialog.exists(); });
    expectNoBox();
    EXPECT_EQ(fileBytes(), before);
    const Window again = openDialog();
    EXPECT_EQ(again.child(kName).text(), name);
    close(again);
}

TEST_F(CompanyInfoTest, WhoseFileIsGoneIsNotSaved) {
    const Window dialog = openDialog();
    setText(dialog, kName, "nowhere to go");
    std::filesystem::remove(file());
    choose(dialog, kSaveCompany);
    expectStopBoxOver(dialog, "***** ERROR ON CONFIG FILE SAVE *****",
                      "Could not open [Config.db] config file. Config not saved");
    expectLastLog("ERROR", "Could not WRITE config file");
    EXPECT_FALSE(std::filesystem::exists(file()));
    choose(dialog, kExitCompany);
    expectBoxOver(dialog, kNotSaved, kDropThem, BoxIcon::kNone, "Yes");
    await("the dialog has closed", [&] { return !dialog.exists(); });
    const Window again = openDialog();
    EXPECT_NE(again.child(kName).text(), "nowhere to go");
    close(again);
    leaveProgramUsed();
}

TEST(CompanyInfoAtStart, WhatWasSavedBeforeIsThere) {
    const Launch launch = freshRun("CompanyInfoAtStart.Saved", pairBench());
    const std::wstring name = L"M\u00FCller & S\u00F6hne \u20AC";
    std::ofstream(launch.program.parent_path() / "Config.db", std::ios::binary)
        << field(toUtf8(name)) + field("b") + field("7");
    const Program program(launch);
    TorvaneWindow(program).command(kMenuCompany);
    EXPECT_EQ(program.awaitDialog().child(kName).text(), toUtf8(name));
}

TEST(CompanyInfoAtStart, ATooShortFileIsTold) {
    const Launch launch = freshRun("CompanyInfoAtStart", pairBench());
    std::ofstream(launch.program.parent_path() / "Config.db", std::ios::binary) << "too short";
    const Program program(launch);
    const MessageBoxWindow box = program.awaitBox();
    EXPECT_EQ(box.caption(), "***** ERROR ON CONFIG FILE READ *****");
    EXPECT_EQ(box.text(), "Could not read data from config file");
    EXPECT_EQ(box.icon(), BoxIcon::kStop);
    box.answer("OK");
    const auto mainWindow = [&] {
        for (const Window& window : topLevelWindows(program.processId())) {
            if (window.visible() && window.hasChild(kLogList)) {
                return window;
            }
        }
        return Window();
    };
    await("the main window shows", [&] { return mainWindow().exists(); });
    const ListView log(mainWindow().child(kLogList));
    ASSERT_EQ(log.rowCount(), 1);
    EXPECT_EQ(log.cell(0, 0), "ERROR");
    EXPECT_EQ(log.cell(0, 3), "Could not READ config file. Using default");
}

} // namespace
} // namespace torvane::driver
