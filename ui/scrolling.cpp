#include "ui/scrolling.h"

#include "base/window_fit.h"
#include "ui/window_scale.h"

#include <commctrl.h>

#include <algorithm>

namespace torvane {

namespace {

// At 96 dots to the inch.
constexpr int kLine = 24;
constexpr int kViewMargin = 8;
constexpr int kLinesOfWheel = 3;

PixelSize sizeOf(const RECT& rect) {
    return {static_cast<int>(rect.right - rect.left), static_cast<int>(rect.bottom - rect.top)};
}

PixelSize outerSize(HWND window) {
    RECT outer{};
    GetWindowRect(window, &outer);
    return sizeOf(outer);
}

PixelSize clientSize(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return sizeOf(client);
}

bool hasBar(HWND window, int bar) {
    return (GetWindowLongA(window, GWL_STYLE) & (bar == SB_HORZ ? WS_HSCROLL : WS_VSCROLL)) != 0;
}

PixelSize barSizes(HWND window) {
    const Scale scale = scaleOf(window);
    return {systemMetric(SM_CXVSCROLL, scale), systemMetric(SM_CYHSCROLL, scale)};
}

SCROLLINFO barState(HWND window, int bar) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(window, bar, &info);
    return info;
}

void setUpBar(HWND window, int bar, int content, int page, int position) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = content - 1;
    info.nPage = static_cast<UINT>(page);
    info.nPos = scrollPosition(position, content, page);
    SetScrollInfo(window, bar, &info, TRUE);
    ShowScrollBar(window, bar, TRUE);
}

/// In the window's client area.
RECT placeOf(HWND control, HWND window) {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// Not by ScrollWindowEx, which leaves those of a window alone that is not shown yet.
void moveChildren(HWND window, int right, int down) {
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        const RECT place = placeOf(child, window);
        SetWindowPos(child, nullptr, place.left + right, place.top + down, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOREDRAW);
    }
}

void scrollTo(HWND window, int bar, int wanted) {
    if (!hasBar(window, bar)) {
        return;
    }
    const SCROLLINFO info = barState(window, bar);
    const int position = scrollPosition(wanted, info.nMax + 1, static_cast<int>(info.nPage));
    if (position == info.nPos) {
        return;
    }
    SetScrollPos(window, bar, position, TRUE);
    const int way = info.nPos - position;
    moveChildren(window, bar == SB_HORZ ? way : 0, bar == SB_VERT ? way : 0);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void scrollByBar(HWND window, int bar, int request) {
    const SCROLLINFO info = barState(window, bar);
    const int page = static_cast<int>(info.nPage);
    const int line = scaleOf(window).px(kLine);
    switch (request) {
    case SB_LINEUP:
        return scrollTo(window, bar, info.nPos - line);
    case SB_LINEDOWN:
        return scrollTo(window, bar, info.nPos + line);
    case SB_PAGEUP:
        return scrollTo(window, bar, info.nPos - page);
    case SB_PAGEDOWN:
        return scrollTo(window, bar, info.nPos + page);
    case SB_TOP:
        return scrollTo(window, bar, info.nMin);
    case SB_BOTTOM:
        return scrollTo(window, bar, info.nMax);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
        return scrollTo(window, bar, info.nTrackPos);
    default:
        return;
    }
}

void scrollByWheel(HWND window, int bar, int turned) {
    const int way = MulDiv(turned, kLinesOfWheel * scaleOf(window).px(kLine), WHEEL_DELTA);
    scrollTo(window, bar, barState(window, bar).nPos + way);
}

// By the keyboard: what moves away under a pressed mouse button would not take its click.
bool mouseIsPressed() {
    return GetKeyState(VK_LBUTTON) < 0 || GetKeyState(VK_RBUTTON) < 0;
}

void bringIntoView(HWND window, HWND control) {
    const RECT place = placeOf(control, window);
    const POINT by = scrolledBy(window);
    const PixelSize page = clientSize(window);
    const int margin = scaleOf(window).px(kViewMargin);
    scrollTo(window, SB_HORZ, by.x + scrollToShow(0, page.width, place.left, place.right, margin));
    scrollTo(window, SB_VERT, by.y + scrollToShow(0, page.height, place.top, place.bottom, margin));
}

LRESULT CALLBACK followedProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR) {
    if (message == WM_SETFOCUS && !mouseIsPressed()) {
        bringIntoView(GetParent(control), control);
    }
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(control, &followedProcedure, id);
    }
    return DefSubclassProc(control, message, wParam, lParam);
}

/// Sizes the window around as much of the content as the work area has room for beside that frame.
WindowFit fitFrame(HWND window, const PixelSize& content, const PixelSize& frame) {
    const PixelSize area = sizeOf(workAreaOf(window));
    const PixelSize bars = barSizes(window);
    const WindowFit fit = fitInto(content, {area.width - frame.width, area.height - frame.height}, bars);
    SetWindowPos(window, nullptr, 0, 0, frame.width + fit.page.width + (fit.vertical ? bars.width : 0),
                 frame.height + fit.page.height + (fit.horizontal ? bars.height : 0),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    return fit;
}

} // namespace

POINT scrolledBy(HWND window) {
    return {hasBar(window, SB_HORZ) ? GetScrollPos(window, SB_HORZ) : 0,
            hasBar(window, SB_VERT) ? GetScrollPos(window, SB_VERT) : 0};
}

RECT shownPlace(HWND window, const PixelRect& at96) {
    RECT place = toRect(scaleOf(window).px(at96));
    const POINT by = scrolledBy(window);
    OffsetRect(&place, -by.x, -by.y);
    return place;
}

RECT workAreaOf(HWND window) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &monitor);
    return monitor.rcWork;
}

PixelSize frameOf(HWND window) {
    const PixelSize outer = outerSize(window);
    const PixelSize client = clientSize(window);
    const PixelSize bars = barSizes(window);
    return {outer.width - client.width - (hasBar(window, SB_VERT) ? bars.width : 0),
            outer.height - client.height - (hasBar(window, SB_HORZ) ? bars.height : 0)};
}

void fitToContent(HWND window, const PixelSize& content) {
    const POINT before = scrolledBy(window);
    for (const int bar : {SB_HORZ, SB_VERT}) {
        if (hasBar(window, bar)) {
            ShowScrollBar(window, bar, FALSE);
        }
    }
    const PixelSize frame = frameOf(window);
    WindowFit fit = fitFrame(window, content, frame);
    // A menu that wraps in the new width has made the frame higher.
    if (const PixelSize wrapped = frameOf(window); wrapped != frame) {
        fit = fitFrame(window, content, wrapped);
    }
    if (fit.horizontal) {
        setUpBar(window, SB_HORZ, content.width, fit.page.width, before.x);
    }
    if (fit.vertical) {
        setUpBar(window, SB_VERT, content.height, fit.page.height, before.y);
    }
}

void fitToRoom(HWND window, const PixelSize& content) {
    const PixelSize outer = outerSize(window);
    const PixelSize client = clientSize(window);
    const PixelSize area = sizeOf(workAreaOf(window));
    SetWindowPos(window, nullptr, 0, 0, std::min(area.width, outer.width - client.width + content.width),
                 std::min(area.height, outer.height - client.height + content.height),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void keepInWorkArea(HWND window) {
    const RECT area = workAreaOf(window);
    RECT place{};
    GetWindowRect(window, &place);
    const LONG left = std::max(area.left, std::min(place.left, area.right - (place.right - place.left)));
    const LONG top = std::max(area.top, std::min(place.top, area.bottom - (place.bottom - place.top)));
    if (left != place.left || top != place.top) {
        SetWindowPos(window, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

bool scrollBy(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_HSCROLL:
    case WM_VSCROLL:
        if (lParam != 0) { // of a control
            return false;
        }
        scrollByBar(window, message == WM_HSCROLL ? SB_HORZ : SB_VERT, LOWORD(wParam));
        return true;
    case WM_MOUSEWHEEL:
        scrollByWheel(window, hasBar(window, SB_VERT) ? SB_VERT : SB_HORZ, -GET_WHEEL_DELTA_WPARAM(wParam));
        return true;
    case WM_MOUSEHWHEEL:
        scrollByWheel(window, SB_HORZ, GET_WHEEL_DELTA_WPARAM(wParam));
        return true;
    default:
        return false;
    }
}

void followFocus(HWND window) {
    if (!hasBar(window, SB_HORZ) && !hasBar(window, SB_VERT)) {
        return;
    }
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        SetWindowSubclass(child, &followedProcedure, 0, 0);
    }
    if (const HWND focus = GetFocus(); focus != nullptr && GetParent(focus) == window) {
        bringIntoView(window, focus);
    }
}

} // namespace torvane
