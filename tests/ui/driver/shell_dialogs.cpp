#include "tests/ui/driver/shell_dialogs.h"

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/remote_memory.h"

#include <commctrl.h>
#include <shlobj.h>

#include <array>
#include <optional>
#include <string>

namespace torvane::driver {
namespace {

/// The file dialog's field for the name: a combo box where the system offers earlier names, else an edit field
/// (dlgs.h: cmb13, edt1).
constexpr int kNameCombo = 0x047C;
constexpr int kNameEdit = 0x0480;

std::optional<Window> descendantOfClass(const Window& window, const std::string& className) {
    for (const Window& child : window.children()) {
        if (child.className() == className) {
            return child;
        }
        if (const auto below = descendantOfClass(child, className)) {
            return below;
        }
    }
    return std::nullopt;
}

std::optional<Window> folderTree(const Window& browser) {
    return descendantOfClass(browser, "SysTreeView32");
}

/// The folder browser's tree, walked by the names that it shows. Asked for a whole path (BFFM_SETSELECTION), Wine's
/// browser does not find its way through a folder that somebody has just written to.
class FolderTree {
  public:
    explicit FolderTree(const Window& tree) : tree_(tree) {}

    /// Selects the folder as a user does; false while the tree does not show it.
    [[nodiscard]] bool select(const std::filesystem::path& folder) const {
        LRESULT item = drive(L"(" + folder.root_name().wstring() + L")");
        for (const std::filesystem::path& name : folder.relative_path()) {
            item = item == 0 ? 0 : child(item, name.wstring());
        }
        return item != 0 && tree_.send(TVM_SELECTITEM, TVGN_CARET, item) != 0 && relative(TVGN_CARET, 0) == item;
    }

  private:
    [[nodiscard]] LRESULT relative(int relation, LRESULT item) const {
        return tree_.send(TVM_GETNEXTITEM, static_cast<WPARAM>(relation), item);
    }
    [[nodiscard]] LRESULT firstChild(LRESULT item) const {
        tree_.send(TVM_EXPAND, TVE_EXPAND, item);
        return relative(TVGN_CHILD, item);
    }
    /// The item below `item` whose text ends with `text`.
    [[nodiscard]] LRESULT childThatEnds(LRESULT item, const std::wstring& text) const {
        LRESULT found = firstChild(item);
        while (found != 0 && !textOf(found).ends_with(text)) {
            found = relative(TVGN_NEXT, found);
        }
        return found;
    }
    [[nodiscard]] LRESULT child(LRESULT item, const std::wstring& text) const {
        LRESULT found = firstChild(item);
        while (found != 0 && textOf(found) != text) {
            found = relative(TVGN_NEXT, found);
        }
        return found;
    }
    /// The drive stands below one of the places on the desktop.
    [[nodiscard]] LRESULT drive(const std::wstring& letter) const {
        LRESULT place = firstChild(relative(TVGN_ROOT, 0));
        LRESULT found = 0;
        while (place != 0 && found == 0) {
            found = childThatEnds(place, letter);
            place = relative(TVGN_NEXT, place);
        }
        return found;
    }
    [[nodiscard]] std::wstring textOf(LRESULT wanted) const {
        constexpr std::size_t kRoom = MAX_PATH;
        const RemoteMemory memory(tree_.handle(), sizeof(TVITEMW) + kRoom * sizeof(wchar_t));
        TVITEMW item{};
        item.mask = TVIF_HANDLE | TVIF_TEXT;
        item.hItem = reinterpret_cast<HTREEITEM>(wanted);                       // NOLINT(performance-no-int-to-ptr)
        item.pszText = reinterpret_cast<wchar_t*>(memory.address(sizeof item)); // NOLINT(performance-no-int-to-ptr)
        item.cchTextMax = static_cast<int>(kRoom);
        memory.write(0, &item, sizeof item);
        tree_.send(TVM_GETITEMW, 0, static_cast<LPARAM>(memory.address()));
        std::array<wchar_t, kRoom + 1> text{};
        memory.read(sizeof item, text.data(), kRoom * sizeof(wchar_t));
        return text.data();
    }

    Window tree_;
};

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
                           [](const Window& window) { return folderTree(window).has_value(); });
}

Window awaitFileDialog(const Program& program) {
    return awaitDialogThat(program, "the open-file dialog", isFileDialog);
}

void chooseFolder(const Program& program, const std::filesystem::path& folder) {
    const Window browser = awaitFolderBrowser(program);
    const FolderTree tree(*folderTree(browser));
    await("the folder is selected", [&] { return tree.select(folder) && browser.child(IDOK).enabled(); });
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
