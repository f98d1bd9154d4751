#pragma once

#include "details/detail_page.h"

#include <string>
#include <string_view>

namespace torvane {

/// Fills a table of names, values and remarks.
class PageRows {
  public:
    PageRows(DetailPage& page, std::string_view title);

    /// Before the first row that follows it, and not at all where none does.
    void heading(std::string_view text) { heading_ = text; }
    void add(std::string_view name, std::string_view value, std::string_view remark = {});
    /// Only where there is a value.
    void addIfTold(std::string_view name, std::string_view value, std::string_view remark = {});

  private:
    DetailPage& page_;
    std::string heading_; ///< of the rows to come; empty once it stands there
};

/// A page with a sentence in the place of a table that would be empty.
[[nodiscard]] DetailPage sentencePage(std::string_view title, std::string_view sentence);

} // namespace torvane
