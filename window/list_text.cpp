#include "window/list_text.h"

#include "base/format.h"
#include "base/one_line.h"
#include "state/log_file_line.h"
#include "state/main_view.h"

namespace torvane {

std::string rowsAsText(std::span<const RowTexts> rows) {
    std::string text;
    const char* rowEnd = "";
    for (const RowTexts& row : rows) {
        text += rowEnd;
        rowEnd = "\r\n";
        const char* cellEnd = "";
        for (const std::string& cell : row) {
            text.append(cellEnd).append(oneLine(cell));
            cellEnd = "\t";
        }
    }
    return text;
}

std::string logAsText(std::span<const RowTexts> rows) {
    std::string text;
    for (const RowTexts& row : rows) {
        text += logFileLine({.category = row.at(0), .date = row.at(1), .time = row.at(2), .message = row.at(3)});
    }
    return text;
}

std::string savedLogName(const LocalMoment& moment) {
    return formatText("Torvane log %04d-%02d-%02d.txt", moment.year, moment.month, moment.day);
}

} // namespace torvane
