#pragma once

#include "ui/dialog.h"

namespace torvane {

/// Name, version and date of the program, of the tool that it asks drives with, and the licences of both.
class AboutDialog : public Dialog {
  public:
    AboutDialog();

  protected:
    bool onInitialise() override;
    bool onCommand(int id) override;
    std::optional<LRESULT> onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    void showIcon(Scale scale);
    void onLicences();
    void onClose() { end(IDOK); }

    UniqueIcon icon_;
};

} // namespace torvane
