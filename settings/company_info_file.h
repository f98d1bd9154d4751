#pragma once

#include "records/company_info.h"

#include <string_view>

namespace torvane {

inline constexpr const char* kCompanyInfoFileName = "Config.db";

/// Fills the record with the defaults, then reads "Config.db" of the current folder over it; a file that cannot be
/// opened is made from the defaults. Returns 1, or 0 after a box and an "ERROR" log row. A file that is too short
/// leaves what could be read over the defaults.
int LoadCompanyInfo(CompanyInfo& info);

/// Writes the record with the three texts, cut at 255 bytes each, over the start of "Config.db", which must exist, and
/// makes it the one in use. The file is replaced as a whole (base/replace_file.h). Tells the user how it went by a box
/// and a log row. Returns 1, or 0 with file and record unchanged.
int SaveCompanyInfo(CompanyInfo& info, std::string_view name, std::string_view address, std::string_view phone);

} // namespace torvane
