#include "tests/ui/driver/window.h"

#include "tests/ui/driver/remote_memory.h"
#include "tests/ui/driver/text.h"
#include "tests/ui/driver/wait.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <sstream>

namespace torvane::driver {
namespace {

/// A program may run a tool on its window's thread, so an answer can take a while on a busy machine.
constexpr UINT kAnswerMilliseconds = 30'000;

BOOL CALLBACK collect(HWND handle, LPARAM list) {
    reinterpret_cast<std::vector<Window>*>(list)->emplace_back(handle);
    return TRUE;
}

} // namespace

bool Window::enabled() const {
    for (HWND window = handle_; window != nullptr; window = GetAncestor(window, GA_PARENT)) {
        if (IsWindowEnabled(window) == FALSE) {
            return false;
        }
    }
    return exists();
}

std::string Window::text() const {
    const auto length = static_cast<std::size_t>(send(WM_GETTEXTLENGTH));
    std::wstring text(length + 1, L'\0');
    const LRESULT copied = send(WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(copied));
    return toUtf8(text);
}

std::string Window::className() const {
    std::array<wchar_t, 256> name{};
    const int length = GetClassNameW(handle_, name.data(), static_cast<int>(name.size()));
    return toUtf8({name.data(), static_cast<std::size_t>(length)});
}

DWORD Window::processId() const {
    DWORD process = 0;
    GetWindowThreadProcessId(handle_, &process);
    return process;
}

RECT Window::rect() const {
    RECT rect{};
    GetWindowRect(handle_, &rect);
    return rect;
}

RECT Window::clientRect() const {
    RECT rect{};
    GetClientRect(handle_, &rect);
    MapWindowPoints(handle_, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

RECT Window::rectIn(const Window& parent) const {
    RECT mapped = rect();
    MapWindowPoints(nullptr, parent.handle(), reinterpret_cast<POINT*>(&mapped), 2);
    return mapped;
}

Window Window::child(int id) const {
    const Window found(GetDlgItem(handle_, id));
    if (!found.exists()) {
        throw Failure("no control " + std::to_string(id) + " in " + describe());
    }
    return found;
}

std::vector<Window> Window::children() const {
    std::vector<Window> list;
    for (HWND child = GetWindow(handle_, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        list.emplace_back(child);
    }
    return list;
}

LRESULT Window::send(UINT message, WPARAM wParam, LPARAM lParam) const {
    DWORD_PTR answer = 0;
    if (SendMessageTimeoutW(handle_, message, wParam, lParam, SMTO_NORMAL, kAnswerMilliseconds, &answer) == 0) {
        throw Failure("no answer to message " + std::to_string(message) +
                      (exists() ? " from " + className() : std::string(": the window is gone")));
    }
    return static_cast<LRESULT>(answer);
}

void Window::post(UINT message, WPARAM wParam, LPARAM lParam) const {
    if (PostMessageW(handle_, message, wParam, lParam) == FALSE) {
        throw Failure("cannot post message " + std::to_string(message) + ": the window is gone");
    }
}

void Window::settle() const {
    // Painting has its turn after posted messages and after input, so when this pixel has been painted they are done.
    const RECT pixel{0, 0, 1, 1};
    if (!visible() || InvalidateRect(handle_, &pixel, FALSE) == FALSE) {
        return;
    }
    await("the input was dealt with", [this] { return !visible() || GetUpdateRect(handle_, nullptr, FALSE) == FALSE; });
}

void Window::awaitPainted() const {
    const auto painted = [](const Window& window) {
        return !window.visible() || GetUpdateRect(window.handle(), nullptr, FALSE) == FALSE;
    };
    settle();
    await("the window is painted", [&] {
        const auto parts = children();
        return painted(*this) && std::all_of(parts.begin(), parts.end(), painted);
    });
    // A window counts as painted from the moment its painting begins; the answer comes when it has ended.
    send(WM_NULL);
}

std::string Window::describe() const {
    if (!exists()) {
        return "(no window)";
    }
    std::ostringstream line;
    std::array<wchar_t, 128> title{};
    // Not WM_GETTEXT: the description must also come from a program that hangs.
    InternalGetWindowText(handle_, title.data(), static_cast<int>(title.size()));
    line << className() << " '" << toUtf8(title.data()) << "' ";
    if ((style() & WS_CHILD) != 0) {
        line << "id=" << id() << ' ';
    }
    line << toText(rect());
    if (!visible()) {
        line << " hidden";
    }
    if (!enabled()) {
        line << " disabled";
    }
    return line.str();
}

SIZE idealButtonSize(const Window& button) {
    const RemoteMemory memory(button.handle(), sizeof(SIZE));
    button.send(BCM_GETIDEALSIZE, 0, static_cast<LPARAM>(memory.address()));
    SIZE size{};
    memory.read(0, &size, sizeof size);
    return size;
}

std::vector<Window> topLevelWindows(DWORD processId) {
    std::vector<Window> all;
    EnumWindows(collect, reinterpret_cast<LPARAM>(&all));
    std::erase_if(all, [processId](const Window& window) { return window.processId() != processId; });
    return all;
}

std::string describeWindows(DWORD processId) {
    std::ostringstream lines;
    for (const Window& window : topLevelWindows(processId)) {
        if (!window.visible()) {
            continue;
        }
        lines << "  " << window.describe() << '\n';
        for (const Window& child : window.children()) {
            if (child.visible()) {
                lines << "    " << child.describe() << '\n';
            }
        }
    }
    return lines.str();
}

bool overlap(const RECT& left, const RECT& right) {
    RECT common{};
    return IntersectRect(&common, &left, &right) != FALSE;
}

bool inside(const RECT& inner, const RECT& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

std::string toText(const RECT& rect) {
    std::ostringstream text;
    text << '(' << rect.left << ',' << rect.top << ")-(" << rect.right << ',' << rect.bottom << ')';
    return text.str();
}

} // namespace torvane::driver
