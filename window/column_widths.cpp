#include "window/column_widths.h"

#include <charconv>
#include <cstddef>
#include <span>
#include <string>
#include <system_error>

namespace torvane {

namespace {

constexpr std::string_view kDrives = "Drives";
constexpr std::string_view kLog = "Log";

constexpr int kLeastWidth = 8;
constexpr int kMostWidth = 4000;

std::string line(std::string_view list, std::span<const int> widths) {
    std::string text(list);
    for (const int width : widths) {
        text.append(" ").append(std::to_string(width));
    }
    return text.append("\r\n");
}

/// Takes the line off the text's front. False when it is not there as `line` makes it.
bool takeLine(std::string_view& text, std::string_view list, std::span<int> widths) {
    if (!text.starts_with(list)) {
        return false;
    }
    text.remove_prefix(list.size());
    for (int& width : widths) {
        if (!text.starts_with(' ')) {
            return false;
        }
        text.remove_prefix(1);
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), width);
        if (error != std::errc() || width < kLeastWidth || width > kMostWidth) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    }
    if (!text.starts_with("\r\n")) {
        return false;
    }
    text.remove_prefix(2);
    return true;
}

} // namespace

std::string columnWidthsText(const ColumnWidths& widths) {
    return line(kDrives, widths.drives) + line(kLog, widths.log);
}

std::optional<ColumnWidths> columnWidthsOf(std::string_view text) {
    ColumnWidths widths;
    const bool whole = takeLine(text, kDrives, widths.drives) && takeLine(text, kLog, widths.log) && text.empty();
    return whole ? std::optional(widths) : std::nullopt;
}

} // namespace torvane
