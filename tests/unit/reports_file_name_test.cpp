#include "reports/report_file_name.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

TEST(ReportFileNameTest, HoldsTheSerialNumber) {
    EXPECT_EQ(reportFileName("WD-WCC6Y7ABCDEF"), "ReportWD-WCC6Y7ABCDEF.pdf");
    EXPECT_EQ(reportFileName("0025_3852.91B0+1A=2D"), "Report0025_3852.91B0+1A=2D.pdf");
    EXPECT_EQ(reportFileName("Not Available"), "ReportNot Available.pdf");
    EXPECT_EQ(reportFileName(""), "Report.pdf");
}

TEST(ReportFileNameTest, DropsWhatAFileNameCannotHold) {
    EXPECT_EQ(reportFileName("FILE: S/N"), "ReportFILE_ S_N.pdf");
    EXPECT_EQ(reportFileName(R"(..\..\a*b?c<d>e|f"g)"), "Report.._.._a_b_c_d_e_f_g.pdf");
    EXPECT_EQ(reportFileName("a\tb\x01"
                             "c\x7F"),
              "Reporta_b_c_.pdf");
    EXPECT_EQ(reportFileName("\xC3\xA9"), "Report__.pdf");
}

TEST(ReportFileNameTest, DropsWhatMeansSomethingToPowerShell) {
    EXPECT_EQ(reportFileName("$(calc)"), "Report__calc_.pdf");
    EXPECT_EQ(reportFileName("`n;calc&calc"), "Report_n_calc_calc.pdf");
    EXPECT_EQ(reportFileName("{a}[b]@'c',#d"), "Report_a__b___c___d.pdf");
}

TEST(ReportFileNameTest, PercentSignsAreNoFormat) {
    EXPECT_EQ(reportFileName("%s%n"), "Report_s_n.pdf");
}

TEST(ReportFileNameTest, StaysWithinWhatAFileNameMayBe) {
    EXPECT_EQ(reportFileName(std::string(127, 'A')), "Report" + std::string(127, 'A') + ".pdf");
    EXPECT_EQ(reportFileName(std::string(100'000, 'A')), "Report" + std::string(127, 'A') + ".pdf");
}

TEST(OpenReportCommandTest, NamesTheFileInQuotationMarks) {
    EXPECT_EQ(openReportCommand("ReportWD-WCC6Y7ABCDEF.pdf"),
              R"(powershell Start-Process "ReportWD-WCC6Y7ABCDEF.pdf")");
}

TEST(OpenReportCommandTest, ANameWithABlankStaysOneArgument) {
    EXPECT_EQ(openReportCommand("ReportNot Available.pdf"), R"(powershell Start-Process "'ReportNot Available.pdf'")");
    EXPECT_EQ(openReportCommand(reportFileName("X -ArgumentList calc")),
              R"(powershell Start-Process "'ReportX -ArgumentList calc.pdf'")");
    EXPECT_EQ(openReportCommand(reportFileName(R"(X' "calc)")), R"(powershell Start-Process "'ReportX_ _calc.pdf'")");
}

TEST(OlderReportFileName, HasItsDateAndThenANumber) {
    const LocalMoment written{.year = 2026, .month = 11, .day = 2};
    EXPECT_EQ(olderReportFileName("ReportX.1.pdf", written, 1), "ReportX.1 2026-11-02.pdf");
    EXPECT_EQ(olderReportFileName("ReportX.1.pdf", written, 2), "ReportX.1 2026-11-02 (2).pdf");
    EXPECT_EQ(olderReportFileName("ReportX.1.pdf", written, 17), "ReportX.1 2026-11-02 (17).pdf");
}

} // namespace
} // namespace torvane
