#include "copy/hex_viewer_dialog.h"

#include "base/format.h"
#include "copy/hex_viewer.h"
#include "resources/resource_ids.h"
#include "ui/dialog.h"

namespace torvane {

namespace {

constexpr COLORREF kBackground = RGB(255, 255, 255);
constexpr int kScrollPage = 10;

// Pixels.
constexpr int kMargin = 8;
constexpr int kPaneGap = 12;

// Characters of one row.
constexpr int kOffsetColumns = 3;
constexpr int kHexColumns = 3 * kHexBytesPerRow - 1; // the last blank need not show
constexpr int kCharacterColumns = kHexBytesPerRow;

/// A fixed-pitch font of that height with the size of its characters.
struct FixedFont {
    UniqueFont font;
    int columnWidth;
    int rowHeight;
};

FixedFont makeFixedFont(HWND window, int height) {
    UniqueFont font(CreateFontA(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH | FF_MODERN, "Consolas"));
    const HDC context = GetDC(window);
    TEXTMETRICA metrics{};
    {
        const SelectedObject selected(context, font.get());
        GetTextMetricsA(context, &metrics);
    }
    ReleaseDC(window, context);
    return {std::move(font), metrics.tmAveCharWidth, metrics.tmHeight};
}

class HexViewerDialog : public Dialog {
  public:
    explicit HexViewerDialog(DriveRecord& drive) : Dialog(IDD_HEX_VIEWER), drive_(drive), viewer_(drive) {}

  protected:
    bool onInitialise() override {
        SetWindowTextA(window(), formatText("%s -- %s", "Quick Disk View", drive_.model.c_str()).c_str());
        setUpScrollBar();
        chooseFont();
        placePanes();
        setControlText(IDC_HEX_OFFSETS, rowOffsetsText().c_str());
        showSector();
        // No control takes the keyboard: its keys come to the dialog itself.
        SetFocus(window());
        return false;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<HexViewerDialog> kRoutes[] = {{IDCANCEL, &HexViewerDialog::onClose}};
        return route(*this, kRoutes, id);
    }

    std::optional<LRESULT> onMessage(UINT message, WPARAM wParam, LPARAM) override {
        if (message == WM_VSCROLL && LOWORD(wParam) == SB_THUMBTRACK) {
            scrollTo(HIWORD(wParam));
            return 0;
        }
        if (message == WM_KEYDOWN) {
            onKey(wParam);
        }
        return std::nullopt;
    }

    HBRUSH onControlColour(HDC context) override {
        SetBkColor(context, kBackground);
        return background_.get();
    }

  private:
    void setUpScrollBar() {
        SCROLLINFO info{};
        info.cbSize = sizeof(info);
        info.fMask = SIF_ALL;
        info.nMax = kHexScrollMaximum;
        info.nPage = kScrollPage;
        SetScrollInfo(window(), SB_VERT, &info, TRUE);
    }

    [[nodiscard]] static int widthOf(const FixedFont& font) {
        return 2 * kMargin + 2 * kPaneGap + (kOffsetColumns + kHexColumns + kCharacterColumns) * font.columnWidth;
    }
    [[nodiscard]] static int panesTop(const FixedFont& font) { return 2 * kMargin + font.rowHeight; }
    [[nodiscard]] static int heightOf(const FixedFont& font) {
        return panesTop(font) + kHexRows * font.rowHeight + kMargin;
    }

    // The largest with which all rows fit side by side.
    void chooseFont() {
        constexpr int kLargest = 18;
        constexpr int kSmallest = 8;
        const RECT area = clientArea();
        for (int height = kLargest; height >= kSmallest; --height) {
            font_ = makeFixedFont(window(), height);
            if (widthOf(font_) <= area.right && heightOf(font_) <= area.bottom) {
                break;
            }
        }
        for (const int id : {IDC_HEX_POSITION, IDC_HEX_OFFSETS, IDC_HEX_PANE, IDC_CHARACTER_PANE}) {
            SendMessageA(control(id), WM_SETFONT, reinterpret_cast<WPARAM>(font_.font.get()), FALSE);
        }
    }

    void placePanes() {
        const RECT area = clientArea();
        placeControl(IDC_HEX_POSITION, {kMargin, kMargin, area.right - kMargin, kMargin + font_.rowHeight});
        // In the middle, whatever the font leaves over.
        int left = kMargin + (static_cast<int>(area.right) - widthOf(font_)) / 2;
        const auto placePane = [&](int id, int columns) {
            const int right = left + columns * font_.columnWidth;
            placeControl(id, {left, panesTop(font_), right, panesTop(font_) + kHexRows * font_.rowHeight});
            left = right + kPaneGap;
        };
        placePane(IDC_HEX_OFFSETS, kOffsetColumns);
        placePane(IDC_HEX_PANE, kHexColumns);
        placePane(IDC_CHARACTER_PANE, kCharacterColumns);
    }

    void showSector() {
        viewer_.read();
        setControlText(IDC_HEX_POSITION,
                       hexPositionText(viewer_.sector(), viewer_.sectors(), viewer_.sectorBytes()).c_str());
        setControlText(IDC_HEX_PANE, hexPaneText(viewer_.bytes()).c_str());
        setControlText(IDC_CHARACTER_PANE, characterPaneText(viewer_.bytes()).c_str());
    }

    void scrollTo(int position) {
        SetScrollPos(window(), SB_VERT, position, TRUE);
        viewer_.toScrollPosition(position);
        showSector();
    }

    // The scroll bar stays where it is, on purpose.
    void onKey(WPARAM key) {
        if ((key == VK_PRIOR && viewer_.toPrevious()) || (key == VK_NEXT && viewer_.toNext())) {
            showSector();
        }
    }

    void onClose() { end(1); }

    DriveRecord& drive_;
    HexViewer viewer_;
    FixedFont font_{};
    UniqueBrush background_{CreateSolidBrush(kBackground)};
};

} // namespace

void showHexViewer(DriveRecord& drive, HWND owner) {
    HexViewerDialog(drive).runModal(owner);
}

} // namespace torvane
