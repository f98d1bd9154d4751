#include "ui/dialog.h"

#include "ui/control_text.h"
#include "ui/held_commands.h"
#include "ui/scrolling.h"
#include "ui/waiting_strip.h"
#include "ui/window_scale.h"

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
    fitClientArea(scale_.px(PixelSize{static_cast<int>(size.cx), static_cast<int>(size.cy)}));
}

void Dialog::fitClientArea(const PixelSize& size) {
    if (!sized_) {
        sized_ = true;
        scaleByOurselves(window_);
    }
    workArea_ = workAreaOf(window_);
    if (scrolls()) {
        fitToContent(window_, size);
    } else {
        fitToRoom(window_, size);
    }
}

void Dialog::centreOnOwner() {
    const RECT area = workAreaOf(window_);
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
    placeControl(id, toPixelRect(place));
}

void Dialog::placeControl(int id, const PixelRect& place) {
    placeControlAt(id, toRect(scale_.px(place)));
}

void Dialog::placeControlAt(int id, RECT place) {
    const POINT by = sized_ && scrolls() ? scrolledBy(window_) : POINT{};
    OffsetRect(&place, -by.x, -by.y);
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
    if (sized_ && takesSize(message, wParam, lParam)) {
        return TRUE;
    }
    switch (message) {
    case WM_INITDIALOG:
        return initialise();
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
    case WM_SYSCOLORCHANGE:
        passOnColourChange();
        return FALSE;
    case WM_QUERYDRAGICON:
        return reinterpret_cast<INT_PTR>(onQueryDragIcon());
    case WM_DESTROY:
        forgetScale(window_);
        onDestroy();
        return TRUE;
    case WM_NCDESTROY:
        window_ = nullptr;
        return FALSE;
    default:
        return answer(onMessage(message, wParam, lParam));
    }
}

bool Dialog::initialise() {
    scale_ = scaleOf(window_);
    rememberScale(window_, scale_);
    const bool focusIsTheSystems = onInitialise();
    if (sized_) {
        keepInWorkArea(window_); // the system has placed it by its template
        if (scrolls()) {
            followFocus(window_);
        }
    }
    return focusIsTheSystems;
}

// What has to do with the window's size, scale and scroll bars.
bool Dialog::takesSize(UINT message, WPARAM wParam, LPARAM lParam) {
    if (IsIconic(window_) != FALSE) {
        return isForRestored(message);
    }
    switch (message) {
    case WM_SIZE:
        if (std::exchange(changedAsIcon_, false)) {
            adoptMonitor();
        }
        return false;
    case WM_DPICHANGED:
        // A change may take the window onto another monitor, which would change it back, without end.
        if (!changesScale_) {
            changeScale(Scale{LOWORD(wParam)}, *reinterpret_cast<const RECT*>(lParam));
        }
        return true;
    case WM_DISPLAYCHANGE:
        adoptMonitor();
        return true;
    case WM_EXITSIZEMOVE: // perhaps on another monitor
        if (const RECT area = workAreaOf(window_);
            monitorScaleOf(window_) != scale_ || EqualRect(&area, &workArea_) == FALSE) {
            adoptMonitor();
        }
        return true;
    default:
        return scrolls() && scrollBy(window_, message, wParam, lParam);
    }
}

// An icon has no content: what changes meanwhile is taken up when the window is there again.
bool Dialog::isForRestored(UINT message) {
    const bool isChange = message == WM_DPICHANGED || message == WM_DISPLAYCHANGE || message == WM_EXITSIZEMOVE;
    changedAsIcon_ = changedAsIcon_ || isChange;
    return isChange;
}

void Dialog::adoptMonitor() {
    if (const Scale scale = monitorScaleOf(window_); scale != scale_ && !changesScale_) {
        RECT place{};
        GetWindowRect(window_, &place);
        changeScale(scale, place);
        return;
    }
    layOutAnew();
    keepInWorkArea(window_);
}

void Dialog::changeScale(Scale scale, const RECT& suggested) {
    changesScale_ = true;
    const Scale before = std::exchange(scale_, scale);
    rememberScale(window_, scale);
    SetWindowPos(window_, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                 suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    scaleFont(before);
    tellChildren(before);
    layOutAnew();
    // Not while it is moved: that would fight the mouse.
    GUITHREADINFO thread{};
    thread.cbSize = sizeof thread;
    if (GetGUIThreadInfo(GetCurrentThreadId(), &thread) == FALSE || (thread.flags & GUI_INMOVESIZE) == 0) {
        keepInWorkArea(window_);
    }
    changesScale_ = false;
}

// The template's font has a size in points (72 to the inch).
void Dialog::scaleFont(Scale before) {
    const auto old = reinterpret_cast<HFONT>(SendMessageA(window_, WM_GETFONT, 0, 0));
    LOGFONTW font{};
    if (GetObjectW(old, sizeof font, &font) == 0) {
        return;
    }
    const int points = MulDiv(font.lfHeight, 72, before.dpi);
    font.lfHeight = MulDiv(points, scale_.dpi, 72);
    UniqueFont scaled(CreateFontIndirectW(&font));
    for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        if (reinterpret_cast<HFONT>(SendMessageA(child, WM_GETFONT, 0, 0)) == old) {
            SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(scaled.get()), FALSE);
        }
    }
    SendMessageA(window_, WM_SETFONT, reinterpret_cast<WPARAM>(scaled.get()), FALSE);
    font_ = std::move(scaled);
}

void Dialog::tellChildren(Scale before) const {
    for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        SendMessageA(child, kScaleChangedMessage, static_cast<WPARAM>(before.dpi), scale_.dpi);
    }
}

void Dialog::layOutAnew() {
    layOut();
    if (scrolls()) {
        followFocus(window_);
    }
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
}

// The system tells top-level windows alone.
void Dialog::passOnColourChange() const {
    for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        SendMessageA(child, WM_SYSCOLORCHANGE, 0, 0);
    }
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
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
