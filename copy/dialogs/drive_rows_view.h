#pragma once

#include "ui/list_view.h"

#include <vector>

namespace torvane {

struct DriveRecord;

/// A list of drives in a copy dialog: model, serial number and size. A row's data is its record.
class DriveRowsView {
  public:
    /// With `ticks` each row has a check box. The list takes its place in the tab order behind the control `label`.
    bool create(HWND dialog, int id, int label, const RECT& place, bool ticks);

    void addRow(DriveRecord& drive);
    [[nodiscard]] std::vector<DriveRecord*> tickedDrives() const;

    [[nodiscard]] HWND window() const { return list_.window(); }

  private:
    ListView list_;
};

} // namespace torvane
