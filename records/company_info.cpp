#include "records/company_info.h"

#include "base/utf8.h"

namespace torvane {

void CompanyInfo::assign(std::string_view name, std::string_view address, std::string_view phone) {
    constexpr std::size_t kLongest = 255;
    companyName.assign(cutAtCharacter(name, kLongest));
    companyAddress.assign(cutAtCharacter(address, kLongest));
    companyPhone.assign(cutAtCharacter(phone, kLongest));
}

CompanyInfo defaultCompanyInfo() {
    CompanyInfo info;
    info.assign("KVL Data", "[Your address: set in Company Information]", "[Your phone: set in Company Information]");
    return info;
}

bool namesNoCompany(const CompanyInfo& info) {
    return info.companyAddress.view() == defaultCompanyInfo().companyAddress.view();
}

} // namespace torvane
