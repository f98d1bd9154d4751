#include "window/button_tips.h"

#include "discovery/bus_type.h"
#include "records/drive_record.h"
#include "resources/resource_ids.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace torvane {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const ButtonTip& tipOf(int id) {
    return *std::ranges::find(buttonTips(), id, &ButtonTip::id);
}

TEST(ButtonTipsTest, EachButtonHasItsOwn) {
    std::set<int> ids;
    std::set<std::string> texts;
    for (const ButtonTip& tip : buttonTips()) {
        ids.insert(tip.id);
        texts.insert(tip.text);
    }
    EXPECT_EQ(ids.size(), 17U);
    EXPECT_EQ(texts.size(), 17U);
}

TEST(ButtonTipsTest, TellHowLongTheDriveTakes) {
    DriveRecord drive;
    drive.model.assign("HARROW H2000");
    drive.busCode = kBusCodeDirect;
    drive.smartType = kSmartTypeStandard;
    drive.sizeBytes = 1000000000000;
    EXPECT_THAT(tipText(tipOf(IDC_DRIVE_TO_IMAGE), &drive),
                AllOf(StartsWith("Copies the ticked drive into an image file."),
                      EndsWith("A sound drive like HARROW H2000 takes about 1 h 50 min; a failing one far longer.")));
    EXPECT_THAT(tipText(tipOf(IDC_NIST_READ_TEST), &drive), HasSubstr("about 11 min"));
    EXPECT_THAT(tipText(tipOf(IDC_CRITICAL_READ_TEST), &drive), HasSubstr("about 40 s"));
    EXPECT_THAT(tipText(tipOf(IDC_SHORT_READ_TEST), &drive), HasSubstr("about 10 s"));
    drive.smartType = kSmartTypeSsd;
    EXPECT_THAT(tipText(tipOf(IDC_DRIVE_TO_IMAGE), &drive), HasSubstr("about 41 min"));
    drive.smartType = kSmartTypeNvme;
    EXPECT_THAT(tipText(tipOf(IDC_DRIVE_TO_IMAGE), &drive), HasSubstr("about 11 min"));
    drive.busCode = kBusCodeUsb;
    EXPECT_THAT(tipText(tipOf(IDC_DRIVE_TO_IMAGE), &drive), HasSubstr("about 2 h 40 min"));
    drive.smartType = kSmartTypeSsd;
    drive.busCode = kBusCodeOwnText;
    drive.device.descriptor =
        StorageDeviceTexts{.busType = kBusTypeUsb, .vendor = {}, .product = {}, .revision = {}, .serialNumber = {}};
    EXPECT_THAT(tipText(tipOf(IDC_DRIVE_TO_IMAGE), &drive), HasSubstr("about 2 h 40 min"));
}

TEST(ButtonTipsTest, TellNoTimeWhereThereIsNone) {
    const DriveRecord drive;
    EXPECT_EQ(tipText(tipOf(IDC_EXIT), &drive), tipOf(IDC_EXIT).text);
    EXPECT_EQ(tipText(tipOf(IDC_DRIVE_TO_IMAGE), nullptr), tipOf(IDC_DRIVE_TO_IMAGE).text);
}

TEST(ButtonTipsTest, RoundDurationsAsSomebodyWouldSayThem) {
    EXPECT_EQ(aboutDuration(0), "about 10 s");
    EXPECT_EQ(aboutDuration(119), "about 110 s");
    EXPECT_EQ(aboutDuration(120), "about 2 min");
    EXPECT_EQ(aboutDuration(3599), "about 59 min");
    EXPECT_EQ(aboutDuration(3600), "about 1 h");
    EXPECT_EQ(aboutDuration(36000 + 59 * 60), "about 10 h 50 min");
}

} // namespace
} // namespace torvane
