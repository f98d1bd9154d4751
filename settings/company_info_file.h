#pragma once

#include "records/company_info.h"

#include <string_view>

namespace torvane {

inline constexpr const char* kCompanyInfoFileName = "Config.db";

/// Fills the record with the defaults, then reads "Config.db" of the current folder over it; a file that cannot be
/// opened is made from the defaults. Returns 1, or 0 after a box and an "ERROR" log row. A file that is too short
/// leaves what could be read over the defaults.
int LoadCompanyInfo(CompanyInfo& info);

/// Takes the three texts, cut at 255 bytes each, into the record and writes it over the start of "Config.db", which
/// must exist. Tells the user how it went by a box and a log row. Returns 1, or 0: the record is unchanged when the
/// file could not be opened, and changed when it could not be written.
int SaveCompanyInfo(CompanyInfo& info, std::string_view name, std::string_view address, std::string_view phone);

} // namespace torvane
