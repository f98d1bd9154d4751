#pragma once

#include "records/volume_record.h"
#include "ui/list_view.h"
#include "ui/row_tips.h"

#include <vector>

namespace torvane {

struct DriveRecord;

/// What a list of drives shows, where and how wide: pixels of 96 to the inch.
struct DriveRowsLook {
    int id;
    int label; ///< the control behind which the list takes its place in the tab order
    RECT place;
    bool ticks; ///< each row has a check box
    int modelWidth;
    int serialNumberWidth;
    int sizeWidth;
    bool numberAndLetters; ///< in columns of their own at the right
};

/// A list of drives in a copy dialog: model, serial number and size, and a tool tip that tells drives apart which are
/// alike. A row's data is its record.
class DriveRowsView {
  public:
    /// `volumes` tells the drives' letters, whenever they are asked for.
    bool create(HWND dialog, const DriveRowsLook& look, const VolumeTable& volumes);

    void addRow(DriveRecord& drive);
    [[nodiscard]] std::vector<DriveRecord*> tickedDrives() const;

    /// The one ticked drive, else the one whose row is selected; null when there is neither.
    [[nodiscard]] DriveRecord* drivePointedAt() const;

    /// Answers the list's NM_CUSTOMDRAW.
    [[nodiscard]] LRESULT draw(NMLVCUSTOMDRAW& draw) const { return drawSelection(list_, draw); }

    [[nodiscard]] HWND window() const { return list_.window(); }

  private:
    [[nodiscard]] DriveRecord* record(int row) const { return reinterpret_cast<DriveRecord*>(list_.rowData(row)); }

    ListView list_;
    RowTips tips_;
    bool numberAndLetters_ = false;
    const VolumeTable* volumes_ = nullptr;
};

} // namespace torvane
