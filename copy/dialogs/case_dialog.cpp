#include "copy/dialogs/case_dialog.h"

#include "records/case_information.h"
#include "resources/resource_ids.h"
#include "ui/control_text.h"
#include "ui/dialog.h"

#include <string>

namespace torvane {

namespace {

/// A text of the dialog, and where it is kept.
struct CaseText {
    int id;
    std::string CaseInformation::*text;
    std::size_t mostCharacters;
};

constexpr CaseText kTexts[] = {
    {IDC_CASE_NUMBER, &CaseInformation::caseNumber, kMostCaseCharacters},
    {IDC_CASE_EXAMINER, &CaseInformation::examiner, kMostCaseCharacters},
    {IDC_CASE_NOTE, &CaseInformation::note, kMostNoteCharacters},
};

class CaseDialog : public Dialog {
  public:
    explicit CaseDialog(CaseInformation& information) : Dialog(IDD_CASE_INFORMATION), information_(information) {}

  protected:
    bool onInitialise() override {
        for (const CaseText& row : kTexts) {
            SendMessageA(control(row.id), EM_LIMITTEXT, row.mostCharacters, 0);
            setControlText(row.id, (information_.*row.text).c_str());
        }
        return true;
    }

    bool onCommand(int id) override {
        static constexpr CommandRoute<CaseDialog> kRoutes[] = {
            {IDOK, &CaseDialog::onAccept},
            {IDCANCEL, &CaseDialog::onCancel},
        };
        return route(*this, kRoutes, id);
    }

  private:
    void onAccept() {
        for (const CaseText& row : kTexts) {
            information_.*row.text = controlText(control(row.id));
        }
        end(IDOK);
    }

    void onCancel() { end(IDCANCEL); }

    CaseInformation& information_;
};

} // namespace

void editCaseInformation(CaseInformation& information, HWND owner) {
    CaseDialog(information).runModal(owner);
}

} // namespace torvane
