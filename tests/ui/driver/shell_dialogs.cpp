#include "tests/ui/driver/shell_dialogs.h"

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/remote_memory.h"

#include <shlobj.h>

#include <algorithm>

namespace torvane::driver {
namespace {

/// The file dialog's field for the name: a combo box where the system offers earlier names, else an edit field
/// (dlgs.h: cmb13, edt1).
constexpr int kNameCombo = 0x047C;
constexpr int kNameEdit = 0x0480;

bool hasChildOfClass(const Window& window, const std::string& className) {
    bool found = false;
    const auto look = [&](const Window& parent, const auto& self) -> void {
        for (const Window& child : parent.children()) {
            found = found || child.className() == className;
            self(child, self);
        }
    };
    look(window, look);
    return found;
}

bool isFileDialog(const Window& window) {
    return window.hasChild(kNameEdit) || window.hasChild(kNameCombo);
}

template <typename Test>
Window awaitDialogThat(const Program& program, const std::string& what, Test&& is) {
    std::optional<Window> found;
    await(what + " has opened", [&] {
        found = program.dialog();
        return found && is(*found) && found->child(IDOK).visible();
    });
    return *found;
}

void pressAndAwaitEnd(const Window& dialog, int id) {
    press(dialog.child(id));
    await("the dialog has closed: " + dialog.describe(), [&] { return !dialog.visible(); });
}

std::wstring nativePath(std::filesystem::path path) {
    return path.make_preferred().wstring();
}

} // namespace

Window awaitFolderBrowser(const Program& program) {
    return awaitDialogThat(program, "the folder browser",
                           [](const Window& window) { return hasChildOfClass(window, "SysTreeView32"); });
}

Window awaitFileDialog(const Program& program) {
    return awaitDialogThat(program, "the open-file dialog", isFileDialog);
}

void chooseFolder(const Program& program, const std::filesystem::path& folder) {
    const Window browser = awaitFolderBrowser(program);
    const std::wstring path = nativePath(folder);
    const std::size_t size = (path.size() + 1) * sizeof(wchar_t);
    const RemoteMemory memory(browser.handle(), size);
    memory.write(0, path.c_str(), size);
    browser.send(BFFM_SETSELECTIONW, TRUE, static_cast<LPARAM>(memory.address()));
    await("the folder can be taken", [&] { return browser.child(IDOK).enabled(); });
    pressAndAwaitEnd(browser, IDOK);
}

void cancelFolder(const Program& program) {
    pressAndAwaitEnd(awaitFolderBrowser(program), IDCANCEL);
}

void chooseFile(const Program& program, const std::filesystem::path& file) {
    const Window dialog = awaitFileDialog(program);
    const Window name = dialog.child(dialog.hasChild(kNameEdit) ? kNameEdit : kNameCombo);
    const std::wstring path = nativePath(file);
    name.send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    pressAndAwaitEnd(dialog, IDOK);
}

void cancelFile(const Program& program) {
    pressAndAwaitEnd(awaitFileDialog(program), IDCANCEL);
}

} // namespace torvane::driver
