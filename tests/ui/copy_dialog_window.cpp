#include "tests/ui/copy_dialog_window.h"

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/message_box.h"

namespace torvane::driver {
namespace {

constexpr std::chrono::seconds kJobPatience{60};

/// The button of that word in a dialog; no window when it has none.
Window buttonOf(const Window& dialog, const std::string& word) {
    for (const Window& child : dialog.children()) {
        if (child.className() == "Button" && withoutAccessKey(child.text()) == word) {
            return child;
        }
    }
    return {};
}

/// A job that has told its outcome still has its last steps to do, and until then its dialog refuses to be left.
/// True when it did so, and the refusal is answered.
bool dismissRefusal(const Window& dialog) {
    if (dialog.enabled()) {
        return false; // no box stands over it
    }
    try {
        for (const Window& window : topLevelWindows(dialog.processId())) {
            if (window.text() == "***** ERROR TERMINATE BEFORE EXIT *****" && MessageBoxWindow::isOne(window)) {
                MessageBoxWindow(window).answer("OK");
                return true;
            }
        }
    } catch (const Failure&) {
        // A window went away while it was looked at: the dialog's, as it should, or one that the next look leaves out.
    }
    return false;
}

} // namespace

void CopyDialogWindow::start() const {
    press(startButton());
}

void CopyDialogWindow::terminate() const {
    press(terminateButton());
}

void CopyDialogWindow::exit() const {
    press(exitButton());
}

void CopyDialogWindow::leave() const {
    exit();
    await("the dialog has closed", [this] {
        if (window_.exists() && dismissRefusal(window_)) {
            exit();
        }
        return !window_.exists();
    });
}

void CopyDialogWindow::awaitStatus(const std::string& text) const {
    try {
        await(
            "the status line is '" + text + "'", [&] { return status() == text; }, kJobPatience);
    } catch (const Failure& failure) {
        throw Failure(std::string(failure.what()) + "; it is '" + status() + "'");
    }
}

void CopyDialogWindow::awaitStatusStart(const std::string& start) const {
    await(
        "the status line begins with '" + start + "'", [&] { return status().starts_with(start); }, kJobPatience);
}

void CopyDialogWindow::tickDestination(const std::string& model) const {
    const ListView list = destinations();
    list.setTicked(list.rowWith(0, model), true);
}

Window awaitWarning(const Program& program) {
    constexpr int kVolumes = 3400;
    std::optional<Window> warning;
    await("the warning has opened", [&] {
        warning = program.dialog();
        return warning && warning->hasChild(kVolumes) && warning->child(kVolumes).visible();
    });
    return *warning;
}

void answerWarning(const Program& program, const std::string& word) {
    const Window warning = awaitWarning(program);
    press(buttonOf(warning, word));
    await("the warning has closed", [&] { return !warning.visible(); });
}

} // namespace torvane::driver
