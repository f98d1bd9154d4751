#include "health/health_panel_view.h"

#include "base/wide_text.h"
#include "health/panel_model.h"
#include "health/tool_missing.h"
#include "resources/resource_ids.h"
#include "state/active_drive.h"
#include "state/app_state.h"
#include "ui/back_buffer.h"
#include "ui/colour_scheme.h"
#include "ui/control_text.h"
#include "ui/owned.h"
#include "ui/pictures.h"

#include <objidl.h>

#include <gdiplus.h>

#include <string>

namespace torvane {

namespace {

constexpr int kCaptionFontHeight = 20;
constexpr int kCaptionFontWeight = 100;

constexpr float kNeedleWidth = 5.0F;

/// A place of the dial in the window's pixels. Counted from where the picture stands, so that rounding never parts the
/// needle from its scale.
Gdiplus::Point placeOn(const Dial& dial, PanelPoint point, Scale scale) {
    return {scale.px(dial.position.x) + scale.px(point.x - dial.position.x),
            scale.px(dial.position.y) + scale.px(point.y - dial.position.y)};
}

void drawNeedle(Gdiplus::Graphics& graphics, const Dial& dial, PanelPoint end, Scale scale) {
    Gdiplus::Pen pen(Gdiplus::Color(0xFF000000), kNeedleWidth * static_cast<float>(scale.dpi) / Scale::kDesignDpi);
    pen.SetStartCap(Gdiplus::LineCapRoundAnchor);
    pen.SetEndCap(Gdiplus::LineCapArrowAnchor);
    graphics.DrawLine(&pen, placeOn(dial, dial.pivot, scale), placeOn(dial, end, scale));
}

void drawPictures(const PanelModel& panel, HDC context, Scale scale) {
    Gdiplus::Graphics graphics(context);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    Pictures pictures(scale);
    for (const std::string_view name : panel.undrawnImages) {
        pictures.load(name);
    }
    for (const Dial& dial : panel.dials) {
        pictures.draw(graphics, dial.image, dial.position.x, dial.position.y);
        if (dial.needleEnd) {
            drawNeedle(graphics, dial, *dial.needleEnd, scale);
        }
    }
    if (!panel.lampImage.empty()) {
        pictures.draw(graphics, panel.lampImage, kLampPosition.x, kLampPosition.y);
    }
}

void drawCaptions(const PanelModel& panel, HDC context, Scale scale) {
    const UniqueFont font{CreateFontA(scale.px(kCaptionFontHeight), 0, 0, 0, kCaptionFontWeight, FALSE, FALSE, FALSE,
                                      ANSI_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY,
                                      DEFAULT_PITCH | FF_DONTCARE, "Calibri")};
    const SelectedObject selected(context, font.get());
    SetTextColor(context, dialogText());
    SetBkMode(context, TRANSPARENT);
    for (const Dial& dial : panel.dials) {
        RECT box{scale.px(dial.captionBox.left), scale.px(dial.captionBox.top), scale.px(dial.captionBox.right),
                 scale.px(dial.captionBox.bottom)};
        const std::wstring caption = wideText(dial.caption);
        DrawTextW(context, caption.data(), static_cast<int>(caption.size()), &box,
                  DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
}

/// Sets a text, and shows its control or hides an empty one: the controls of one layout stand where those of another
/// do. Changes only what differs, since a change repaints.
void showText(HWND window, int id, const std::string& text) {
    const HWND control = GetDlgItem(window, id);
    if (controlText(control) != text) {
        setWindowText(control, text);
    }
    const bool shown = (GetWindowLongA(control, GWL_STYLE) & WS_VISIBLE) != 0;
    if (shown == text.empty()) {
        ShowWindow(control, text.empty() ? SW_HIDE : SW_SHOWNA);
    }
}

/// The first dial's text stands under it as the others' do, but for the long one of an NVMe drive, which stands above
/// the dials. Told by the second's place, which the window's layout may have raised.
void placeFirstText(HWND window, bool isLong, Scale scale) {
    const HWND first = GetDlgItem(window, IDC_VALUE_TEXT_1);
    RECT place{};
    GetWindowRect(GetDlgItem(window, IDC_VALUE_TEXT_2), &place);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    if (isLong) {
        OffsetRect(&place, scale.px(kLongTextLeft) - place.left, -scale.px(kLongTextAbove));
        place.right = place.left + scale.px(kLongTextWidth);
    } else {
        OffsetRect(&place, -scale.px(kDialStep), 0);
    }
    RECT now{};
    GetWindowRect(first, &now);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&now), 2);
    if (EqualRect(&now, &place) == FALSE) {
        const LONG_PTR style = GetWindowLongPtrW(first, GWL_STYLE) & ~static_cast<LONG_PTR>(SS_TYPEMASK);
        SetWindowLongPtrW(first, GWL_STYLE, style | (isLong ? SS_LEFT : SS_CENTER));
        SetWindowPos(first, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

void showTexts(HWND window, const PanelTexts& texts, Scale scale) {
    showText(window, IDC_HEALTH_MESSAGE, texts.healthMessage);
    showText(window, IDC_OWN_VERDICT, texts.own);
    const bool isNvme = !texts.endurance.empty();
    placeFirstText(window, isNvme, scale);
    showText(window, IDC_VALUE_TEXT_1, isNvme ? texts.endurance : texts.counters.front());
    for (std::size_t bit = 0; bit < texts.nvmeResults.size(); ++bit) {
        showText(window, IDC_VALUE_TEXT_2 + static_cast<int>(bit),
                 isNvme ? texts.nvmeResults[bit] : texts.counters[bit + 1]);
    }
}

} // namespace

void PaintHealthPanel(const AppState& state, HWND window, HDC context, Scale scale) {
    const DriveRecord* const activeDrive = hasActiveDrive(state) ? state.activeDrive.load() : nullptr;
    const PanelModel panel =
        buildPanelModel(activeDrive, state.messages, activeDrive != nullptr && isToolMissed(*activeDrive));
    showTexts(window, panel.texts, scale);

    const BackBuffer buffer(context);
    if (!buffer.isUsable()) {
        return;
    }
    buffer.fill(dialogGround());
    drawPictures(panel, buffer.context(), scale);
    drawCaptions(panel, buffer.context(), scale);
    buffer.show();
}

} // namespace torvane
