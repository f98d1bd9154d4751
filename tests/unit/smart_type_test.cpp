#include "records/smart_type.h"

#include "records/drive_record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace torvane {
namespace {

TEST(SmartTypeText, NamesEveryCode) {
    EXPECT_EQ(smartTypeText(1000), "STANDARD SMART TYPE");
    EXPECT_EQ(smartTypeText(1001), "SSD SMART TYPE");
    EXPECT_EQ(smartTypeText(1002), "NVME SMART TYPE");
    EXPECT_EQ(smartTypeText(1003), "UNKNOWN SMART TYPE");
    EXPECT_EQ(smartTypeText(1004), "SMART TYPE NONE");
}

TEST(SmartTypeText, AnyOtherCodeIsInvalid) {
    for (const std::int32_t code : {0, -1, 999, 1005, 2000}) {
        EXPECT_EQ(smartTypeText(code), "INVALID SMART TYPE") << code;
    }
}

TEST(SmartTypeText, ClearsTheBufferAndFillsIt) {
    DriveRecord record;
    record.smartType = kSmartTypeSsd;
    std::array<char, 64> buffer;
    buffer.fill('x');
    EXPECT_EQ(SmartTypeText(record, buffer), 1);
    EXPECT_EQ(std::string_view(buffer.data()), "SSD SMART TYPE");
    EXPECT_TRUE(std::all_of(buffer.begin() + 14, buffer.end(), [](char byte) { return byte == '\0'; }));
}

TEST(SmartTypeText, CutsAtTheBuffersEndWithATerminator) {
    DriveRecord record;
    record.smartType = kSmartTypeNvme;
    std::array<char, 8> buffer;
    buffer.fill('x');
    EXPECT_EQ(SmartTypeText(record, std::span(buffer).first(5)), 1);
    EXPECT_EQ(std::string_view(buffer.data()), "NVME");
    EXPECT_EQ(buffer[5], 'x');
}

TEST(SmartTypeText, WritesNothingIntoABufferOfNoBytes) {
    EXPECT_EQ(SmartTypeText(DriveRecord{}, {}), 1);
}

} // namespace
} // namespace torvane
