#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace torvane {

struct DriveRecord;

/// Which of `drives` a message of the event log tells a SMART finding of ("[MODEL] - [SERIAL] Found Value ..."); of
/// several that are alike the first. None for any other message, and when the drive is not among them any more.
[[nodiscard]] std::optional<std::size_t> driveOfFinding(std::string_view message,
                                                        std::span<const DriveRecord* const> drives);

} // namespace torvane
