#include "ui/waiting_strip.h"

#include "base/format.h"
#include "ui/window_scale.h"

#include <algorithm>
#include <utility>

namespace torvane {

namespace {

constexpr const char* kClassName = "TorvaneWaitingStrip";

// At 96 dots to the inch.
constexpr int kWidth = 420;
constexpr int kHeight = 50;
constexpr int kMargin = 10;
constexpr int kButtonWidth = 90;
constexpr int kRowHeight = kHeight - 2 * kMargin;

HWND makeChild(HWND parent, const char* className, const char* text, DWORD style, INT_PTR id) {
    const HWND child = CreateWindowExA(0, className, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
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
    strip_ = CreateWindowExA(0, kClassName, "", WS_CHILD | WS_BORDER | WS_CLIPCHILDREN, 0, 0, 0, 0, over, nullptr,
                             GetModuleHandleA(nullptr), this);
    if (strip_ == nullptr) {
        return;
    }
    text_ = makeChild(strip_, "STATIC", "", SS_NOPREFIX, 0);
    button_ = makeChild(strip_, "BUTTON", "&Leave", WS_TABSTOP | BS_DEFPUSHBUTTON, kLeaveWaitingId);
    place();
    SetWindowPos(strip_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW | SWP_NOACTIVATE);
    focusBefore_ = SetFocus(button_);
}

void WaitingStrip::place() {
    const HWND over = GetParent(strip_);
    const Scale scale = scaleOf(over);
    RECT area{};
    GetClientRect(over, &area);
    const int width = std::min<int>(scale.px(kWidth), area.right);
    const int height = scale.px(kHeight);
    MoveWindow(strip_, (area.right - width) / 2, (area.bottom - height) / 2, width, height, FALSE);
    const int margin = scale.px(kMargin);
    const int buttonWidth = scale.px(kButtonWidth);
    const int buttonLeft = width - margin - buttonWidth;
    const int rowHeight = scale.px(kRowHeight);
    MoveWindow(text_, margin, margin, buttonLeft - 2 * margin, rowHeight, TRUE);
    MoveWindow(button_, buttonLeft, margin, buttonWidth, rowHeight, TRUE);
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
    if (message == kScaleChangedMessage && self != nullptr) {
        const LRESULT font = SendMessageA(GetParent(window), WM_GETFONT, 0, 0);
        SendMessageA(self->text_, WM_SETFONT, static_cast<WPARAM>(font), FALSE);
        SendMessageA(self->button_, WM_SETFONT, static_cast<WPARAM>(font), FALSE);
        self->place();
        return 0;
    }
    if (message == WM_SETCURSOR) { // over the button, too: it can be pressed
        SetCursor(LoadCursorA(nullptr, IDC_ARROW));
        return TRUE;
    }
    if (message == WM_CTLCOLORSTATIC) {
        SetTextColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_INFOTEXT));
        SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_INFOBK));
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

} // namespace torvane
