#include "records/drive_record.h"
#include "records/drive_security.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

DriveRecord driveWith(const char* security) {
    DriveRecord drive;
    drive.smartText = std::string("Rotation Rate:    7200 rpm\r\nATA Security is:  ") + security +
                      "\r\nWrite cache is:   Enabled, **LOCKED**\r\n";
    drive.securityEnabled = std::string(security).starts_with("ENA") ? 1 : 0;
    return drive;
}

TEST(DriveSecurityTest, ALockedDriveIsToldBeforeACopyFails) {
    const DriveRecord locked = driveWith("ENABLED, PW level HIGH, **LOCKED** [SEC4]");
    EXPECT_EQ(securityWarning(&locked, nullptr),
              "The source is LOCKED (ATA security): every copy fails until its password is entered.");
    EXPECT_EQ(securityWarning(nullptr, &locked),
              "The destination is LOCKED (ATA security): every copy fails until its password is entered.");
}

TEST(DriveSecurityTest, APasswordIsToldBecauseItLocksWithThePower) {
    const DriveRecord enabled = driveWith("ENABLED, PW level HIGH, not locked, not frozen [SEC5]");
    EXPECT_EQ(securityWarning(&enabled, nullptr),
              "The source has an ATA password: it locks when it loses power, and the copy fails.");
}

TEST(DriveSecurityTest, TheSourceComesFirst) {
    const DriveRecord locked = driveWith("ENABLED, PW level HIGH, **LOCKED** [SEC4]");
    const DriveRecord enabled = driveWith("ENABLED, PW level HIGH, not locked, not frozen [SEC5]");
    EXPECT_TRUE(securityWarning(&enabled, &locked).starts_with("The source has"));
}

TEST(DriveSecurityTest, WithoutAPasswordThereIsNothingToTell) {
    const DriveRecord disabled = driveWith("Disabled, NOT FROZEN [SEC1]");
    EXPECT_EQ(securityWarning(&disabled, &disabled), "");
    EXPECT_EQ(securityWarning(nullptr, nullptr), "");
    DriveRecord noLine;
    noLine.securityEnabled = 1; // of an earlier report
    EXPECT_TRUE(securityWarning(&noLine, nullptr).starts_with("The source has"));
}

} // namespace
} // namespace torvane
