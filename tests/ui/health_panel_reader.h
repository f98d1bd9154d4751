#pragma once

#include "tests/ui/torvane_window.h"

#include <array>
#include <optional>
#include <ostream>
#include <string>

namespace torvane::driver {

inline constexpr std::size_t kDialCount = 6;

/// Which pictures the dials have, and which captions those with a needle.
struct PanelLayout {
    const char* firstDial;
    const char* otherDials;
    std::array<const char*, kDialCount> captions;
};

extern const PanelLayout kStandardPanel;
extern const PanelLayout kSsdPanel;
extern const PanelLayout kNvmePanel;
extern const PanelLayout kUnknownPanel;

/// 0.0 left, 1.0 and more right; none: neither needle nor caption.
using NeedleValue = std::optional<double>;
inline constexpr NeedleValue kBlank{};

/// What the panel of one drive has to show.
struct ExpectedPanel {
    std::string model; ///< the row that is clicked, by its first cell
    const PanelLayout& layout;
    std::array<NeedleValue, kDialCount> needles;
    std::string lamp;                                 ///< its colour, or "none"
    std::string message;                              ///< how the health message begins; empty: there is none
    std::array<std::string, kDialCount> valueTexts{}; ///< under the dials
};

std::ostream& operator<<(std::ostream& stream, const ExpectedPanel& expected);

/// What stands under the dials of a drive with these counters, hours first; -1: not reported.
[[nodiscard]] std::array<std::string, kDialCount> counterTexts(const std::array<int, kDialCount>& counters);

/// The same of a solid-state device whose report names the reported errors as a disk's does: their dial has no caption.
[[nodiscard]] std::array<std::string, kDialCount> ssdCounterTexts(const std::array<int, kDialCount>& counters);

/// Clicks the drive's row and expects its panel, in pixels and texts.
void clickAndExpectPanel(const TorvaneWindow& torvane, const ExpectedPanel& expected);

/// Expects what the window shows now to be that panel.
void expectPanel(const TorvaneWindow& torvane, const ExpectedPanel& expected);

/// The smallest rectangle that holds everything dark in the health message's place, in pixels of it.
[[nodiscard]] RECT healthMessageInk(const TorvaneWindow& torvane);

} // namespace torvane::driver
