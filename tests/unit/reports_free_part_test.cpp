#include "reports/free_part.h"

#include "reports/logo_place.h"
#include "tests/unit/reports_test_drives.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ReportFreePart : public ::testing::Test {
  protected:
    ReportFreePart() { page_.icons = {{ReportIcon::kGreen, 60, 246}}; }

    [[nodiscard]] ReportFacts facts() const { return {drive_, company_, {2026, 3, 7}, interface_, verdict_, wear_}; }
    /// The lines' texts with their places, "x y text", of a free part that begins at `top`.
    [[nodiscard]] std::vector<std::string> linesFrom(int top) {
        page_.freeLines.clear();
        page_.freeIcons.clear();
        addFreePart(page_, facts(), top);
        std::vector<std::string> lines;
        for (const FreeReportLine& line : page_.freeLines) {
            lines.push_back(std::to_string(line.left) + " " + std::to_string(line.yFromTop) + " " + line.text);
        }
        return lines;
    }

    ReportPage page_;
    DriveRecord drive_;
    CompanyInfo company_ = testing::reportedCompany();
    std::string interface_ = "SATA USB";
    std::string verdict_ = "No sign of trouble";
    std::string wear_;
};

TEST_F(ReportFreePart, TellsTheDriveTheVerdictAndTheKey) {
    drive_.sizeBytes = 500'107'862'016;
    drive_.sizeGigabytes = 465.76;
    drive_.firmware.assign("NW05C112");
    EXPECT_THAT(linesFrom(666),
                ElementsAre("10 666 About This Drive",
                            "10 680 Drive:", "80 680 SATA USB, 465.76 GB (500,107,862,016 bytes), firmware NW05C112",
                            "10 694 Verdict:", "80 694 No sign of trouble", "10 708 Icons:", "95 708 healthy",
                            "185 708 ageing", "275 708 wearing out", "365 708 failing"));
    ASSERT_EQ(page_.freeIcons.size(), 4U);
    EXPECT_EQ(page_.freeIcons[1], (FreeReportIcon{{ReportIcon::kBlue, 595 - 170, 719}, 10}));
}

TEST_F(ReportFreePart, LeavesOutWhatIsNotKnown) {
    interface_.clear();
    verdict_.clear();
    drive_.firmware.assign("1.0");
    page_.icons.clear();
    EXPECT_THAT(linesFrom(282), ElementsAre("10 282 About This Drive", "10 296 Drive:", "80 296 firmware 1.0"));
    drive_.firmware.clear();
    EXPECT_THAT(linesFrom(282), IsEmpty());
}

TEST_F(ReportFreePart, HasAnNvmeDrivesOwnNumbers) {
    wear_ = "Life used 7 %";
    page_.icons.clear();
    EXPECT_THAT(linesFrom(666),
                ElementsAre("10 666 About This Drive", "10 680 Drive:", "80 680 SATA USB",
                            "10 694 Verdict:", "80 694 No sign of trouble", "10 708 Wear:", "80 708 Life used 7 %"));
}

TEST_F(ReportFreePart, BreaksALongVerdictAtABlankOrWhereThereIsNone) {
    page_.icons.clear();
    verdict_ = std::string(90, 'a') + " " + std::string(10, 'b');
    EXPECT_THAT(linesFrom(0), ElementsAre("10 0 About This Drive", "10 14 Drive:", "80 14 SATA USB", "10 28 Verdict:",
                                          "80 28 " + std::string(90, 'a'), "80 42 " + std::string(10, 'b')));
    verdict_ = std::string(100, 'c');
    EXPECT_THAT(linesFrom(0), ElementsAre("10 0 About This Drive", "10 14 Drive:", "80 14 SATA USB", "10 28 Verdict:",
                                          "80 28 " + std::string(95, 'c'), "80 42 " + std::string(5, 'c')));
}

TEST_F(ReportFreePart, EndsWithThePage) {
    EXPECT_THAT(linesFrom(810), ElementsAre("10 810 About This Drive", "10 824 Drive:", "80 824 SATA USB"));
    EXPECT_THAT(linesFrom(866), IsEmpty());
    EXPECT_THAT(page_.freeIcons, IsEmpty());
}

TEST(LogoPlace, KeepsTheShapeInTheUpperRightCorner) {
    const LogoPlace wide = placeLogo(600, 100);
    EXPECT_FLOAT_EQ(wide.width, 150);
    EXPECT_FLOAT_EQ(wide.height, 25);
    EXPECT_FLOAT_EQ(wide.left, 425);
    EXPECT_FLOAT_EQ(wide.top, 12);
    const LogoPlace high = placeLogo(100, 800);
    EXPECT_FLOAT_EQ(high.width, 10);
    EXPECT_FLOAT_EQ(high.height, 80);
    EXPECT_FLOAT_EQ(high.left, 565);
}

TEST(LogoPlace, EnlargesNoSmallOne) {
    const LogoPlace small = placeLogo(32, 16);
    EXPECT_FLOAT_EQ(small.width, 32);
    EXPECT_FLOAT_EQ(small.height, 16);
}

} // namespace
} // namespace torvane
