#include "window/column_widths_file.h"

#include "base/replace_file.h"
#include "base/whole_file.h"

#include <cstdint>
#include <span>
#include <string>

namespace torvane {

ColumnWidths loadColumnWidths() {
    constexpr std::uint64_t kMostBytes = 256;
    const std::optional<std::string> text = readFileUpTo(kColumnWidthsFile, kMostBytes);
    return (text ? columnWidthsOf(*text) : std::nullopt).value_or(ColumnWidths{});
}

void keepColumnWidths(const ColumnWidths& widths) {
    const std::string text = columnWidthsText(widths);
    static_cast<void>(replaceFile(kColumnWidthsFile, std::as_bytes(std::span(text))));
}

} // namespace torvane
