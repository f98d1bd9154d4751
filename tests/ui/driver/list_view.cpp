#include "tests/ui/driver/list_view.h"

#include "tests/ui/driver/input.h"
#include "tests/ui/driver/remote_memory.h"
#include "tests/ui/driver/text.h"
#include "tests/ui/driver/wait.h"

#include <commctrl.h>

#include <array>

namespace torvane::driver {
namespace {

constexpr std::size_t kTextLength = 1024;

template <typename Item>
std::string readText(const Window& control, Item item, UINT message, WPARAM wParam) {
    const RemoteMemory memory(control.handle(), sizeof(Item) + kTextLength * sizeof(wchar_t));
    item.pszText = reinterpret_cast<wchar_t*>(memory.address(sizeof(Item)));
    item.cchTextMax = kTextLength;
    memory.write(0, &item, sizeof item);
    control.send(message, wParam, static_cast<LPARAM>(memory.address()));
    std::array<wchar_t, kTextLength> text{};
    memory.read(sizeof(Item), text.data(), sizeof text);
    text.back() = L'\0';
    return toUtf8(text.data());
}

} // namespace

int ListView::rowCount() const {
    return static_cast<int>(window_.send(LVM_GETITEMCOUNT));
}

Window ListView::header() const {
    return Window(reinterpret_cast<HWND>(window_.send(LVM_GETHEADER))); // NOLINT(performance-no-int-to-ptr)
}

int ListView::columnCount() const {
    return static_cast<int>(header().send(HDM_GETITEMCOUNT));
}

std::string ListView::heading(int column) const {
    HDITEMW item{};
    item.mask = HDI_TEXT;
    return readText(header(), item, HDM_GETITEMW, static_cast<WPARAM>(column));
}

int ListView::columnWidth(int column) const {
    return static_cast<int>(window_.send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
}

DWORD ListView::extendedStyle() const {
    return static_cast<DWORD>(window_.send(LVM_GETEXTENDEDLISTVIEWSTYLE));
}

COLORREF ListView::background() const {
    return static_cast<COLORREF>(window_.send(LVM_GETBKCOLOR));
}

std::string ListView::cell(int row, int column) const {
    LVITEMW item{};
    item.iSubItem = column;
    return readText(window_, item, LVM_GETITEMTEXTW, static_cast<WPARAM>(row));
}

std::vector<std::string> ListView::row(int row) const {
    const int columns = columnCount();
    std::vector<std::string> cells;
    cells.reserve(static_cast<std::size_t>(columns));
    for (int column = 0; column < columns; ++column) {
        cells.push_back(cell(row, column));
    }
    return cells;
}

int ListView::rowWith(int column, const std::string& text) const {
    for (int row = 0; row < rowCount(); ++row) {
        if (cell(row, column) == text) {
            return row;
        }
    }
    throw Failure("no row with '" + text + "' in column " + std::to_string(column));
}

bool ListView::ticked(int row) const {
    const LRESULT image = window_.send(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK);
    return image == INDEXTOSTATEIMAGEMASK(2);
}

bool ListView::selected(int row) const {
    return window_.send(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) != 0;
}

RECT ListView::subItemRect(int row, int column, int part) const {
    window_.send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    const RemoteMemory memory(window_.handle(), sizeof(RECT));
    RECT rect{};
    rect.top = column;
    rect.left = part;
    memory.write(0, &rect, sizeof rect);
    // Column 0 of LVM_GETSUBITEMRECT is the whole row, so its own cell is asked for as the item's label.
    if (column == 0) {
        window_.send(LVM_GETITEMRECT, static_cast<WPARAM>(row), static_cast<LPARAM>(memory.address()));
    } else {
        window_.send(LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), static_cast<LPARAM>(memory.address()));
    }
    memory.read(0, &rect, sizeof rect);
    MapWindowPoints(window_.handle(), nullptr, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

RECT ListView::cellRect(int row, int column) const {
    RECT rect = subItemRect(row, column, column == 0 ? LVIR_LABEL : LVIR_BOUNDS);
    rect.right = rect.left + (column == 0 ? rect.right - rect.left : columnWidth(column));
    return rect;
}

void ListView::click(int row, int column) const {
    clickAt(window_, centre(cellRect(row, column)));
}

POINT ListView::checkBoxPlace(int row) const {
    const RECT label = subItemRect(row, 0, LVIR_LABEL);
    const RECT bounds = subItemRect(row, 0, LVIR_BOUNDS);
    // The box stands alone between the row's left edge and its label.
    return {(bounds.left + label.left) / 2, (label.top + label.bottom) / 2};
}

void ListView::clickCheckBox(int row) const {
    clickAt(window_, checkBoxPlace(row));
}

void ListView::setTicked(int row, bool wanted) const {
    if (ticked(row) == wanted) {
        return;
    }
    clickCheckBox(row);
    await("the row's check box has changed", [&] { return ticked(row) == wanted; });
}

} // namespace torvane::driver
