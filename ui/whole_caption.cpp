#include "ui/whole_caption.h"

#include "ui/control_text.h"
#include "ui/owned.h"
#include "ui/window_scale.h"

#include <algorithm>
#include <string>

namespace torvane {

namespace {

thread_local bool boxIsDue = false; // the thread's next dialog to be activated is the box

/// The font of captions at a scale; none when the system does not tell it.
UniqueFont captionFont(Scale scale) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0) == FALSE) {
        return {};
    }
    // What the system tells is for its own scale, the one of its first monitor.
    const int systemDpi = monitorScaleOf(nullptr).dpi;
    metrics.lfCaptionFont.lfHeight = MulDiv(metrics.lfCaptionFont.lfHeight, scale.dpi, systemDpi);
    return UniqueFont{CreateFontIndirectW(&metrics.lfCaptionFont)};
}

LONG widthOf(const std::wstring& text, HFONT font, HWND window) {
    const HDC context = GetDC(window);
    SIZE size{};
    {
        const SelectedObject selected(context, font);
        GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
    }
    ReleaseDC(window, context);
    return size.cx;
}

/// What a window has to be wide for its caption: the text, the close box, which newer systems draw wider than they
/// tell, the frame, and some air.
LONG widthForCaption(HWND window) {
    const Scale scale = monitorScaleOf(window);
    const UniqueFont font = captionFont(scale);
    const LONG frame = systemMetric(SM_CXFIXEDFRAME, scale) + systemMetric(SM_CXPADDEDBORDER, scale);
    return widthOf(wideControlText(window), font.get(), window) + 2 * systemMetric(SM_CXSIZE, scale) + 4 * frame;
}

RECT workAreaOf(HWND window) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

/// The buttons keep to the middle or to the right, wherever the system has put them: the room that was added is shared
/// as the room beside them was.
void moveButtons(HWND box, LONG oldWidth, LONG added) {
    LONG left = oldWidth;
    LONG right = 0;
    const auto eachButton = [box](auto&& visit) {
        for (HWND button = FindWindowExW(box, nullptr, L"Button", nullptr); button != nullptr;
             button = FindWindowExW(box, button, L"Button", nullptr)) {
            RECT place{};
            GetWindowRect(button, &place);
            MapWindowPoints(nullptr, box, reinterpret_cast<POINT*>(&place), 2);
            visit(button, place);
        }
    };
    eachButton([&](HWND, const RECT& place) {
        left = std::min(left, place.left);
        right = std::max(right, place.right);
    });
    const LONG beside = left + oldWidth - right;
    if (beside <= 0) {
        return;
    }
    const LONG by = MulDiv(added, left, beside);
    eachButton([&](HWND button, const RECT& place) {
        SetWindowPos(button, nullptr, place.left + by, place.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    });
}

void widen(HWND box) {
    RECT place{};
    GetWindowRect(box, &place);
    const RECT area = workAreaOf(box);
    const LONG wanted = std::min(widthForCaption(box), area.right - area.left);
    const LONG added = wanted - (place.right - place.left);
    if (added <= 0) {
        return;
    }
    RECT client{};
    GetClientRect(box, &client);
    const LONG left = std::clamp(place.left - added / 2, area.left, area.right - wanted);
    SetWindowPos(box, nullptr, left, place.top, wanted, place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    moveButtons(box, client.right, added);
}

bool isDialog(HWND window) {
    const ATOM kDialogClass = 32770; // "#32770", the class of dialogs
    return GetClassLongW(window, GCW_ATOM) == kDialogClass;
}

LRESULT CALLBACK onWindowEvent(int code, WPARAM window, LPARAM details) {
    const auto box = reinterpret_cast<HWND>(window);
    if (code == HCBT_ACTIVATE && boxIsDue && isDialog(box)) {
        boxIsDue = false;
        widen(box);
    }
    return CallNextHookEx(nullptr, code, window, details);
}

} // namespace

WholeCaption::WholeCaption() : hook_(SetWindowsHookExW(WH_CBT, onWindowEvent, nullptr, GetCurrentThreadId())) {
    boxIsDue = true;
}

WholeCaption::~WholeCaption() {
    boxIsDue = false;
    UnhookWindowsHookEx(hook_);
}

} // namespace torvane
