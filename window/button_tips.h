#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace torvane {

struct DriveRecord;

/// How much of a drive a command reads, and so how long it takes.
enum class ReadingShare : std::uint8_t {
    kNone,
    kSamples,  ///< a hundred small places
    kBothEnds, ///< the first 5 GiB and the last
    kTenth,    ///< two runs of a twentieth in each of a thousand parts
    kWhole,
};

/// What a button of the main window does, for its tool tip.
struct ButtonTip {
    int id;
    ReadingShare reading;
    const char* text; ///< what it does, and what it changes
};

/// Of every button of the main window.
[[nodiscard]] std::span<const ButtonTip> buttonTips();

/// The button's tip: with how long it takes on that drive, where there is one and the time depends on it.
[[nodiscard]] std::string tipText(const ButtonTip& tip, const DriveRecord* drive);

/// "about 40 s", "about 12 min", "about 1 h 50 min".
[[nodiscard]] std::string aboutDuration(std::int64_t seconds);

} // namespace torvane
