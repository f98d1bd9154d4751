#include "ui/dialog.h"

#include "ui/control_text.h"
#include "ui/held_commands.h"
#include "ui/waiting_strip.h"

#include <algorithm>
#include <utility>

namespace torvane {

namespace {

// The low four bits of a system command's id are the system's own (WM_SYSCOMMAND).
constexpr WPARAM kSystemCommandMask = 0xFFF0;
// From here on (SC_SIZE) they are the system's, below the program's.
constexpr WPARAM kFirstSystemCommand = 0xF000;

// Controls report much through WM_COMMAND; a command is a menu item (0), an accelerator (1) or a click (BN_CLICKED, 0).
bool isCommand(WPARAM wParam) {
    return HIWORD(wParam) == BN_CLICKED || HIWORD(wParam) == 1;
}

} // namespace

INT_PTR Dialog::runModal(HWND owner) {
    return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(templateId_), owner, &Dialog::procedure,
                           reinterpret_cast<LPARAM>(this));
}

void Dialog::end(INT_PTR result) {
    EndDialog(window_, result);
}

RECT Dialog::clientArea() const {
    RECT area{};
    GetClientRect(window_, &area);
    return area;
}

void Dialog::sizeClientArea(SIZE size) {
    RECT outer{0, 0, size.cx, size.cy};
    AdjustWindowRectEx(&outer, static_cast<DWORD>(GetWindowLongPtrA(window_, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrA(window_, GWL_EXSTYLE)));
    SetWindowPos(window_, nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Dialog::centreOnOwner() {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoA(MonitorFromWindow(window_, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const RECT& area = monitor.rcWork;
    RECT around = area;
    if (const HWND owner = GetWindow(window_, GW_OWNER); owner != nullptr) {
        GetWindowRect(owner, &around);
    }
    RECT own{};
    GetWindowRect(window_, &own);
    const LONG width = own.right - own.left;
    const LONG height = own.bottom - own.top;
    const LONG left = std::min((around.left + around.right - width) / 2, area.right - width);
    const LONG top = std::min((around.top + around.bottom - height) / 2, area.bottom - height);
    SetWindowPos(window_, nullptr, std::max(left, area.left), std::max(top, area.top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Dialog::setControlText(int id, const char* text) {
    setWindowText(control(id), text);
}

void Dialog::showControl(int id, bool visible) {
    ShowWindow(control(id), visible ? SW_SHOWNA : SW_HIDE);
}

void Dialog::placeControl(int id, const RECT& place) {
    SetWindowPos(control(id), nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

INT_PTR CALLBACK Dialog::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, DWLP_USER, lParam);
        reinterpret_cast<Dialog*>(lParam)->window_ = window;
    }
    auto* const self = reinterpret_cast<Dialog*>(GetWindowLongPtrA(window, DWLP_USER));
    return self == nullptr ? FALSE : self->dispatch(message, wParam, lParam);
}

INT_PTR Dialog::dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        return onInitialise();
    case WM_COMMAND:
        if (HIWORD(wParam) == EN_CHANGE) {
            onTextChange(LOWORD(wParam));
            return TRUE;
        }
        return isCommand(wParam) && (isHeldBack(message, wParam) || onCommand(LOWORD(wParam)));
    case WM_SYSCOMMAND:
        return (wParam < kFirstSystemCommand && isHeldBack(message, wParam)) ||
               onSystemCommand(wParam & kSystemCommandMask);
    case kHeldCommandMessage:
        carryOutHeld(wParam);
        return TRUE;
    case WM_ENABLE:
        if (wParam != FALSE) {
            carryOutPostponed();
        }
        return FALSE;
    case WM_SETCURSOR:
        return showWaitCursor(LOWORD(lParam)) ? answer(TRUE) : FALSE;
    case WM_NOTIFY:
        return answer(onNotify(*reinterpret_cast<NMHDR*>(lParam)));
    case WM_TIMER:
        return onTimer(static_cast<int>(wParam));
    case WM_PAINT:
        return onPaint();
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
        return reinterpret_cast<INT_PTR>(onControlColour(reinterpret_cast<HDC>(wParam)));
    case WM_QUERYDRAGICON:
        return reinterpret_cast<INT_PTR>(onQueryDragIcon());
    case WM_DESTROY:
        onDestroy();
        return TRUE;
    case WM_NCDESTROY:
        window_ = nullptr;
        return FALSE;
    default:
        return answer(onMessage(message, wParam, lParam));
    }
}

bool Dialog::isHeldBack(UINT message, WPARAM wParam) const {
    const int id = LOWORD(wParam);
    return HeldCommands::holdsBack(window_, wParam, message == WM_COMMAND && (id == kLeaveWaitingId || isWayOut(id)));
}

// A box that tells the end of what was left is answered first.
void Dialog::carryOutHeld(WPARAM command) {
    if (IsWindowEnabled(window_) == FALSE) {
        postponed_ = command;
        return;
    }
    SendMessageA(window_, WM_COMMAND, command, 0);
}

void Dialog::carryOutPostponed() {
    if (const std::optional<WPARAM> command = std::exchange(postponed_, std::nullopt)) {
        PostMessageA(window_, kHeldCommandMessage, *command, 0);
    }
}

// The system would show the arrow again with the next move of the mouse.
bool Dialog::showWaitCursor(WORD place) {
    if (place != HTCLIENT || !HeldCommands::someoneIsWaitedFor()) {
        return false;
    }
    SetCursor(LoadCursorA(nullptr, IDC_WAIT));
    return true;
}

// A dialog procedure hands its result over through DWLP_MSGRESULT and says by TRUE that it did.
INT_PTR Dialog::answer(std::optional<LRESULT> result) {
    if (!result) {
        return FALSE;
    }
    SetWindowLongPtrA(window_, DWLP_MSGRESULT, *result);
    return TRUE;
}

} // namespace torvane
