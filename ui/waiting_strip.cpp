#include "ui/waiting_strip.h"

#include "base/format.h"

#include <algorithm>
#include <utility>

namespace torvane {

namespace {

constexpr const char* kClassName = "TorvaneWaitingStrip";

// Pixels.
constexpr int kWidth = 420;
constexpr int kHeight = 50;
constexpr int kMargin = 10;
constexpr int kButtonWidth = 90;
constexpr int kRowHeight = kHeight - 2 * kMargin;

HWND makeChild(HWND parent, const char* className, const char* text, DWORD style, const RECT& place, INT_PTR id) {
    const HWND child = CreateWindowExA(0, className, text, WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                                       place.right - place.left, place.bottom - place.top, parent,
                                       reinterpret_cast<HMENU>(id), GetModuleHandleA(nullptr), nullptr);
    SendMessageA(child, WM_SETFONT, SendMessageA(GetParent(parent), WM_GETFONT, 0, 0), FALSE);
    return child;
}

} // namespace

void WaitingStrip::show(HWND over, const std::string& what) {
    WNDCLASSA strip{};
    strip.lpfnWndProc = &WaitingStrip::procedure;
    strip.hInstance = GetModuleHandleA(nullptr);
    strip.lpszClassName = kClassName;
    strip.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    strip.hbrBackground = GetSysColorBrush(COLOR_INFOBK);
    RegisterClassA(&strip); // fails from the second time on, for it is there

    what_ = what;
    RECT area{};
    GetClientRect(over, &area);
    const int width = std::min<int>(kWidth, area.right);
    strip_ =
        CreateWindowExA(0, kClassName, "", WS_CHILD | WS_BORDER | WS_CLIPCHILDREN, (area.right - width) / 2,
                        (area.bottom - kHeight) / 2, width, kHeight, over, nullptr, GetModuleHandleA(nullptr), this);
    if (strip_ == nullptr) {
        return;
    }
    const int buttonLeft = width - kMargin - kButtonWidth;
    text_ =
        makeChild(strip_, "STATIC", "", SS_NOPREFIX, {kMargin, kMargin, buttonLeft - kMargin, kMargin + kRowHeight}, 0);
    const HWND button =
        makeChild(strip_, "BUTTON", "&Leave", WS_TABSTOP | BS_DEFPUSHBUTTON,
                  {buttonLeft, kMargin, buttonLeft + kButtonWidth, kMargin + kRowHeight}, kLeaveWaitingId);
    SetWindowPos(strip_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW | SWP_NOACTIVATE);
    focusBefore_ = SetFocus(button);
}

void WaitingStrip::setSeconds(int seconds) {
    if (visible() && std::exchange(seconds_, seconds) != seconds) {
        SetWindowTextA(
            text_,
            formatText("Waiting for %s, %d s\nOther commands do nothing until then.", what_.c_str(), seconds).c_str());
    }
}

void WaitingStrip::hide() {
    if (!visible()) {
        return;
    }
    if (IsWindow(focusBefore_) != FALSE) {
        SetFocus(focusBefore_);
    }
    DestroyWindow(std::exchange(strip_, nullptr));
}

LRESULT CALLBACK WaitingStrip::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* const made = reinterpret_cast<const CREATESTRUCTA*>(lParam);
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made->lpCreateParams));
    }
    auto* const self = reinterpret_cast<WaitingStrip*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message == WM_COMMAND && LOWORD(wParam) == kLeaveWaitingId && self != nullptr) {
        self->leaveWanted_ = true;
        return 0;
    }
    if (message == WM_SETCURSOR) { // over the button, too: it can be pressed
        SetCursor(LoadCursorA(nullptr, IDC_ARROW));
        return TRUE;
    }
    if (message == WM_CTLCOLORSTATIC) {
        SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_INFOBK));
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

} // namespace torvane
