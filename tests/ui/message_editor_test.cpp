#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/ui_test.h"

#include <algorithm>
#include <cstdint>

namespace torvane::driver {
namespace {

constexpr int kChoice = 1003;
constexpr int kText = 1004;
constexpr int kUpdate = 32782;
constexpr int kExitEditor = 32781;
constexpr int kEditMessages = 32; // in the system menu
constexpr std::size_t kRecordBytes = 4168;

/// A test that saves another message leaves the program used.
class MessageEditorTest : public UiTest {
  protected:
    [[nodiscard]] std::filesystem::path messageFile() const { return program().folder() / "Message.db"; }
    [[nodiscard]] std::string fileBytes() const { return readFile(messageFile()); }
    /// The text of a record in the file.
    [[nodiscard]] std::string savedText(std::size_t record) const {
        return fileBytes().substr(record * kRecordBytes + 8, kRecordBytes - 8).c_str();
    }

    [[nodiscard]] Window openEditor() const {
        torvane().window().post(WM_SYSCOMMAND, kEditMessages);
        const Window editor = program().awaitDialog();
        EXPECT_EQ(editor.text(), "Edit Messages");
        bringToFront(editor);
        return editor;
    }

    /// Chooses the next message as the keyboard does.
    static void chooseNext(const Window& editor) {
        const Window choice = editor.child(kChoice);
        clickAt(choice, centre(choice.rect()));
        pressKey(choice, VK_DOWN);
        pressKey(choice, VK_RETURN);
    }

    /// Types "x" at the start of the text.
    static void typeX(const Window& editor) {
        const RECT area = editor.child(kText).clientRect();
        clickAt(editor.child(kText), {area.left + 40, area.bottom - 10});
        pressKey(editor.child(kText), VK_HOME, VK_CONTROL);
        pressKey(editor.child(kText), 'X');
        await("the text begins with what was typed", [&] { return editor.child(kText).text().starts_with('x'); });
    }

    static void choose(const Window& editor, int menuItem) { editor.post(WM_COMMAND, static_cast<WPARAM>(menuItem)); }

    static void awaitClosed(const Window& editor) {
        await("the editor has closed", [&] { return !editor.exists(); });
    }
    static void close(const Window& editor) {
        choose(editor, kExitEditor);
        awaitClosed(editor);
    }
    /// Closes the editor although it holds changes.
    void drop(const Window& editor) const {
        choose(editor, kExitEditor);
        program().awaitBoxOver(editor).answer("Yes");
        awaitClosed(editor);
    }
};

TEST_F(MessageEditorTest, StandsInTheSystemMenuUnderAbout) {
    bringToFront(torvane().window());
    parkMouse();
    pressKey(torvane().window(), VK_SPACE, VK_MENU);
    pressKey(torvane().window(), VK_UP);
    pressKey(torvane().window(), VK_RETURN);
    const Window editor = program().awaitDialog();
    EXPECT_EQ(editor.text(), "Edit Messages") << "the last item";
    close(editor);
}

TEST_F(MessageEditorTest, ListsEveryMessageShowsTheChosenOneAndExitsWithoutAQuestion) {
    const Window editor = openEditor();
    EXPECT_EQ(editor.child(kChoice).send(CB_GETCOUNT), 4);
    EXPECT_EQ(editor.child(kChoice).text(), "Level 0, green lamp");
    EXPECT_EQ(editor.child(kText).text(), savedText(0));
    chooseNext(editor);
    EXPECT_EQ(editor.child(kChoice).text(), "Level 1, blue lamp");
    EXPECT_EQ(editor.child(kText).text(), savedText(1));
    pressKey(editor, VK_ESCAPE);
    awaitClosed(editor);
    expectNoBox();
}

TEST_F(MessageEditorTest, UpdateWritesEveryEditedMessageAndNothingElse) {
    leaveProgramUsed();
    const std::string before = fileBytes();
    const Window editor = openEditor();
    typeX(editor);
    chooseNext(editor);
    typeX(editor);
    choose(editor, kUpdate);
    const MessageBoxWindow box = program().awaitBoxOver(editor);
    EXPECT_EQ(box.caption(), "***** MESSAGE FILE SAVED *****");
    box.answer("OK");
    std::string expected = before;
    for (const std::size_t record : {0U, 1U}) {
        const std::string text = "x" + std::string(before.substr(record * kRecordBytes + 8).c_str());
        expected.replace(record * kRecordBytes + 8, text.size(), text);
    }
    EXPECT_EQ(fileBytes(), expected);
    EXPECT_FALSE(std::filesystem::exists(program().folder() / "Message.db.new"));
    close(editor);

    const Window again = openEditor();
    EXPECT_EQ(again.child(kText).text(), savedText(0)) << "the program works on what was saved";
}

TEST_F(MessageEditorTest, ExitAsksBeforeItDropsChanges) {
    const std::string before = fileBytes();
    const Window editor = openEditor();
    typeX(editor);
    choose(editor, kExitEditor);
    program().awaitBoxOver(editor).answer("No");
    EXPECT_EQ(editor.child(kText).text(), "x" + savedText(0)) << "nothing is lost by a No";
    drop(editor);
    EXPECT_EQ(fileBytes(), before);
    const Window again = openEditor();
    EXPECT_EQ(again.child(kText).text(), savedText(0)) << "dropped changes are gone";
    close(again);
}

TEST_F(MessageEditorTest, AFileThatCannotBeWrittenIsToldAndChangesNothing) {
    const std::string before = fileBytes();
    const Window editor = openEditor();
    typeX(editor);
    {
        const HANDLE held = CreateFileW(messageFile().c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(held, INVALID_HANDLE_VALUE);
        choose(editor, kUpdate);
        const MessageBoxWindow box = program().awaitBoxOver(editor);
        EXPECT_EQ(box.caption(), "***** ERROR ON MESSAGE FILE SAVE *****");
        EXPECT_EQ(box.icon(), BoxIcon::kStop);
        box.answer("OK");
        CloseHandle(held);
    }
    EXPECT_EQ(fileBytes(), before);
    EXPECT_EQ(torvane().log().back().message, "Could not SAVE message file");
    EXPECT_EQ(editor.child(kText).text(), "x" + savedText(0)) << "what was typed is still there";
    drop(editor);
}

class MessageEditorDuringJobTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return heldBench(); }

    /// How far the letters of the system menu's last item are from black. (Another process can look at the menu but
    /// not ask it for its items' states.)
    [[nodiscard]] int lastSystemMenuItemPaleness() const {
        const Window window = torvane().window();
        bringToFront(window);
        parkMouse();
        pressKey(window, VK_SPACE, VK_MENU);
        Window menu;
        await("the system menu is open", [&] {
            for (const Window& open : topLevelWindows(program().processId())) {
                menu = open.className() == "#32768" && open.visible() ? open : menu;
            }
            return menu.exists();
        });
        // The last item's letters, without the menu's frame.
        const RECT all = menu.rect();
        const RECT letters{all.left + 20, all.bottom - 17, all.right - 10, all.bottom - 4};
        int paleness = 0;
        await("the last item is painted", [&] {
            const Picture item = Picture::ofScreen(letters);
            paleness = letterPaleness(item);
            return isPaper(distance(item.commonest(), 0)) && !isPaper(paleness);
        });
        pressKey(window, VK_ESCAPE);
        await("the system menu has closed", [&] { return !menu.visible(); });
        return paleness;
    }
    static constexpr int kPale = 150; // of 765

    /// How far the darkest pixel is from black.
    static int letterPaleness(const Picture& item) {
        int paleness = distance(RGB(255, 255, 255), 0);
        for (int y = 0; y < item.height(); ++y) {
            for (int x = 0; x < item.width(); ++x) {
                paleness = std::min(paleness, distance(item.at(x, y), 0));
            }
        }
        return paleness;
    }
    static bool isPaper(int paleness) { return paleness > 600; }

    /// Chooses the last item of the system menu, and leaves the menu if it is still open.
    void chooseLastSystemMenuItem() const {
        const Window window = torvane().window();
        bringToFront(window);
        parkMouse();
        pressKey(window, VK_SPACE, VK_MENU);
        pressKey(window, VK_UP);
        pressKey(window, VK_RETURN);
    }
};

TEST_F(MessageEditorDuringJobTest, IsNotOffered) {
    EXPECT_LT(lastSystemMenuItemPaleness(), kPale) << "before the job";
    torvane().startLoading();
    EXPECT_GT(lastSystemMenuItemPaleness(), kPale) << "is not greyed";
    chooseLastSystemMenuItem();
    expectNoBox();
    // Nor does the command itself open it, from a menu that was open before the job: it says why.
    torvane().window().post(WM_SYSCOMMAND, kEditMessages);
    const MessageBoxWindow box = program().awaitBox();
    EXPECT_EQ(box.caption(), "***** Working *****");
    EXPECT_EQ(box.text(),
              "Still at work: the drive scan.\n\nThe messages were not opened for editing. Please try again "
              "when that has ended.");
    box.answer("OK");
    program().hurry();
    torvane().awaitLoaded();
    EXPECT_LT(lastSystemMenuItemPaleness(), kPale) << "after the job";
    chooseLastSystemMenuItem();
    EXPECT_EQ(program().awaitDialog().text(), "Edit Messages") << "after the job";
}

} // namespace
} // namespace torvane::driver
