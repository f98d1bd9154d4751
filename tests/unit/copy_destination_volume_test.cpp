#include "copy/dialogs/destination_volume.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(NotEnoughSpaceText, IsSilentWhenTheImageFits) {
    EXPECT_EQ(notEnoughSpaceText(1000, 1001, "E:\\x"), std::nullopt);
    EXPECT_EQ(notEnoughSpaceText(1000, 1000, "E:\\x"), std::nullopt) << "equal is enough";
    EXPECT_EQ(notEnoughSpaceText(0, 0, ""), std::nullopt);
}

TEST(NotEnoughSpaceText, TellsSizeShortageAndFreeSpace) {
    EXPECT_EQ(notEnoughSpaceText(500107862016, 107862016, "E:\\Images 100%s"),
              "IMAGE Drive is [500107862016 bytes]. This is [500000000000 bytes] greater than the total FREE SPACE of "
              "[107862016 bytes] on Destination Volume [E:\\Images 100%s]. Imaging Cancelled");
}

TEST(FileTooLargeText, IsForFatAlone) {
    for (const char* roomy : {"NTFS", "exFAT", "ReFS", ""}) {
        EXPECT_EQ(fileTooLargeText(1LL << 40, roomy, "E:\\x"), std::nullopt) << roomy;
    }
    for (const char* small : {"FAT", "FAT32"}) {
        EXPECT_EQ(fileTooLargeText(4294967295, small, "E:\\x"), std::nullopt) << "equal is not too large";
        EXPECT_TRUE(fileTooLargeText(4294967296, small, "E:\\x")) << small;
    }
}

TEST(FileTooLargeText, NamesTheWayOut) {
    EXPECT_EQ(fileTooLargeText(8000000000, "FAT32", "E:\\Images 100%s"),
              "The image will have 8000000000 bytes. The volume of [E:\\Images 100%s] has the file system FAT32, which "
              "ends files at 4294967295 bytes (4 GB): the image would break off there. Choose a folder on an exFAT or "
              "NTFS volume. Do you want to continue anyway?");
}

} // namespace
} // namespace torvane
