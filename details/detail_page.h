#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torvane {

struct DetailColumn {
    std::string heading;
    int width = 0; ///< pixels of 96 to the inch
};

struct DetailRow {
    std::vector<std::string> cells; ///< as many as the page has columns, or fewer
    bool heading = false;           ///< the first cell names the rows below
};

/// A page of the details of a drive: a table, or a text as it stands.
struct DetailPage {
    std::string title;
    std::vector<DetailColumn> columns;
    std::vector<DetailRow> rows;
    std::string text; ///< of a page without columns; lines end in CR LF
};

/// The page as text: its title, and its rows in columns that blanks part, or its text. Lines end in CR LF.
[[nodiscard]] std::string pageAsText(const DetailPage& page);

/// All pages, and above them the drive that they are of.
[[nodiscard]] std::string pagesAsText(std::string_view drive, const std::vector<DetailPage>& pages);

/// A row's cells with a tab between them.
[[nodiscard]] std::string rowAsText(const DetailRow& row);

} // namespace torvane
