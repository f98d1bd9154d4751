#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/remote_memory.h"
#include "tests/ui/driver/screen.h"
#include "tests/ui/expect_soon.h"

#include <commctrl.h>

#include <algorithm>
#include <set>

namespace torvane::driver {
namespace {

constexpr WPARAM kAbout = 16;
constexpr WPARAM kEditMessages = 32;

int screenDpi() {
    return static_cast<int>(GetDpiForSystem());
}

/// A length at 96 dots to the inch in pixels of that many.
int atDpi(int length, int dpi = screenDpi()) {
    return MulDiv(length, dpi, 96);
}

RECT workArea() {
    RECT area{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
}

std::vector<Window> shownControls(const Window& window) {
    std::vector<Window> shown = window.children();
    std::erase_if(shown, [](const Window& control) {
        const RECT place = control.rect();
        return !control.visible() || width(place) == 0 || height(place) == 0;
    });
    return shown;
}

void expectNoOverlap(const Window& window) {
    const std::vector<Window> controls = shownControls(window);
    for (std::size_t i = 0; i < controls.size(); ++i) {
        for (std::size_t j = i + 1; j < controls.size(); ++j) {
            EXPECT_FALSE(overlap(controls[i].rect(), controls[j].rect()))
                << controls[i].describe() << " and " << controls[j].describe();
        }
    }
}

/// Text as a dialog draws it, in a font of its size.
class DialogText {
  public:
    explicit DialogText(int points = 8)
        : context_(CreateCompatibleDC(nullptr)),
          font_(CreateFontW(-MulDiv(points, screenDpi(), 72), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                            OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, L"MS Shell Dlg")),
          previous_(SelectObject(context_, font_)) {}
    ~DialogText() {
        SelectObject(context_, previous_);
        DeleteObject(font_);
        DeleteDC(context_);
    }
    DialogText(const DialogText&) = delete;
    DialogText& operator=(const DialogText&) = delete;

    /// What the text takes when its lines are that wide.
    [[nodiscard]] SIZE size(const std::string& text, LONG lineWidth) const {
        RECT needed{0, 0, lineWidth, 0};
        DrawTextA(context_, text.c_str(), -1, &needed, DT_CALCRECT | DT_WORDBREAK);
        return {needed.right, needed.bottom};
    }

  private:
    HDC context_;
    HFONT font_;
    HGDIOBJ previous_;
};

bool isCaption(const Window& control) {
    constexpr LONG_PTR kEllipses = SS_ELLIPSISMASK;
    return control.className() == "Static" && (control.style() & kEllipses) == 0 &&
           (control.style() & SS_TYPEMASK) <= SS_RIGHT;
}

void expectNoCaptionCut(const Window& window) {
    const DialogText texts;
    for (const Window& control : shownControls(window)) {
        const RECT room = control.rect();
        if (control.className() == "Button") {
            EXPECT_LE(idealButtonSize(control).cx, width(room)) << control.describe();
        } else if (isCaption(control)) {
            const SIZE needed = texts.size(control.text(), width(room));
            EXPECT_LE(needed.cx, width(room)) << control.describe();
            EXPECT_LE(needed.cy, height(room)) << control.describe();
        }
    }
}

/// Walks through the window's controls with the Tab key. Each must be in sight when it has the keyboard, but for a list
/// that is larger than the window, which must begin there. Gives back the buttons that were met.
std::set<int> walkThrough(const Window& window) {
    bringToFront(window);
    std::set<HWND> met;
    std::set<int> buttons;
    for (;;) {
        const Window before = focused(window);
        pressKey(before, VK_TAB);
        static_cast<void>(waitUntil([&] { return focused(window) != before; }, std::chrono::seconds(2)));
        window.settle();
        const Window control = focused(window);
        if (!met.insert(control.handle()).second) {
            return buttons;
        }
        const RECT place = control.rect();
        const RECT sight = window.clientRect();
        if (control.className() == "Button") {
            buttons.insert(control.id());
            EXPECT_TRUE(inside(place, sight)) << control.describe() << " in " << toText(sight);
        } else {
            EXPECT_TRUE(overlap(place, sight)) << control.describe() << " in " << toText(sight);
        }
    }
}

/// Of its group the Tab key meets the chosen one alone; the arrow keys go on from there.
bool isUnchosenRadioButton(const Window& button) {
    return (button.style() & BS_TYPEMASK) == BS_AUTORADIOBUTTON && button.send(BM_GETCHECK) != BST_CHECKED;
}

std::set<int> buttonsOf(const Window& window) {
    std::set<int> buttons;
    for (const Window& control : shownControls(window)) {
        if (control.className() == "Button" && !isUnchosenRadioButton(control)) {
            buttons.insert(control.id());
        }
    }
    return buttons;
}

void scrollToEnd(const Window& window, bool end) {
    for (const UINT message : {WM_HSCROLL, WM_VSCROLL}) {
        window.send(message, end ? SB_BOTTOM : SB_TOP);
    }
    window.settle();
}

/// Every window of the program at the system's scale, on whatever screen there is. The pictures stay, to be looked at.
class ScalingTest : public CopyUiTest {
  protected:
    static void keepPicture(const Window& window, const std::string& name) {
        parkMouse();
        window.awaitPainted();
        const RECT screen = wholeScreen();
        const std::string folder = std::string(TORVANE_SCALING_PICTURES) + "/" + std::to_string(screenDpi()) + "-" +
                                   std::to_string(screen.right) + "x" + std::to_string(screen.bottom);
        Picture::atRest(window.rect()).save(folder + "/" + name + ".png");
    }

    static void expectWellLaidOut(const Window& window, const std::string& name) {
        SCOPED_TRACE(name);
        keepPicture(window, name);
        EXPECT_TRUE(inside(window.rect(), workArea())) << toText(window.rect());
        expectNoOverlap(window);
        expectNoCaptionCut(window);
        EXPECT_EQ(walkThrough(window), buttonsOf(window));
    }

    static void close(const Window& dialog) {
        dialog.post(WM_CLOSE);
        await("the dialog has closed", [&] { return !dialog.exists(); });
    }

    [[nodiscard]] Window opened(int menuCommand) const {
        torvane().window().post(WM_COMMAND, static_cast<WPARAM>(menuCommand));
        return program().awaitDialog();
    }

    void chooseSource() const {
        torvane().loadDrivesOnce();
        scrollToEnd(torvane().window(), false);
        torvane().driveList().click(torvane().driveList().rowWith(0, "SOURCE"));
    }

    /// Tells the window, as the system does, that its monitor has that many dots to the inch now.
    static void changeScale(const Window& window, int from, int to) {
        const RECT before = window.rect();
        const RECT suggested{before.left, before.top, before.left + MulDiv(width(before), to, from),
                             before.top + MulDiv(height(before), to, from)};
        const RemoteMemory memory(window.handle(), sizeof suggested);
        memory.write(0, &suggested, sizeof suggested);
        window.send(WM_DPICHANGED, static_cast<WPARAM>(MAKELONG(to, to)), static_cast<LPARAM>(memory.address()));
        window.settle();
    }

    static std::vector<std::string> placesIn(const Window& window) {
        std::vector<std::string> places;
        for (const Window& control : shownControls(window)) {
            places.push_back(std::to_string(control.id()) + " " + toText(control.rectIn(window)));
        }
        return places;
    }
};

TEST_F(ScalingTest, MainWindowIsLaidOutForItsScreen) {
    const Window window = torvane().window();
    chooseSource();
    const RECT area = workArea();
    EXPECT_EQ(width(window.rect()), std::min<LONG>(atDpi(1190), width(area)));
    expectWellLaidOut(window, "main");
    scrollToEnd(window, true);
    torvane().setLogOpen(true);
    scrollToEnd(window, false);
    expectWellLaidOut(window, "main-log");
    scrollToEnd(window, true);
    keepPicture(window, "main-log-end");
    const RECT log = torvane().logList().window().rect();
    EXPECT_LE(log.bottom, window.clientRect().bottom);
    EXPECT_GE(height(log), atDpi(62));
    torvane().setLogOpen(false);
    scrollToEnd(window, false);
}

TEST_F(ScalingTest, EveryButtonCanBeScrolledIntoView) {
    const Window window = torvane().window();
    scrollToEnd(window, true);
    EXPECT_TRUE(inside(window.child(kTerminate).rect(), window.clientRect())) << "at the far end";
    EXPECT_TRUE(inside(window.child(kLogToggle).rect(), window.clientRect()));
    scrollToEnd(window, false);
    const RECT list = torvane().driveList().window().rectIn(window);
    EXPECT_EQ(list.left, atDpi(10));
    EXPECT_EQ(list.top, atDpi(20));
}

TEST_F(ScalingTest, ListsAndTheirRowsAreScaled) {
    torvane().loadDrivesOnce();
    const ListView list = torvane().driveList();
    EXPECT_EQ(list.columnWidth(0), atDpi(250));
    EXPECT_EQ(list.columnWidth(5), atDpi(460));
    const RECT cell = list.cellRect(0, 1);
    EXPECT_GE(height(cell), DialogText().size("Xg", 1000).cy);
}

TEST_F(ScalingTest, DialogsOfSettingsFit) {
    torvane().window().post(WM_SYSCOMMAND, kAbout);
    const Window about = program().awaitDialog();
    expectWellLaidOut(about, "about");
    close(about);
    torvane().window().post(WM_SYSCOMMAND, kEditMessages);
    const Window editor = program().awaitDialog();
    keepPicture(editor, "messages");
    EXPECT_TRUE(inside(editor.rect(), workArea()));
    expectNoCaptionCut(editor);
    close(editor);
    const Window company = opened(kMenuCompany);
    expectWellLaidOut(company, "company");
    close(company);
}

TEST_F(ScalingTest, DialogsOfADriveFit) {
    chooseSource();
    torvane().press(kQuickDiskView);
    const Window hex = program().awaitDialog();
    keepPicture(hex, "hex");
    EXPECT_TRUE(inside(hex.rect(), workArea()));
    expectNoOverlap(hex);
    for (const Window& pane : shownControls(hex)) {
        EXPECT_TRUE(inside(pane.rect(), hex.clientRect())) << pane.describe();
    }
    close(hex);
    torvane().press(kNistTest);
    const Window test = program().awaitDialog();
    expectWellLaidOut(test, "read-test");
    test.post(WM_CLOSE);
    program().awaitBoxOver(test).answer("Yes");
    await("the read test's dialog has closed", [&] { return !test.exists(); });
    const Window keys = opened(kMenuBitLocker);
    expectWellLaidOut(keys, "bitlocker");
    close(keys);
    const Window details = opened(kMenuDriveDetails);
    expectWellLaidOut(details, "details");
    close(details);
}

TEST_F(ScalingTest, CopyDialogsAndTheirWarningFit) {
    const CopyDialogWindow clone = openClone("SOURCE");
    expectWellLaidOut(clone.window(), "clone");
    clone.tickDestination("TARGET");
    clone.start();
    const Window warning = awaitWarning(program());
    expectWellLaidOut(warning, "warning");
    answerWarning("No");
    expectBoxOver(clone, "***** Function Cancelled *****", "Clone could not be started", BoxIcon::kStop, "OK");
    clone.leave();
    const CopyDialogWindow image = openImage("SOURCE", emptyFolder("scaled"));
    expectWellLaidOut(image.window(), "image");
    image.leave();
    const CopyDialogWindow forensic = openForensic("SOURCE", emptyFolder("scaled-forensic"));
    expectWellLaidOut(forensic.window(), "forensic-image");
    constexpr int kCase = 1301;
    forensic.window().post(WM_COMMAND, kCase);
    Window caseInformation;
    await("the case dialog opens", [&] {
        caseInformation = program().dialog().value_or(Window());
        return caseInformation.text() == "Case Information";
    });
    keepPicture(caseInformation, "case-information");
    EXPECT_TRUE(inside(caseInformation.rect(), workArea()));
    expectNoOverlap(caseInformation);
    expectNoCaptionCut(caseInformation);
    close(caseInformation);
    forensic.leave();
    const std::filesystem::path file = emptyFolder("scaled-back") / "some.img";
    writeFile(file, std::string(kMebibyte, 'x'));
    const CopyDialogWindow back = openImageToDrive(file);
    expectWellLaidOut(back.window(), "image-to-drive");
    back.leave();
    const CopyDialogWindow verification = openVerifyImage(file);
    expectWellLaidOut(verification.window(), "verify-image");
    verification.leave();
    const CopyDialogWindow rescue = openRescue("SOURCE");
    expectWellLaidOut(rescue.window(), "rescue");
    rescue.leave();
}

TEST_F(ScalingTest, AScreenThatChangesWhileTheWindowIsAnIconIsTakenUpWhenItIsThereAgain) {
    const Window window = torvane().window();
    scrollToEnd(window, false);
    const RECT placeBefore = window.rect();
    const std::vector<std::string> before = placesIn(window);
    window.send(WM_SYSCOMMAND, SC_MINIMIZE);
    await("the window is an icon", [&] { return IsIconic(window.handle()) != FALSE; });
    window.send(WM_DISPLAYCHANGE, 32, MAKELPARAM(width(workArea()), height(workArea())));
    window.send(WM_SYSCOMMAND, SC_RESTORE);
    await("the window is there again", [&] { return IsIconic(window.handle()) == FALSE; });
    expectSoon([&] {
        scrollToEnd(window, false);
        EXPECT_EQ(placesIn(window), before);
        EXPECT_EQ(toText(window.rect()), toText(placeBefore));
    });
}

TEST_F(ScalingTest, MainWindowFollowsItsMonitorsScaleThereAndBack) {
    const Window window = torvane().window();
    torvane().loadDrivesOnce();
    torvane().awaitProgressHidden();
    scrollToEnd(window, false);
    const int other = screenDpi() == 144 ? 120 : 144;
    const RECT placeBefore = window.rect();
    const std::vector<std::string> before = placesIn(window);
    const ListView list = torvane().driveList();
    const LONG rowBefore = height(list.cellRect(0, 1));

    changeScale(window, screenDpi(), other);
    keepPicture(window, "main-as-at-" + std::to_string(other));
    EXPECT_TRUE(inside(window.rect(), workArea())) << toText(window.rect());
    const RECT button = window.child(kLoadDrives).rectIn(window);
    EXPECT_EQ(width(button), atDpi(10 + 154, other) - atDpi(10, other));
    EXPECT_EQ(list.columnWidth(0), atDpi(250, other));
    EXPECT_NE(height(list.cellRect(0, 1)), rowBefore) << "the font is another one";
    EXPECT_EQ(walkThrough(window), buttonsOf(window));

    scrollToEnd(window, false);
    changeScale(window, other, screenDpi());
    expectSoon([&] {
        scrollToEnd(window, false); // what has the keyboard was brought into view
        EXPECT_EQ(placesIn(window), before);
    });
    EXPECT_EQ(width(window.rect()), width(placeBefore));
    EXPECT_EQ(height(window.rect()), height(placeBefore));
    EXPECT_LT(height(list.cellRect(0, 1)), atDpi(24)) << "so did the font";
}

TEST_F(ScalingTest, AnOpenDialogFollowsItsMonitorsScaleThereAndBack) {
    const CopyDialogWindow clone = openClone("SOURCE");
    const Window dialog = clone.window();
    const int other = screenDpi() == 144 ? 120 : 144;
    scrollToEnd(dialog, false);
    const std::vector<std::string> before = placesIn(dialog);
    clone.tickDestination("SMALL");
    changeScale(dialog, screenDpi(), other);
    keepPicture(dialog, "clone-as-at-" + std::to_string(other));
    expectNoOverlap(dialog);
    const RECT exit = clone.exitButton().rectIn(dialog);
    EXPECT_EQ(height(exit), atDpi(324, other) - atDpi(296, other));
    EXPECT_EQ(clone.destinations().columnWidth(0), atDpi(166, other));
    EXPECT_TRUE(clone.destinations().ticked(clone.destinations().rowWith(0, "SMALL"))) << "ticks stay";
    scrollToEnd(dialog, false);
    changeScale(dialog, other, screenDpi());
    scrollToEnd(dialog, false);
    EXPECT_EQ(placesIn(dialog), before);
    clone.leave();
}

TEST_F(ScalingTest, TutorialFits) {
    const Launch launch = freshRun("ScalingTest.Tutorial", pairBench());
    std::filesystem::remove(launch.program.parent_path() / "TutorialData.db");
    const Program started(launch);
    const Window tutorial = started.awaitDialog();
    expectWellLaidOut(tutorial, "tutorial");
    close(tutorial);
}

} // namespace
} // namespace torvane::driver
