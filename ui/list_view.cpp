#include "ui/list_view.h"

#include "base/wide_text.h"

#include <array>

namespace torvane {

namespace {

int totalColumnWidth(HWND list) {
    const int columns = Header_GetItemCount(ListView_GetHeader(list));
    int width = 0;
    for (int column = 0; column < columns; ++column) {
        width += ListView_GetColumnWidth(list, column);
    }
    return width;
}

// Columns that fit but for the vertical scroll bar would call up the horizontal one, at the price of a row.
void dropNeedlessScrollBar(HWND list, const RECT& outer) {
    const LONG style = GetWindowLongA(list, GWL_STYLE);
    if ((style & WS_HSCROLL) != 0 && totalColumnWidth(list) <= outer.right - outer.left) {
        SetWindowLongA(list, GWL_STYLE, style & ~WS_HSCROLL);
    }
}

} // namespace

bool ListView::create(HWND parent, int id, const RECT& place, DWORD style, DWORD extendedStyle, COLORREF background) {
    window_ = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_BORDER | WS_TABSTOP | LVS_REPORT | style, place.left,
                              place.top, place.right - place.left, place.bottom - place.top, parent,
                              reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
    if (window_ == nullptr) {
        return false;
    }
    SetWindowSubclass(window_, &ListView::listProcedure, 0, 0);
    SendMessageA(window_, WM_SETFONT, static_cast<WPARAM>(SendMessageA(parent, WM_GETFONT, 0, 0)), FALSE);
    ListView_SetExtendedListViewStyle(window_, extendedStyle);
    ListView_SetBkColor(window_, background);
    ListView_SetTextBkColor(window_, background);
    return true;
}

void ListView::addColumn(const char* heading, int width) {
    std::wstring text = wideText(heading);
    LVCOLUMNW column{};
    column.mask = LVCF_FMT | LVCF_TEXT | LVCF_WIDTH;
    column.fmt = LVCFMT_LEFT;
    column.cx = width;
    column.pszText = text.data();
    const HWND header = ListView_GetHeader(window_);
    SendMessageA(window_, LVM_INSERTCOLUMNW, static_cast<WPARAM>(Header_GetItemCount(header)),
                 reinterpret_cast<LPARAM>(&column));
}

int ListView::appendRow(const char* text, LPARAM data) {
    std::wstring ownText = wideText(text);
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iItem = rowCount();
    item.pszText = ownText.data();
    item.lParam = data;
    return static_cast<int>(SendMessageA(window_, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
}

void ListView::setCell(int row, int column, const char* text) {
    std::wstring ownText = wideText(text);
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = ownText.data();
    SendMessageA(window_, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

std::string ListView::cell(int row, int column) const {
    std::array<wchar_t, kCellTextLimit + 1> text{};
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    SendMessageA(window_, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return ansiText(text.data());
}

LPARAM ListView::rowData(int row) const {
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    SendMessageA(window_, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return item.lParam;
}

int ListView::rowCount() const {
    return ListView_GetItemCount(window_);
}

bool ListView::isTicked(int row) const {
    return ListView_GetCheckState(window_, row) == 1;
}

int ListView::selectedRow() const {
    return ListView_GetNextItem(window_, -1, LVNI_SELECTED);
}

int ListView::rowAt(POINT screenPlace) const {
    LVHITTESTINFO hit{};
    hit.pt = screenPlace;
    ScreenToClient(window_, &hit.pt);
    return static_cast<int>(SendMessageA(window_, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

void ListView::selectRow(int row) {
    ListView_SetItemState(window_, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

RECT ListView::rowPlace(int row) const {
    RECT place{};
    ListView_GetItemRect(window_, row, &place, LVIR_BOUNDS);
    RECT area{};
    GetClientRect(window_, &area);
    IntersectRect(&place, &place, &area);
    MapWindowPoints(window_, nullptr, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void ListView::deleteRows() {
    ListView_DeleteAllItems(window_);
}

void ListView::scrollIntoView(int row) {
    ListView_EnsureVisible(window_, row, FALSE);
}

void ListView::redraw() {
    InvalidateRect(window_, nullptr, TRUE);
}

void ListView::setVisible(bool visible) {
    ShowWindow(window_, visible ? SW_SHOWNA : SW_HIDE);
}

LRESULT CALLBACK ListView::listProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    if (message == WM_NCCALCSIZE) {
        // A RECT, or an NCCALCSIZE_PARAMS that begins with one: the window's outer rectangle.
        dropNeedlessScrollBar(window, *reinterpret_cast<const RECT*>(lParam));
    }
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(window, &ListView::listProcedure, 0);
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

LRESULT drawCells(const ListView& list, NMLVCUSTOMDRAW& draw,
                  const std::function<CellColours(int column, const std::string& text)>& coloursOf) {
    switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
        return CDRF_NOTIFYITEMDRAW;
    case CDDS_ITEMPREPAINT:
        return CDRF_NOTIFYSUBITEMDRAW;
    case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
        const int row = static_cast<int>(draw.nmcd.dwItemSpec);
        const CellColours colours = coloursOf(draw.iSubItem, list.cell(row, draw.iSubItem));
        draw.clrText = colours.text;
        draw.clrTextBk = colours.background;
        return CDRF_DODEFAULT;
    }
    default:
        return CDRF_DODEFAULT;
    }
}

} // namespace torvane
