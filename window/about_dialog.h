#pragma once

#include "ui/dialog.h"

namespace torvane {

/// Name, version and date of the program.
class AboutDialog : public Dialog {
  public:
    AboutDialog();

  protected:
    bool onInitialise() override;
    bool onCommand(int id) override;
    std::optional<LRESULT> onMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    void showIcon(Scale scale);
    void onClose() { end(IDOK); }

    UniqueIcon icon_;
};

} // namespace torvane
