#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// The widths of the columns of the main window's two lists, in pixels of 96 to the inch.
struct ColumnWidths {
    std::array<int, 6> drives{250, 150, 90, 85, 120, 460};
    std::array<int, 4> log{100, 100, 100, 850};

    bool operator==(const ColumnWidths&) const = default;
};

/// Where they are kept: two lines in the folder of the program's own files, one for each list.
inline constexpr const char* kColumnWidthsFile = "Columns.txt";

[[nodiscard]] std::string columnWidthsText(const ColumnWidths& widths);

/// None for a text that is not of that form, or with a width that nobody could have drawn (under 8 or over 4000).
[[nodiscard]] std::optional<ColumnWidths> columnWidthsOf(std::string_view text);

} // namespace torvane
