#include "admin/destruction_warning_dialog.h"

#include "admin/destruction_warning.h"
#include "admin/volume_identity.h"
#include "base/colours.h"
#include "discovery/volume_map.h"
#include "discovery/volumes_on_drive.h"
#include "discovery/windows_volume_system.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "ui/dialog.h"
#include "ui/list_view.h"

#include <string>
#include <vector>

namespace torvane {

namespace {

constexpr COLORREF kWarningColour = RGB(147, 19, 15);

// Pixels of the client area.
constexpr SIZE kClientSize{470, 342};
constexpr RECT kWarningPlace{10, 8, 460, 28};
constexpr RECT kListPlace{10, 30, 460, 204};
constexpr RECT kDrivePlace{10, 212, 460, 244};
constexpr RECT kDetailsPlace{10, 246, 460, 300};
constexpr RECT kYesPlace{272, 306, 362, 332};
constexpr RECT kNoPlace{370, 306, 460, 332};

class DestructionWarningDialog : public Dialog {
  public:
    DestructionWarningDialog(const AppState& state, const Destruction& destruction)
        : Dialog(IDD_DESTRUCTION_WARNING), state_(state), destruction_(destruction) {}

  protected:
    bool onInitialise() override {
        SetWindowTextA(window(), destruction_.caption);
        createFonts();
        sizeClientArea(kClientSize);
        centreOnOwner();
        placeControl(IDC_WARNING_TEXT, kWarningPlace);
        placeControl(IDC_WARNING_DRIVE, kDrivePlace);
        placeControl(IDC_WARNING_DETAILS, kDetailsPlace);
        placeControl(IDYES, kYesPlace);
        placeControl(IDNO, kNoPlace);
        buildList();
        // The harmless answer has the keyboard.
        SetFocus(control(IDNO));
        return false;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<DestructionWarningDialog> kRoutes[] = {
            {IDYES, &DestructionWarningDialog::onYes},
            {IDNO, &DestructionWarningDialog::onNo},
            {IDCANCEL, &DestructionWarningDialog::onNo},
        };
        return route(*this, kRoutes, id);
    }

    HBRUSH onControlColour(HDC context) override {
        SetBkColor(context, kDialogBackground);
        if (WindowFromDC(context) == control(IDC_WARNING_TEXT)) {
            SetTextColor(context, kWarningColour);
        }
        return background_.get();
    }

  private:
    void createFonts() {
        LOGFONTA font{};
        GetObjectA(reinterpret_cast<HFONT>(SendMessageA(window(), WM_GETFONT, 0, 0)), sizeof font, &font);
        font.lfWeight = FW_BOLD;
        boldFont_.reset(CreateFontIndirectA(&font));
        SendMessageA(control(IDC_WARNING_TEXT), WM_SETFONT, reinterpret_cast<WPARAM>(boldFont_.get()), FALSE);
    }

    void buildList() {
        list_.create(window(), IDC_WARNING_LIST, kListPlace, WS_VISIBLE, LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES,
                     kListBackground);
        list_.addColumn("Type", 100);
        list_.addColumn("Model/Volume", 230);
        list_.addColumn("Relation", 120);
        WindowsVolumeSystem system;
        const std::vector<WarningRow> rows = warningRows(
            destruction_.drive, volumeRootsOn(destruction_.drive, state_.scan.volumes, system), readVolumeIdentity);
        for (const WarningRow& row : rows) {
            const int position = list_.appendRow(row.type.c_str(), 0);
            list_.setCell(position, 1, row.name.c_str());
            list_.setCell(position, 2, row.relation.c_str());
        }
        // Names longer than their column must be seen whole before anybody says "Yes".
        setControlText(IDC_WARNING_DRIVE, rows.front().name.c_str());
        std::string details = warningDetails(destruction_.drive);
        if (const std::string note = imagePlaceNote(state_, destruction_); !note.empty()) {
            details.append("\n").append(note);
        }
        setControlText(IDC_WARNING_DETAILS, details.c_str());
    }

    void onYes() { end(1); }
    void onNo() { end(0); }

    const AppState& state_;
    const Destruction& destruction_;
    UniqueBrush background_{CreateSolidBrush(kDialogBackground)};
    UniqueFont boldFont_;
    ListView list_;
};

} // namespace

Confirmation confirmDestruction(AppState& state, const Destruction& destruction, HWND owner) {
    // Letters may have been given and moved since the drives were loaded.
    refreshVolumes(state.scan);
    if (const Confirmation checked = checkDestruction(state, destruction); checked != Confirmation::kYes) {
        return checked;
    }
    if (DestructionWarningDialog(state, destruction).runModal(owner) != 1) {
        return Confirmation::kNo;
    }
    return checkIdentity(state, destruction);
}

} // namespace torvane
