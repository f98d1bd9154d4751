#pragma once

#include "base/fixed_text.h"

#include <cstddef>
#include <string_view>
#include <type_traits>

namespace torvane {

/// The workshop whose name stands on every report; byte for byte the content of "Config.db".
struct CompanyInfo {
    FixedText<256> companyName;
    FixedText<256> companyAddress;
    FixedText<256> companyPhone;

    /// Replaces the texts. What does not fit is cut, never within a UTF-8 character.
    void assign(std::string_view name, std::string_view address, std::string_view phone);
};
static_assert(sizeof(CompanyInfo) == 768);
static_assert(offsetof(CompanyInfo, companyAddress) == 256);
static_assert(offsetof(CompanyInfo, companyPhone) == 512);
static_assert(std::is_trivially_copyable_v<CompanyInfo>);

/// What stands there until the workshop enters its own.
[[nodiscard]] CompanyInfo defaultCompanyInfo();

/// True while the address is the one that ships.
[[nodiscard]] bool namesNoCompany(const CompanyInfo& info);

} // namespace torvane
