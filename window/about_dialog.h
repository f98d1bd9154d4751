#pragma once

#include "ui/dialog.h"

namespace torvane {

/// Name, version and date of the program.
class AboutDialog : public Dialog {
  public:
    AboutDialog();

  protected:
    bool onCommand(int id) override;

  private:
    void onClose() { end(IDOK); }
};

} // namespace torvane
