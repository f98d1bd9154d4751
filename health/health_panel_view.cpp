#include "health/health_panel_view.h"

#include "base/colours.h"
#include "base/wide_text.h"
#include "health/panel_model.h"
#include "resources/resource_ids.h"
#include "state/active_drive.h"
#include "state/app_state.h"
#include "ui/back_buffer.h"
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

void drawNeedle(Gdiplus::Graphics& graphics, PanelPoint pivot, PanelPoint end) {
    Gdiplus::Pen pen(Gdiplus::Color(0xFF000000), kNeedleWidth);
    pen.SetStartCap(Gdiplus::LineCapRoundAnchor);
    pen.SetEndCap(Gdiplus::LineCapArrowAnchor);
    graphics.DrawLine(&pen, pivot.x, pivot.y, end.x, end.y);
}

void drawPictures(const PanelModel& panel, HDC context) {
    Gdiplus::Graphics graphics(context);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    Pictures pictures;
    for (const std::string_view name : panel.undrawnImages) {
        pictures.load(name);
    }
    for (const Dial& dial : panel.dials) {
        pictures.draw(graphics, dial.image, dial.position.x, dial.position.y);
        if (dial.needleEnd) {
            drawNeedle(graphics, dial.pivot, *dial.needleEnd);
        }
    }
    if (!panel.lampImage.empty()) {
        pictures.draw(graphics, panel.lampImage, kLampPosition.x, kLampPosition.y);
    }
}

void drawCaptions(const PanelModel& panel, HDC context) {
    const UniqueFont font{CreateFontA(kCaptionFontHeight, 0, 0, 0, kCaptionFontWeight, FALSE, FALSE, FALSE,
                                      ANSI_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY,
                                      DEFAULT_PITCH | FF_DONTCARE, "Calibri")};
    const SelectedObject selected(context, font.get());
    SetTextColor(context, RGB(0, 0, 0));
    SetBkMode(context, TRANSPARENT);
    for (const Dial& dial : panel.dials) {
        RECT box{dial.captionBox.left, dial.captionBox.top, dial.captionBox.right, dial.captionBox.bottom};
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

void showTexts(HWND window, const PanelTexts& texts) {
    showText(window, IDC_HEALTH_MESSAGE, texts.healthMessage);
    showText(window, IDC_VALUE_TEXT_1, texts.endurance);
    for (std::size_t bit = 0; bit < texts.nvmeResults.size(); ++bit) {
        showText(window, IDC_VALUE_TEXT_2 + static_cast<int>(bit), texts.nvmeResults[bit]);
    }
}

} // namespace

void PaintHealthPanel(const AppState& state, HWND window, HDC context) {
    const DriveRecord* const activeDrive = hasActiveDrive(state) ? state.activeDrive.load() : nullptr;
    const PanelModel panel = buildPanelModel(activeDrive, state.messages);
    showTexts(window, panel.texts);

    RECT area{};
    GetClientRect(window, &area);
    const BackBuffer buffer(context, area);
    if (!buffer.isUsable()) {
        return;
    }
    buffer.fill(kDialogBackground);
    drawPictures(panel, buffer.context());
    drawCaptions(panel, buffer.context());
    buffer.show();
}

} // namespace torvane
