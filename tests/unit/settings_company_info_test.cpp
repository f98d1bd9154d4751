#include "records/company_info.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

TEST(CompanyInfoTest, DefaultsAskForTheirReplacement) {
    const CompanyInfo info = defaultCompanyInfo();
    EXPECT_EQ(info.companyName.view(), "KVL Data");
    for (const std::string_view text : {info.companyAddress.view(), info.companyPhone.view()}) {
        EXPECT_NE(text.find("set in Company Information"), std::string_view::npos) << text;
    }
}

TEST(CompanyInfoTest, NamesACompanyOnceItsAddressIsEntered) {
    CompanyInfo info = defaultCompanyInfo();
    EXPECT_TRUE(namesNoCompany(info));
    info.assign("Other name", std::string(info.companyAddress.view()), "1");
    EXPECT_TRUE(namesNoCompany(info));
    info.assign("KVL Data", "1 Main Street", "");
    EXPECT_FALSE(namesNoCompany(info));
}

TEST(CompanyInfoTest, TextsAreCutAt255Bytes) {
    CompanyInfo info;
    info.assign(std::string(255, 'a'), std::string(256, 'b'), std::string(100'000, 'c'));
    EXPECT_EQ(info.companyName.view(), std::string(255, 'a'));
    EXPECT_EQ(info.companyAddress.view(), std::string(255, 'b'));
    EXPECT_EQ(info.companyPhone.view(), std::string(255, 'c'));
}

TEST(CompanyInfoTest, ACharacterIsNeverCutInTwo) {
    CompanyInfo info;
    info.assign(std::string(254, 'a') + "\xC3\xA9", std::string(253, 'b') + "\xC3\xA9",
                std::string(252, 'c') + "\xF0\x9F\x92\xBE");
    EXPECT_EQ(info.companyName.view(), std::string(254, 'a'));
    EXPECT_EQ(info.companyAddress.view(), std::string(253, 'b') + "\xC3\xA9");
    EXPECT_EQ(info.companyPhone.view(), std::string(252, 'c'));
}

TEST(CompanyInfoTest, ATextThatIsNotUtf8IsCutWhereTheFieldEnds) {
    CompanyInfo info;
    info.assign(std::string(300, '\x93'), "", "");
    EXPECT_EQ(info.companyName.view(), std::string(255, '\x93'));
}

TEST(CompanyInfoTest, AShorterTextLeavesNothingOfALongerOne) {
    CompanyInfo info;
    info.assign(std::string(255, 'a'), "address", "phone");
    info.assign("b", "", "");
    EXPECT_EQ(info.companyName.view(), "b");
    EXPECT_EQ(std::string(info.companyName.c_str() + 1, 254), std::string(254, '\0'));
    EXPECT_TRUE(info.companyAddress.empty());
}

} // namespace
} // namespace torvane
