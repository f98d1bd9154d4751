#include "ui/row_tips.h"

#include "base/wide_text.h"

#include <commctrl.h>
#include <windowsx.h>

#include <utility>

namespace torvane {

namespace {

constexpr LPARAM kMaximumWidth = 600; // pixels; a longer text takes more lines

int rowAt(HWND list, POINT place) {
    LVHITTESTINFO hit{};
    hit.pt = place;
    return static_cast<int>(SendMessageA(list, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

} // namespace

void RowTips::attach(HWND list, TextOfRow textOfRow) {
    list_ = list;
    textOfRow_ = std::move(textOfRow);
    tip_ = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0,
                           GetParent(list), nullptr, GetModuleHandleA(nullptr), nullptr);
    SendMessageA(tip_, TTM_SETMAXTIPWIDTH, 0, kMaximumWidth);
    SetWindowSubclass(list, &RowTips::listProcedure, 1, reinterpret_cast<DWORD_PTR>(this));
}

LRESULT CALLBACK RowTips::listProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                        DWORD_PTR self) {
    // The wheel's messages have another place in them.
    if (message >= WM_MOUSEFIRST && message <= WM_MBUTTONDBLCLK) {
        reinterpret_cast<RowTips*>(self)->watch(message, wParam, lParam);
    }
    // Another drive may take the row.
    if (message == LVM_DELETEALLITEMS || message == LVM_DELETEITEM) {
        reinterpret_cast<RowTips*>(self)->showRow(-1);
    }
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(list, &RowTips::listProcedure, id);
    }
    return DefSubclassProc(list, message, wParam, lParam);
}

void RowTips::watch(UINT message, WPARAM wParam, LPARAM lParam) {
    const int row = rowAt(list_, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
    if (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN) {
        clicked_ = row;
    } else if (row != clicked_) {
        clicked_ = -1;
    }
    showRow(row == clicked_ ? -1 : row);
    MSG relayed{};
    relayed.hwnd = list_;
    relayed.message = message;
    relayed.wParam = wParam;
    relayed.lParam = lParam;
    SendMessageA(tip_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&relayed));
}

// Each row is a tool of its own, because the control waits anew and shows another text only for another tool.
void RowTips::showRow(int row) {
    if (row == row_) {
        return;
    }
    if (row_ >= 0) {
        send(TTM_DELTOOLW, row_, {});
    }
    row_ = row;
    if (row_ >= 0) {
        send(TTM_ADDTOOLW, row_, textOfRow_(row_));
    }
}

void RowTips::send(UINT message, int row, const std::string& text) {
    std::wstring ownText = wideText(text);
    TOOLINFOW tool{};
    tool.cbSize = sizeof(tool);
    tool.hwnd = list_;
    tool.uId = static_cast<UINT_PTR>(row);
    GetClientRect(list_, &tool.rect); // the mouse is in the row, or another one takes its place
    tool.lpszText = ownText.data();
    SendMessageA(tip_, message, 0, reinterpret_cast<LPARAM>(&tool));
}

} // namespace torvane
