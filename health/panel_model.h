#pragma once

#include "health/grading.h"
#include "health/needle.h"
#include "records/message_table.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

struct DriveRecord;

inline constexpr std::size_t kDialCount = 6;
inline constexpr PanelPoint kLampPosition{1064, 140};

/// Dials stand so far apart; pixels.
inline constexpr int kDialStep = 180;

/// Where the long text of an NVMe drive begins and how wide it is, and how far above the short ones it stands; pixels.
inline constexpr int kLongTextLeft = 10;
inline constexpr int kLongTextWidth = 515;
inline constexpr int kLongTextAbove = 120;

/// Loaded with the standard panel's dials and never drawn.
inline constexpr std::string_view kUndrawnLabelsImage = "gauge-labels2.png";

struct PanelBox {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

/// One dial of the row. Positions are pixels in the main window's client area.
struct Dial {
    std::string_view image;
    PanelPoint position; ///< the picture's top left corner
    PanelPoint pivot;    ///< where the needle starts
    PanelBox captionBox;

    std::string_view caption;            ///< empty: none is drawn
    std::optional<PanelPoint> needleEnd; ///< none: no needle is drawn
};

/// The texts that stand beside the dials, empty where the drive's layout has none.
struct PanelTexts {
    std::string healthMessage;
    std::array<std::string, kDialCount> counters;           ///< under the dials
    std::array<std::string, kNvmeWarningCount> nvmeResults; ///< beside the dials of bits 0 to 4
    std::string endurance;                                  ///< above the dials, with the next
    std::string own; ///< what an NVMe drive says of its wear, or any drive of its failure
};

/// Everything that the health panel shows: a painter needs no other knowledge of the drive.
struct PanelModel {
    std::array<Dial, kDialCount> dials{};
    std::vector<std::string_view> undrawnImages; ///< loaded all the same
    std::string_view lampImage;                  ///< empty: no lamp
    PanelTexts texts;
};

/// The panel of the active drive; of no drive when it is null. Image names point to constants.
[[nodiscard]] PanelModel buildPanelModel(const DriveRecord* activeDrive, std::span<const MessageRecord> messages,
                                         bool toolMissed = false);

} // namespace torvane
