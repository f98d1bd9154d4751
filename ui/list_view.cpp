#include "ui/list_view.h"

#include "base/colours.h"
#include "base/wide_text.h"
#include "ui/colour_scheme.h"
#include "ui/owned.h"
#include "ui/window_scale.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <map>
#include <optional>

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

// At 96 dots to the inch, as the control makes it itself.
constexpr int kCheckBoxSize = 16;

/// A box without its tick and one with it, side by side.
UniqueBitmap drawCheckBoxes(HWND list, int size, COLORREF around) {
    const HDC screen = GetDC(list);
    const UniqueMemoryDc memory{CreateCompatibleDC(screen)};
    UniqueBitmap bitmap{CreateCompatibleBitmap(screen, 2 * size, size)};
    ReleaseDC(list, screen);
    const SelectedObject selected(memory.get(), bitmap.get());
    const UniqueBrush brush{CreateSolidBrush(around)};
    const RECT all{0, 0, 2 * size, size};
    FillRect(memory.get(), &all, brush.get());
    const int edge = (size + 4) / 8;
    RECT without{edge, edge, size - edge, size - edge};
    DrawFrameControl(memory.get(), &without, DFC_BUTTON, DFCS_BUTTONCHECK | DFCS_FLAT);
    RECT with{size + edge, edge, 2 * size - edge, size - edge};
    DrawFrameControl(memory.get(), &with, DFC_BUTTON, DFCS_BUTTONCHECK | DFCS_FLAT | DFCS_CHECKED);
    return bitmap;
}

// The control's own have one size on some systems.
void scaleCheckBoxes(HWND list, Scale scale) {
    if ((ListView_GetExtendedListViewStyle(list) & LVS_EX_CHECKBOXES) == 0) {
        return;
    }
    constexpr COLORREF kAround = RGB(255, 0, 255);
    const int size = scale.px(kCheckBoxSize);
    const HIMAGELIST boxes = ImageList_Create(size, size, ILC_COLORDDB | ILC_MASK, 2, 0);
    ImageList_AddMasked(boxes, drawCheckBoxes(list, size, kAround).get(), kAround);
    // The list destroys the new ones at its own end.
    ImageList_Destroy(ListView_SetImageList(list, boxes, LVSIL_STATE));
}

/// The window property that keeps a list's own background.
constexpr const char* kOwnGround = "Torvane list background";

void colourGround(HWND list) {
    const auto own = static_cast<COLORREF>(reinterpret_cast<UINT_PTR>(GetPropA(list, kOwnGround)));
    ListView_SetBkColor(list, listGround(own));
    ListView_SetTextBkColor(list, listGround(own));
    ListView_SetTextColor(list, GetSysColor(COLOR_WINDOWTEXT));
}

void scaleColumns(HWND list, Scale before, Scale now) {
    const int columns = Header_GetItemCount(ListView_GetHeader(list));
    for (int column = 0; column < columns; ++column) {
        ListView_SetColumnWidth(list, column, now.px(before.at96(ListView_GetColumnWidth(list, column))));
    }
}

// A row that counts as selected would get the system's colours, which without the keyboard look disabled.
void colourCell(NMLVCUSTOMDRAW& draw, const CellColours& colours) {
    draw.clrText = colours.text;
    draw.clrTextBk = colours.background;
    draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED);
}

/// What all lists do with a message at last. They are not subclassed by SetWindowSubclass: some systems look up what
/// that keeps for a window by a question to another process, at every message.
std::atomic<WNDPROC> classProcedure{nullptr};

} // namespace

bool ListView::create(HWND parent, int id, const RECT& place, DWORD style, DWORD extendedStyle, COLORREF background) {
    window_ = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_BORDER | WS_TABSTOP | LVS_REPORT | style, place.left,
                              place.top, place.right - place.left, place.bottom - place.top, parent,
                              reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
    if (window_ == nullptr) {
        return false;
    }
    classProcedure = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ListView::listProcedure)));
    SendMessageA(window_, WM_SETFONT, static_cast<WPARAM>(SendMessageA(parent, WM_GETFONT, 0, 0)), FALSE);
    ListView_SetExtendedListViewStyle(window_, extendedStyle);
    SetPropA(window_, kOwnGround, reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(background)));
    colourGround(window_);
    if (const Scale scale = scaleOf(window_); scale != Scale{}) {
        scaleCheckBoxes(window_, scale);
    }
    return true;
}

void ListView::addColumn(const char* heading, int width) {
    std::wstring text = wideText(heading);
    LVCOLUMNW column{};
    column.mask = LVCF_FMT | LVCF_TEXT | LVCF_WIDTH;
    column.fmt = LVCFMT_LEFT;
    column.cx = scaleOf(window_).px(width);
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

std::string ListView::wholeCell(int row, int column) const {
    std::vector<wchar_t> text(2 * static_cast<std::size_t>(kCellTextLimit));
    while (true) {
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = text.data();
        item.cchTextMax = static_cast<int>(text.size());
        const auto length = static_cast<std::size_t>(
            SendMessageA(window_, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item)));
        if (length + 1 < text.size()) {
            return ansiText({text.data(), length});
        }
        text.resize(2 * text.size()); // it may have been cut
    }
}

std::vector<std::vector<std::string>> ListView::wholeRows(const std::vector<int>& rows) const {
    const int columns = Header_GetItemCount(ListView_GetHeader(window_));
    std::vector<std::vector<std::string>> texts(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        texts[i].resize(static_cast<std::size_t>(columns));
        for (int column = 0; column < columns; ++column) {
            texts[i][static_cast<std::size_t>(column)] = wholeCell(rows[i], column);
        }
    }
    return texts;
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

bool ListView::isSelected(int row) const {
    return ListView_GetItemState(window_, row, LVIS_SELECTED) != 0;
}

int ListView::selectedRow() const {
    return ListView_GetNextItem(window_, -1, LVNI_SELECTED);
}

std::vector<int> ListView::chosenRows() const {
    std::vector<int> rows;
    rows.reserve(ListView_GetSelectedCount(window_));
    for (int row = selectedRow(); row >= 0; row = ListView_GetNextItem(window_, row, LVNI_SELECTED)) {
        rows.push_back(row);
    }
    if (const int focused = ListView_GetNextItem(window_, -1, LVNI_FOCUSED); rows.empty() && focused >= 0) {
        rows.push_back(focused);
    }
    return rows;
}

int ListView::rowAt(POINT screenPlace) const {
    LVHITTESTINFO hit{};
    hit.pt = screenPlace;
    ScreenToClient(window_, &hit.pt);
    return static_cast<int>(SendMessageA(window_, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

bool ListView::isOnRow(POINT place) const {
    LVHITTESTINFO hit{};
    hit.pt = place;
    const auto row = static_cast<int>(SendMessageA(window_, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    const bool onCheckBox = hit.iSubItem == 0 && (hit.flags & LVHT_ONITEM) == LVHT_ONITEMSTATEICON;
    return row >= 0 && !onCheckBox;
}

void ListView::selectRow(int row) {
    ListView_SetItemState(window_, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

void ListView::selectAllRows() {
    ListView_SetItemState(window_, -1, LVIS_SELECTED, LVIS_SELECTED);
}

POINT ListView::placeBelow(int row) {
    RECT place{};
    if (row < 0) {
        GetWindowRect(window_, &place);
        return {place.left, place.top};
    }
    scrollIntoView(row);
    place = rowPlace(row);
    return {place.left, place.bottom};
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

void ListView::arrange(std::span<const LPARAM> data) {
    std::map<LPARAM, int> places;
    for (const LPARAM each : data) {
        places.emplace(each, static_cast<int>(places.size()));
    }
    const auto compare = [](LPARAM left, LPARAM right, LPARAM context) -> int {
        const auto& placeOf = *reinterpret_cast<const std::map<LPARAM, int>*>(context);
        return placeOf.at(left) - placeOf.at(right);
    };
    const int selected = selectedRow();
    const LPARAM selectedData = selected < 0 ? 0 : rowData(selected);
    ListView_SortItems(window_, static_cast<int CALLBACK (*)(LPARAM, LPARAM, LPARAM)>(compare),
                       reinterpret_cast<LPARAM>(&places));
    // Some systems leave the selection at its place.
    if (selected >= 0) {
        selectRow(places.at(selectedData));
    }
}

void ListView::markSorted(int column, bool descending) {
    const HWND header = ListView_GetHeader(window_);
    const int columns = Header_GetItemCount(header);
    for (int each = 0; each < columns; ++each) {
        HDITEMW heading{};
        heading.mask = HDI_FORMAT;
        SendMessageA(header, HDM_GETITEMW, static_cast<WPARAM>(each), reinterpret_cast<LPARAM>(&heading));
        heading.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
        if (each == column) {
            heading.fmt |= descending ? HDF_SORTDOWN : HDF_SORTUP;
        }
        SendMessageA(header, HDM_SETITEMW, static_cast<WPARAM>(each), reinterpret_cast<LPARAM>(&heading));
    }
}

int ListView::columnWidth(int column) const {
    return scaleOf(window_).at96(ListView_GetColumnWidth(window_, column));
}

void ListView::setColumnWidth(int column, int width) {
    ListView_SetColumnWidth(window_, column, scaleOf(window_).px(width));
}

void ListView::scrollIntoView(int row) {
    ListView_EnsureVisible(window_, row, FALSE);
}

void ListView::redraw() {
    InvalidateRect(window_, nullptr, TRUE);
}

bool ListView::isShown() const {
    return (GetWindowLongA(window_, GWL_STYLE) & WS_VISIBLE) != 0;
}

void ListView::setVisible(bool visible) {
    ShowWindow(window_, visible ? SW_SHOWNA : SW_HIDE);
}

LRESULT CALLBACK ListView::listProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCALCSIZE) {
        // A RECT, or an NCCALCSIZE_PARAMS that begins with one: the window's outer rectangle.
        dropNeedlessScrollBar(window, *reinterpret_cast<const RECT*>(lParam));
    }
    if (message == kScaleChangedMessage) {
        const Scale now{static_cast<int>(lParam)};
        scaleColumns(window, Scale{static_cast<int>(wParam)}, now);
        scaleCheckBoxes(window, now);
    }
    if (message == WM_SYSCOLORCHANGE) {
        colourGround(window);
    }
    if (message == WM_NCDESTROY) {
        RemovePropA(window, kOwnGround);
    }
    return CallWindowProcW(classProcedure, window, message, wParam, lParam);
}

UndrawnList::UndrawnList(const ListView& list) : window_(list.window()), shown_(list.isShown()) {
    SendMessageA(window_, WM_SETREDRAW, FALSE, 0);
}

// The system marks a window that is to be drawn again as shown, whatever it was before.
UndrawnList::~UndrawnList() {
    SendMessageA(window_, WM_SETREDRAW, TRUE, 0);
    if (shown_) {
        InvalidateRect(window_, nullptr, TRUE);
    } else {
        ShowWindow(window_, SW_HIDE);
    }
}

CellColours selectedColours(const ListView& list) {
    return {kSelectedText, GetFocus() == list.window() ? kSelectedBackground : kRestingSelectedBackground};
}

LRESULT drawSelection(const ListView& list, NMLVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) {
        return isHighContrast() ? CDRF_DODEFAULT : CDRF_NOTIFYITEMDRAW;
    }
    if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT && list.isSelected(static_cast<int>(draw.nmcd.dwItemSpec))) {
        colourCell(draw, selectedColours(list));
    }
    return CDRF_DODEFAULT;
}

LRESULT drawCells(const ListView& list, NMLVCUSTOMDRAW& draw, const ColoursOfCell& coloursOf) {
    switch (draw.nmcd.dwDrawStage) {
    case CDDS_PREPAINT:
        return isHighContrast() ? CDRF_DODEFAULT : CDRF_NOTIFYITEMDRAW;
    case CDDS_ITEMPREPAINT:
        return CDRF_NOTIFYSUBITEMDRAW;
    case CDDS_ITEMPREPAINT | CDDS_SUBITEM: {
        const int row = static_cast<int>(draw.nmcd.dwItemSpec);
        const std::string text = list.cell(row, draw.iSubItem);
        const std::optional<CellColours> selected =
            list.isSelected(row) ? std::optional(selectedColours(list)) : std::nullopt;
        colourCell(draw, coloursOf(draw.iSubItem, text, selected));
        return CDRF_DODEFAULT;
    }
    default:
        return CDRF_DODEFAULT;
    }
}

} // namespace torvane
