#include "hex/hex_viewer_dialog.h"

#include "base/format.h"
#include "hex/hex_viewer.h"
#include "hex/viewed_drive.h"
#include "records/drive_record.h"
#include "resources/resource_ids.h"
#include "ui/control_text.h"
#include "ui/dialog.h"
#include "ui/fixed_font.h"
#include "ui/waiting_over.h"

#include <memory>
#include <optional>
#include <utility>

namespace torvane {

namespace {

constexpr COLORREF kBackground = RGB(255, 255, 255);
constexpr int kScrollPage = 10;

// At 96 dots to the inch.
constexpr int kMargin = 8;
constexpr int kPaneGap = 12;

// Characters of one row.
constexpr int kOffsetColumns = 3;
constexpr int kHexColumns = 3 * kHexBytesPerRow - 1; // the last blank need not show
constexpr int kCharacterColumns = kHexBytesPerRow;

constexpr int kColumns = kOffsetColumns + kHexColumns + kCharacterColumns;
constexpr int kBetweenColumns = 2 * kMargin + 2 * kPaneGap;

/// A fixed-pitch font with the size of its characters.
struct FixedFont {
    UniqueFont font;
    int columnWidth;
    int rowHeight;
};

FixedFont measuredFont(HWND window, int height, int width) {
    UniqueFont font = makeFixedFont(height, width);
    const HDC context = GetDC(window);
    TEXTMETRICA metrics{};
    {
        const SelectedObject selected(context, font.get());
        GetTextMetricsA(context, &metrics);
    }
    ReleaseDC(window, context);
    return {std::move(font), metrics.tmAveCharWidth, metrics.tmHeight};
}

int panesTop(const FixedFont& font, Scale scale) {
    return scale.px(2 * kMargin) + font.rowHeight;
}

bool fits(const FixedFont& font, const RECT& area, Scale scale) {
    return scale.px(kBetweenColumns) + kColumns * font.columnWidth <= area.right &&
           panesTop(font, scale) + kHexRows * font.rowHeight + scale.px(kMargin) <= area.bottom;
}

/// The largest font with which all rows stand side by side, drawn narrower where its own width is too much.
FixedFont chooseFont(HWND window, const RECT& area, Scale scale) {
    constexpr int kSmallest = 8;
    const int width = (static_cast<int>(area.right) - scale.px(kBetweenColumns)) / kColumns;
    FixedFont font{};
    for (int height = 2 * width + 2; height >= kSmallest; --height) {
        for (const int tried : {0, width}) {
            font = measuredFont(window, height, tried);
            if (fits(font, area, scale)) {
                return font;
            }
        }
    }
    return font;
}

class HexViewerDialog : public Dialog {
  public:
    explicit HexViewerDialog(DriveRecord& drive)
        : Dialog(IDD_HEX_VIEWER), drive_(drive), viewed_(std::make_shared<ViewedDrive>(drive)) {}

  protected:
    bool onInitialise() override {
        setWindowText(window(), formatText("Quick Disk View -- %s", drive_.model.c_str()));
        setUpScrollBar();
        const RECT area = clientArea();
        size_ = {scale().at96(static_cast<int>(area.right)), scale().at96(static_cast<int>(area.bottom))};
        layOut();
        setControlText(IDC_HEX_OFFSETS, rowOffsetsText().c_str());
        clearPanes();
        showSector();
        SetFocus(window());
        return false;
    }

    void layOut() override {
        sizeClientArea({size_.width, size_.height});
        useFont();
        placePanes();
    }

    // Its bar is for jumps on the drive.
    [[nodiscard]] bool scrolls() const override { return false; }

    bool onCommand(int id) override {
        static constexpr CommandRoute<HexViewerDialog> kRoutes[] = {{IDCANCEL, &HexViewerDialog::onClose}};
        return route(*this, kRoutes, id);
    }

    std::optional<LRESULT> onMessage(UINT message, WPARAM wParam, LPARAM) override {
        switch (message) {
        case WM_VSCROLL:
            if (LOWORD(wParam) == SB_THUMBTRACK) {
                scrollTo(HIWORD(wParam));
            }
            return 0;
        case WM_KEYDOWN:
            onKey(wParam);
            return std::nullopt;
        // The keyboard stays with the dialog itself: dialogs would otherwise hand it on to a control, at once or when
        // Tab or an arrow key is pressed.
        case WM_SETFOCUS:
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTTAB | DLGC_WANTARROWS;
        default:
            return std::nullopt;
        }
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

    void useFont() {
        font_ = chooseFont(window(), clientArea(), scale());
        for (const int id : {IDC_HEX_POSITION, IDC_HEX_OFFSETS, IDC_HEX_PANE, IDC_CHARACTER_PANE}) {
            SendMessageA(control(id), WM_SETFONT, reinterpret_cast<WPARAM>(font_.font.get()), FALSE);
        }
    }

    void placePanes() {
        const int clientWidth = static_cast<int>(clientArea().right);
        const int margin = scale().px(kMargin);
        // In the middle, whatever the font leaves over.
        int left = margin + (clientWidth - scale().px(kBetweenColumns) - kColumns * font_.columnWidth) / 2;
        placeControlAt(IDC_HEX_POSITION, {left, margin, clientWidth - margin, margin + font_.rowHeight});
        const int top = panesTop(font_, scale());
        const auto placePane = [&](int id, int columns) {
            const int right = left + columns * font_.columnWidth;
            placeControlAt(id, {left, top, right, top + kHexRows * font_.rowHeight});
            left = right + scale().px(kPaneGap);
        };
        placePane(IDC_HEX_OFFSETS, kOffsetColumns);
        placePane(IDC_HEX_PANE, kHexColumns);
        placePane(IDC_CHARACTER_PANE, kCharacterColumns);
    }

    // A jump that comes while a sector is read follows it; the last one, when several come.
    void showSector() {
        reading_ = true;
        readAndShow();
        while (const std::optional<int> position = std::exchange(nextPosition_, std::nullopt)) {
            viewer().toScrollPosition(*position);
            readAndShow();
        }
        reading_ = false;
    }

    void readAndShow() {
        const bool done = waiting::runOver(window(), "the drive", [viewed = viewed_] { viewed->read(); });
        if (!done) {
            leaveRead();
            return;
        }
        drive_.badReadCount += viewed_->takeBadReads();
        showPosition();
        setControlText(IDC_HEX_PANE, hexPaneText(viewer().bytes()).c_str());
        setControlText(IDC_CHARACTER_PANE, characterPaneText(viewer().bytes()).c_str());
    }

    // The read goes on alone, by a handle that nobody else has.
    void leaveRead() {
        viewed_ = viewed_->anew();
        nextPosition_.reset();
        showPosition();
        clearPanes();
    }

    void clearPanes() {
        setControlText(IDC_HEX_PANE, "");
        setControlText(IDC_CHARACTER_PANE, "");
    }

    void showPosition() {
        setControlText(IDC_HEX_POSITION,
                       hexPositionText(viewer().sector(), viewer().sectors(), viewer().sectorBytes()).c_str());
    }

    void scrollTo(int position) {
        SetScrollPos(window(), SB_VERT, position, TRUE);
        if (reading_) {
            nextPosition_ = position;
            return;
        }
        viewer().toScrollPosition(position);
        showSector();
    }

    // The scroll bar stays where it is: it is for jumps, and one of its steps is many sectors of a drive.
    void onKey(WPARAM key) {
        if (!reading_ && ((key == VK_PRIOR && viewer().toPrevious()) || (key == VK_NEXT && viewer().toNext()))) {
            showSector();
        }
    }

    [[nodiscard]] HexViewer& viewer() { return viewed_->viewer(); }

    void onClose() { end(1); }

    DriveRecord& drive_;
    std::shared_ptr<ViewedDrive> viewed_;
    bool reading_ = false;
    std::optional<int> nextPosition_; ///< of the scroll bar, wanted while a sector is read
    FixedFont font_{};
    PixelSize size_{}; ///< of the client area as the template has it, at 96 dots to the inch
    UniqueBrush background_{CreateSolidBrush(kBackground)};
};

} // namespace

void showHexViewer(DriveRecord& drive, HWND owner) {
    HexViewerDialog(drive).runModal(owner);
}

} // namespace torvane
