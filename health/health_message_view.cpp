#include "health/health_message_view.h"

#include "health/nvme_verdict.h"
#include "records/drive_record.h"
#include "ui/colour_scheme.h"
#include "ui/control_text.h"
#include "ui/owned.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

namespace {

constexpr UINT kOneLine = DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX;
// As an edit control does it: words longer than a line are broken too, and a line that shows only in part is left out.
constexpr UINT kWrapped = DT_LEFT | DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX;

/// What `text` takes in the context's font when its lines may be as wide as `place`.
SIZE neededSize(HDC context, std::wstring_view text, const RECT& place, UINT format) {
    RECT needed{0, 0, place.right - place.left, 0};
    DrawTextW(context, text.data(), static_cast<int>(text.size()), &needed, format | DT_CALCRECT);
    return {needed.right, needed.bottom};
}

void draw(HDC context, std::wstring_view text, RECT place, UINT format) {
    DrawTextW(context, text.data(), static_cast<int>(text.size()), &place, format | DT_END_ELLIPSIS);
}

bool fitsOneLine(HDC context, std::wstring_view text, const RECT& place) {
    return text.find_first_of(L"\r\n") == std::wstring_view::npos &&
           neededSize(context, text, place, kOneLine).cx <= place.right - place.left;
}

COLORREF ownColour(const DriveRecord& drive) {
    constexpr std::uint32_t kWearingOut = 2;
    constexpr std::uint32_t kFailing = 3;
    // Of its failure alone does any other drive tell by itself.
    const std::uint32_t level = drive.smartType == kSmartTypeNvme ? nvmeLevel(drive.nvme).value_or(0) : kFailing;
    if (level < kWearingOut) {
        return dialogText();
    }
    return stressedText(level == kWearingOut ? RGB(122, 66, 0) : RGB(176, 0, 0));
}

} // namespace

bool drawHealthMessage(const DRAWITEMSTRUCT& item, HFONT large, HFONT small) {
    FillRect(item.hDC, &item.rcItem, dialogGroundBrush());
    SetTextColor(item.hDC, dialogText());
    SetBkMode(item.hDC, TRANSPARENT);
    const std::wstring text = wideControlText(item.hwndItem);
    {
        const SelectedObject selected(item.hDC, large);
        if (fitsOneLine(item.hDC, text, item.rcItem)) {
            draw(item.hDC, text, item.rcItem, kOneLine);
            return true;
        }
    }
    const SelectedObject selected(item.hDC, small);
    draw(item.hDC, text, item.rcItem, kWrapped);
    return neededSize(item.hDC, text, item.rcItem, kWrapped).cy <= item.rcItem.bottom - item.rcItem.top;
}

void drawOwnVerdict(const DRAWITEMSTRUCT& item, const DriveRecord* drive) {
    FillRect(item.hDC, &item.rcItem, dialogGroundBrush());
    const SelectedObject selected(item.hDC, reinterpret_cast<HFONT>(SendMessageW(item.hwndItem, WM_GETFONT, 0, 0)));
    SetTextColor(item.hDC, drive == nullptr ? dialogText() : ownColour(*drive));
    SetBkMode(item.hDC, TRANSPARENT);
    draw(item.hDC, wideControlText(item.hwndItem), item.rcItem, kOneLine);
}

} // namespace torvane
