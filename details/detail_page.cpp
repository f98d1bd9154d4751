#include "details/detail_page.h"

#include <algorithm>
#include <cstddef>

namespace torvane {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// Characters that the cells of each column take at most; a longer one pushes those behind it aside.
std::vector<std::size_t> widthsOf(const DetailPage& page) {
    constexpr std::size_t kWidest = 48;
    std::vector<std::size_t> widths(page.columns.size());
    for (std::size_t column = 0; column < widths.size(); ++column) {
        widths[column] = page.columns[column].heading.size();
        for (const DetailRow& row : page.rows) {
            if (!row.heading && column < row.cells.size()) {
                widths[column] = std::max(widths[column], std::min(row.cells[column].size(), kWidest));
            }
        }
    }
    return widths;
}

std::string paddedLine(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
    std::string line;
    std::size_t begin = 0;
    for (std::size_t column = 0; column < cells.size() && column < widths.size(); ++column) {
        if (column > 0) {
            line.append(std::max(begin, line.size() + 2) - line.size(), ' ');
        }
        line += cells[column];
        begin += widths[column] + 2;
    }
    return line.erase(line.find_last_not_of(' ') + 1).append(kLineEnd);
}

std::string tableAsText(const DetailPage& page) {
    const std::vector<std::size_t> widths = widthsOf(page);
    std::vector<std::string> headings;
    headings.reserve(page.columns.size());
    for (const DetailColumn& column : page.columns) {
        headings.push_back(column.heading);
    }
    std::string text = paddedLine(headings, widths);
    bool behindHeading = false;
    for (const DetailRow& row : page.rows) {
        if (row.heading && !behindHeading) {
            text += kLineEnd;
        }
        text += row.heading ? row.cells.front() + std::string(kLineEnd) : paddedLine(row.cells, widths);
        behindHeading = row.heading;
    }
    return text;
}

} // namespace

std::string pageAsText(const DetailPage& page) {
    std::string text = "--- " + page.title + " ---\r\n\r\n";
    return text.append(page.columns.empty() ? page.text : tableAsText(page));
}

std::string pagesAsText(std::string_view drive, const std::vector<DetailPage>& pages) {
    std::string text = std::string(drive).append(kLineEnd);
    for (const DetailPage& page : pages) {
        text.append(kLineEnd).append(pageAsText(page)).append(kLineEnd);
    }
    return text;
}

std::string rowAsText(const DetailRow& row) {
    std::string text;
    for (const std::string& cell : row.cells) {
        text.append(&cell == row.cells.data() ? "" : "\t").append(cell);
    }
    return text;
}

} // namespace torvane
