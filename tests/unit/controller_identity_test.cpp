#include "discovery/controller_identity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

/// Identify Controller data with these texts from byte 4 on, and what no text may reach around them.
std::vector<std::uint8_t> identifyWith(std::string_view texts) {
    std::vector<std::uint8_t> identify(4096, 'x');
    std::ranges::copy(texts, identify.begin() + 4);
    return identify;
}

TEST(PrintedIdentity, IsSerialNumberModelAndFirmwareOfTheControllerWithoutTheirPadding) {
    const auto printed = parseControllerIdentity(identifyWith("S4EVNX0M123456      "
                                                              "Tarn N512 Sprint                        "
                                                              "HG2A0115"));
    EXPECT_EQ(printed.serialNumber, "S4EVNX0M123456");
    EXPECT_EQ(printed.model, "Tarn N512 Sprint");
    EXPECT_EQ(printed.firmware, "HG2A0115");
}

TEST(PrintedIdentity, OfDataThatEndTooSoonIsWhatThereIs) {
    const std::vector<std::uint8_t> whole(4096, 'x');
    EXPECT_EQ(parseControllerIdentity({}), PrintedIdentity());
    const auto printed = parseControllerIdentity(ByteView(whole).first(66));
    EXPECT_EQ(printed.serialNumber.size(), 20U);
    EXPECT_EQ(printed.model.size(), 40U);
    EXPECT_EQ(printed.firmware, "xx");
}

TEST(PrintedIdentity, OfZerosIsNone) {
    EXPECT_EQ(parseControllerIdentity(std::vector<std::uint8_t>(4096)), PrintedIdentity());
}

} // namespace
} // namespace torvane
