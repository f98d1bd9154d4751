#include "admin/destruction_warning_dialog.h"

#include "admin/destruction_warning.h"
#include "admin/volume_refresh.h"
#include "base/colours.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "ui/colour_scheme.h"
#include "ui/dialog.h"
#include "ui/list_view.h"

#include <optional>
#include <string>

namespace torvane {

namespace {

constexpr COLORREF kWarningColour = RGB(147, 19, 15);

// Pixels of the client area at 96 dots to the inch.
constexpr SIZE kClientSize{470, 342};
constexpr RECT kWarningPlace{10, 8, 460, 28};
constexpr RECT kListPlace{10, 30, 460, 204};
constexpr RECT kDrivePlace{10, 212, 460, 244};
constexpr RECT kDetailsPlace{10, 246, 460, 300};
constexpr RECT kYesPlace{272, 306, 362, 332};
constexpr RECT kNoPlace{370, 306, 460, 332};

class DestructionWarningDialog : public Dialog {
  public:
    DestructionWarningDialog(const Destruction& destruction, const WarningFacts& facts)
        : Dialog(IDD_DESTRUCTION_WARNING), destruction_(destruction), facts_(facts) {}

  protected:
    bool onInitialise() override {
        SetWindowTextA(window(), destruction_.caption);
        buildList();
        layOut();
        centreOnOwner();
        // The harmless answer has the keyboard.
        SetFocus(control(IDNO));
        return false;
    }

    void layOut() override {
        createFonts();
        sizeClientArea(kClientSize);
        placeControl(IDC_WARNING_TEXT, kWarningPlace);
        placeControl(IDC_WARNING_LIST, kListPlace);
        placeControl(IDC_WARNING_DRIVE, kDrivePlace);
        placeControl(IDC_WARNING_DETAILS, kDetailsPlace);
        placeControl(IDYES, kYesPlace);
        placeControl(IDNO, kNoPlace);
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
        const HBRUSH ground = colourUponDialog(context);
        if (WindowFromDC(context) == control(IDC_WARNING_TEXT)) {
            SetTextColor(context, stressedText(kWarningColour));
        }
        return ground;
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
        for (const WarningRow& row : facts_.rows) {
            const int position = list_.appendRow(row.type.c_str(), 0);
            list_.setCell(position, 1, row.name.c_str());
            list_.setCell(position, 2, row.relation.c_str());
        }
        // Names longer than their column must be seen whole before anybody says "Yes".
        setControlText(IDC_WARNING_DRIVE, facts_.rows.front().name.c_str());
        setControlText(IDC_WARNING_DETAILS, warningDetails(destruction_.drive, facts_.note).c_str());
    }

    void onYes() { end(1); }
    void onNo() { end(0); }

    const Destruction& destruction_;
    const WarningFacts& facts_;
    UniqueFont boldFont_;
    ListView list_;
};

} // namespace

Confirmation confirmDestruction(AppState& state, const Destruction& destruction, HWND owner) {
    if (!bringVolumesUpToDate(state.scan)) {
        return Confirmation::kNo;
    }
    if (const Confirmation checked = checkDestruction(state, destruction); checked != Confirmation::kYes) {
        return checked;
    }
    const std::optional<WarningFacts> facts = askForWarning(state, destruction);
    if (!facts || DestructionWarningDialog(destruction, *facts).runModal(owner) != 1) {
        return Confirmation::kNo;
    }
    return checkIdentity(state, destruction);
}

} // namespace torvane
