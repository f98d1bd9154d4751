#include "admin/bitlocker_dialog.h"

#include "admin/bitlocker_scan.h"
#include "admin/volume_refresh.h"
#include "base/colours.h"
#include "base/format.h"
#include "records/drive_record.h"
#include "resources/resource_ids.h"
#include "state/scan_tables.h"
#include "ui/colour_scheme.h"
#include "ui/dialog.h"
#include "ui/list_view.h"

namespace torvane {

namespace {

// Pixels of the client area at 96 dots to the inch. A whole recovery password fits into the "Key" column.
constexpr SIZE kClientSize{800, 330};
constexpr int kMargin = 10;
constexpr int kTitleTop = 20;
constexpr int kTitleHeight = 20;
constexpr int kListTop = 50;
constexpr int kUnderList = 60;
constexpr int kKeysMargin = 6;
constexpr int kButtonWidth = 96;
constexpr int kButtonHeight = 26;
constexpr int kListWidth = kClientSize.cx - 2 * kMargin;

class BitLockerDialog : public Dialog, private BitLockerRows {
  public:
    BitLockerDialog(DriveRecord& drive, ScanState& scan) : Dialog(IDD_BITLOCKER_SCAN), drive_(drive), scan_(scan) {}

  protected:
    bool onInitialise() override {
        SetWindowTextA(window(), "Bitlocker Scan");
        createHiddenLabels();
        setControlText(IDC_BITLOCKER_TITLE, formatText("Bitlocker Status %s", drive_.model.c_str()).c_str());
        buildList();
        layOut();
        centreOnOwner();
        return true;
    }

    void layOut() override {
        sizeClientArea(kClientSize);
        placeControl(IDC_BITLOCKER_TITLE, RECT{kMargin, kTitleTop, kMargin + kListWidth, kTitleTop + kTitleHeight});
        placeControl(IDC_BITLOCKER_LIST, RECT{kMargin, kListTop, kMargin + kListWidth, kClientSize.cy - kUnderList});
        placeButtons();
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<BitLockerDialog> kRoutes[] = {
            {IDC_BITLOCKER_BEGIN, &BitLockerDialog::onBegin},
            {IDC_BITLOCKER_EXIT, &BitLockerDialog::onExit},
            {IDCANCEL, &BitLockerDialog::onExit},
        };
        return route(*this, kRoutes, id);
    }

    [[nodiscard]] bool isWayOut(int id) const override { return id == IDCANCEL || id == IDC_BITLOCKER_EXIT; }

    HBRUSH onControlColour(HDC context) override { return colourUponDialog(context); }

  private:
    // BitLockerRows
    void clear() override { list_.deleteRows(); }
    void setRow(int row, const char* volume, const char* status, const char* key) override {
        if (row >= list_.rowCount()) {
            row = list_.appendRow(volume);
        } else {
            list_.setCell(row, 0, volume);
        }
        list_.setCell(row, 1, status);
        list_.setCell(row, 2, key);
        list_.scrollIntoView(row);
        // Nothing else is painted until PowerShell has told about every volume.
        UpdateWindow(list_.window());
    }

    // A label for each volume record there can be. The list has taken their place: they stay hidden.
    void createHiddenLabels() {
        for (int id = IDC_BITLOCKER_FIRST_LABEL; id <= IDC_BITLOCKER_LAST_LABEL; ++id) {
            CreateWindowExA(0, WC_STATICA, "No Text", WS_CHILD, 0, 0, 0, 0, window(),
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
        }
    }

    void buildList() {
        list_.create(window(), IDC_BITLOCKER_LIST, {}, WS_VISIBLE, LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES,
                     kListBackground);
        list_.addColumn("Volume", kListWidth * 10 / 100);
        list_.addColumn("Status", kListWidth * 30 / 100);
        list_.addColumn("Key", kListWidth * 60 / 100);
    }

    void placeButtons() {
        constexpr LONG kTop = kClientSize.cy - (kUnderList + kButtonHeight) / 2;
        constexpr LONG kExitLeft = kClientSize.cx - kMargin - kButtonWidth;
        constexpr LONG kBeginLeft = kExitLeft - kMargin - kButtonWidth;
        placeControl(IDC_BITLOCKER_BEGIN, RECT{kBeginLeft, kTop, kBeginLeft + kButtonWidth, kTop + kButtonHeight});
        placeControl(IDC_BITLOCKER_EXIT, RECT{kExitLeft, kTop, kExitLeft + kButtonWidth, kTop + kButtonHeight});
        placeControl(IDC_BITLOCKER_KEYS, RECT{kMargin, kClientSize.cy - kUnderList + kKeysMargin, kBeginLeft - kMargin,
                                              kClientSize.cy - kKeysMargin});
    }

    void onBegin() {
        if (bringVolumesUpToDate(scan_)) {
            BL_ScanActiveDrive(&drive_, scan_.volumes, *this);
        }
    }

    void onExit() { end(0); }

    DriveRecord& drive_;
    ScanState& scan_;
    ListView list_;
};

} // namespace

void showBitLockerScan(DriveRecord& drive, ScanState& scan, HWND owner) {
    BitLockerDialog(drive, scan).runModal(owner);
}

} // namespace torvane
