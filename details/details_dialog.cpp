#include "details/details_dialog.h"

#include "base/file_name_part.h"
#include "details/drive_pages.h"
#include "details/told_by_windows.h"
#include "discovery/drive_summary.h"
#include "discovery/drive_volumes.h"
#include "records/drive_record.h"
#include "resources/resource_ids.h"
#include "ui/control_text.h"
#include "ui/dialog.h"
#include "ui/fixed_font.h"
#include "ui/list_view.h"
#include "ui/owned.h"
#include "ui/waiting.h"

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace torvane {

namespace {

// Pixels of the client area at 96 dots to the inch.
constexpr SIZE kClientSize{1160, 560};
constexpr int kMargin = 10;
constexpr int kPagesWidth = 104;
constexpr int kButtonWidth = 96;
constexpr int kButtonHeight = 26;
constexpr int kPageBottom = kClientSize.cy - kButtonHeight - 2 * kMargin;
constexpr RECT kPagesPlace{kMargin, kMargin, kMargin + kPagesWidth, kPageBottom};
constexpr RECT kPagePlace{2 * kMargin + kPagesWidth, kMargin, kClientSize.cx - kMargin, kPageBottom};
constexpr int kTextHeight = 15;

/// The texts of all pages, and what they are called.
struct ShownDetails {
    std::string drive; ///< in one line
    std::string fileName;
    std::vector<DetailPage> pages;
};

class DetailsDialog : public Dialog {
  public:
    DetailsDialog(ShownDetails details, const DetailActions& actions)
        : Dialog(IDD_DRIVE_DETAILS), details_(std::move(details)), actions_(actions) {}

  protected:
    bool onInitialise() override {
        setWindowText(window(), "Drive Details -- " + details_.drive);
        tables_.resize(details_.pages.size());
        for (std::size_t page = 0; page < details_.pages.size(); ++page) {
            SendMessageA(control(IDC_DETAIL_PAGES), LB_ADDSTRING, 0,
                         reinterpret_cast<LPARAM>(details_.pages[page].title.c_str()));
            fill(page);
        }
        layOut();
        centreOnOwner();
        SendMessageA(control(IDC_DETAIL_PAGES), LB_SETCURSEL, 0, 0);
        showPage();
        SetFocus(control(IDC_DETAIL_PAGES));
        return false;
    }

    void layOut() override {
        sizeClientArea(kClientSize);
        useTextFont();
        placeControl(IDC_DETAIL_PAGES, kPagesPlace);
        placeControl(IDC_DETAIL_TEXT, kPagePlace);
        for (std::size_t page = 0; page < tables_.size(); ++page) {
            if (!isText(page)) {
                placeControl(tableId(page), kPagePlace);
            }
        }
        int right = kClientSize.cx - kMargin;
        for (const int id : {IDCANCEL, IDC_DETAIL_SAVE, IDC_DETAIL_COPY}) {
            constexpr int kTop = kPageBottom + kMargin;
            placeControl(id, RECT{right - kButtonWidth, kTop, right, kTop + kButtonHeight});
            right -= kButtonWidth + kMargin;
        }
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<DetailsDialog> kRoutes[] = {
            {IDC_DETAIL_PAGES, &DetailsDialog::showPage},
            {IDC_DETAIL_COPY, &DetailsDialog::onCopy},
            {IDC_DETAIL_SAVE, &DetailsDialog::onSave},
            {IDCANCEL, &DetailsDialog::onClose},
            {IDOK, &DetailsDialog::onNothing},
        };
        return route(*this, kRoutes, id);
    }

    std::optional<LRESULT> onNotify(NMHDR& header) override {
        if (isText(shown_) || header.idFrom != static_cast<UINT_PTR>(tableId(shown_))) {
            return std::nullopt;
        }
        switch (header.code) {
        case NM_CUSTOMDRAW:
            return draw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
        case LVN_KEYDOWN:
            onTableKey(reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey);
            return 0;
        default:
            return std::nullopt;
        }
    }

  private:
    [[nodiscard]] const DetailPage& page(std::size_t number) const { return details_.pages[number]; }
    [[nodiscard]] bool isText(std::size_t number) const { return page(number).columns.empty(); }
    [[nodiscard]] static int tableId(std::size_t number) { return IDC_DETAIL_FIRST_TABLE + static_cast<int>(number); }

    void fill(std::size_t number) {
        if (isText(number)) {
            setWindowText(control(IDC_DETAIL_TEXT), page(number).text);
            return;
        }
        ListView& table = tables_[number];
        table.create(window(), tableId(number), {}, 0, LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP,
                     GetSysColor(COLOR_WINDOW));
        // Between the list of pages and the buttons, for the Tab key.
        SetWindowPos(table.window(), control(IDC_DETAIL_PAGES), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        for (const DetailColumn& column : page(number).columns) {
            table.addColumn(column.heading.c_str(), column.width);
        }
        for (const DetailRow& row : page(number).rows) {
            const int place = table.appendRow(row.cells.front().c_str());
            for (std::size_t cell = 1; cell < row.cells.size(); ++cell) {
                table.setCell(place, static_cast<int>(cell), row.cells[cell].c_str());
            }
        }
    }

    /// Lines of the tool's text stand in columns.
    void useTextFont() {
        UniqueFont font = makeFixedFont(scale().px(kTextHeight));
        SendMessageA(control(IDC_DETAIL_TEXT), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
        textFont_ = std::move(font);
    }

    void showPage() {
        const LRESULT chosen = SendMessageA(control(IDC_DETAIL_PAGES), LB_GETCURSEL, 0, 0);
        if (chosen < 0) {
            return;
        }
        shown_ = static_cast<std::size_t>(chosen);
        for (std::size_t number = 0; number < tables_.size(); ++number) {
            if (!isText(number)) {
                tables_[number].setVisible(number == shown_);
            }
        }
        showControl(IDC_DETAIL_TEXT, isText(shown_));
    }

    /// Headings are told from other rows by the system's own colours, and by having no other cells.
    LRESULT draw(NMLVCUSTOMDRAW& draw) const {
        if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) {
            return CDRF_NOTIFYITEMDRAW;
        }
        if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT && isHeading(draw.nmcd.dwItemSpec)) {
            draw.clrText = GetSysColor(COLOR_BTNTEXT);
            draw.clrTextBk = GetSysColor(COLOR_BTNFACE);
        }
        return CDRF_DODEFAULT;
    }

    [[nodiscard]] bool isHeading(std::size_t row) const {
        return row < page(shown_).rows.size() && page(shown_).rows[row].heading;
    }

    void onTableKey(WORD key) {
        if (GetKeyState(VK_CONTROL) >= 0 || GetKeyState(VK_MENU) < 0) {
            return;
        }
        if (key == 'C') {
            onCopy();
        } else if (key == 'A') {
            tables_[shown_].selectAllRows();
        }
    }

    /// The selected rows; of a page without any, all of it.
    void onCopy() {
        std::string text;
        if (!isText(shown_) && tables_[shown_].selectedRow() >= 0) {
            for (const int row : tables_[shown_].chosenRows()) {
                text.append(rowAsText(page(shown_).rows[static_cast<std::size_t>(row)])).append("\r\n");
            }
        } else {
            text = pageAsText(page(shown_));
        }
        actions_.copy(text);
    }

    void onSave() { actions_.save(details_.fileName, pagesAsText(details_.drive, details_.pages)); }

    void onClose() { end(0); }
    void onNothing() {}

    ShownDetails details_;
    const DetailActions& actions_;
    std::vector<ListView> tables_; ///< by page; a page that is a text has none
    std::size_t shown_ = 0;
    UniqueFont textFont_;
};

ToldByWindows askOrLeave(const DriveRecord& drive, const std::vector<char>& letters) {
    const auto told = waiting::resultOf("the drive's volumes", [path = std::string(drive.devicePath.view()), letters] {
        return askWindows(path, letters);
    });
    return told.value_or(untold(letters));
}

/// "Details MODEL SERIAL.txt"
std::string fileNameFor(const DriveRecord& drive) {
    constexpr std::size_t kMostOfAPart = 60;
    return "Details " + fileNamePart(drive.model.view(), kMostOfAPart) + " " +
           fileNamePart(drive.serialNumber.view(), kMostOfAPart) + ".txt";
}

} // namespace

void showDriveDetails(const DriveRecord& drive, const VolumeTable& volumes, const DetailActions& actions, HWND owner) {
    ToldByWindows told = askOrLeave(drive, volumeLettersOn(drive, volumes));
    ShownDetails details{
        .drive = driveSummary(drive, volumes),
        .fileName = fileNameFor(drive),
        .pages = drivePages({.drive = drive, .volumes = std::move(told.volumes), .readOnly = told.readOnly}),
    };
    DetailsDialog(std::move(details), actions).runModal(owner);
}

} // namespace torvane
