#include "copy/jobs/drive_status.h"
#include "copy/jobs/image_names.h"
#include "copy/jobs/image_number.h"
#include "records/drive_texts.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>

namespace torvane {
namespace {

TEST(ImageNames, AreMadeOfFolderModelAndNumber) {
    EXPECT_EQ(imageFileName("E:\\Images", "WDC WD5000AAKX", 41), "E:\\Images\\WDC WD5000AAKX.41.img");
    EXPECT_EQ(hashFileName("E:\\Images", "WDC WD5000AAKX", 41), "E:\\Images\\MD5-HASH--WDC WD5000AAKX.41.txt");
}

TEST(ImageNames, TakeTheModelAsItStands) {
    EXPECT_EQ(imageFileName("E:", "  100%s \\ / ", 0), "E:\\  100%s \\ / .0.img");
}

constexpr Md5Digest kDigest{0x00, 0x01, 0x0A, 0x10, 0x7F, 0x80, 0xAB, 0xCD,
                            0xEF, 0xFF, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC};

TEST(HashFileText, HasSevenLines) {
    DriveRecord source;
    source.model.assign("Model 100%s");
    source.serialNumber.assign("WD-123");
    source.sizeBytes = 4096LL * 1000;
    source.bytesPerSector = 4096;
    EXPECT_EQ(hashFileText(source, kDigest, {2024, 3, 1, 9, 5, 7}),
              "KVL Data MD5 HASH\n"
              "Date:\t\t\t03/01/2024\n"
              "Time:\t\t\t09:05:07\n"
              "Drive Model:\t[Model 100%s]\n"
              "Serial Number:\t[WD-123]\n"
              "Total Sectors:\t[1000]\n"
              "HASH:\t\t\t00 01 0A 10 7F 80 AB CD EF FF 12 34 56 78 9A BC ");
}

TEST(DigestLine, ShowsEachByteInBrackets) {
    EXPECT_EQ(digestLine("Gen   HASH", kDigest), "Gen   HASH: [00] [01] [0A] [10] [7F] [80] [AB] [CD] [EF] [FF] [12] "
                                                 "[34] [56] [78] [9A] [BC]\n");
}

TEST(DriveStatus, TellsProgress) {
    EXPECT_EQ(driveProgressText("Cloning", 0), "Cloning 0%");
    EXPECT_EQ(driveProgressText("Verifying", 100), "Verifying 100%");
}

TEST(DriveStatus, IsCompletedOnlyWhenNothingWasLost) {
    EXPECT_EQ(driveOutcomeText("", {}), "COMPLETED");
    EXPECT_EQ(driveOutcomeText("", {.unreadableBlocks = 1, .failedWrites = 0}), "BAD 1 unreadable block");
    EXPECT_EQ(driveOutcomeText("", {.unreadableBlocks = 0, .failedWrites = 1}), "BAD 1 failed write");
    EXPECT_EQ(driveOutcomeText("", {.unreadableBlocks = 10, .failedWrites = 20}),
              "BAD 10 unreadable blocks, 20 failed writes");
    EXPECT_EQ(driveOutcomeText("not completed", {}), "BAD not completed");
    EXPECT_EQ(driveOutcomeText("not completed", {.unreadableBlocks = 11, .failedWrites = 0}),
              "BAD not completed, 11 unreadable blocks");
}

class ImageCounter : public testing::Test {
  protected:
    void SetUp() override {
        std::remove(kName);
        source_.model.assign("M");
    }
    void TearDown() override { std::remove(kName); }

    static void store(const std::string& bytes) { std::ofstream(kName, std::ios::binary) << bytes; }
    static void store(std::int32_t number) {
        std::ofstream(kName, std::ios::binary).write(reinterpret_cast<const char*>(&number), sizeof number);
    }
    static std::string content() {
        std::ifstream file(kName, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static std::int32_t stored() {
        std::int32_t number = 0;
        std::ifstream(kName, std::ios::binary).read(reinterpret_cast<char*>(&number), sizeof number);
        return number;
    }
    ImageFileName next() { return MakeImageFileName("F:\\i", source_); }

    static constexpr const char* kName = "FileCounter.txt";
    DriveRecord source_;
};

TEST_F(ImageCounter, IsCreatedHoldingItsRandomStart) {
    const ImageFileName first = next();
    EXPECT_EQ(content().size(), 4U);
    EXPECT_EQ(stored(), first.number);
    EXPECT_GE(first.number, 0);
    EXPECT_EQ(first.path, "F:\\i\\M." + std::to_string(first.number) + ".img");
}

TEST_F(ImageCounter, CountsUpWithEveryCall) {
    store(40);
    EXPECT_EQ(next().path, "F:\\i\\M.41.img");
    EXPECT_EQ(next().number, 42);
    EXPECT_EQ(content(), std::string("\x2A\0\0\0", 4)) << "little-endian";
}

TEST_F(ImageCounter, KeepsWhatFollowsTheNumber) {
    store(std::string("\x07\0\0\0more", 8));
    EXPECT_EQ(next().number, 8);
    EXPECT_EQ(content(), std::string("\x08\0\0\0more", 8));
}

TEST_F(ImageCounter, ShorterThanANumberIsLeftAsItIs) {
    store(std::string("\x07\0", 2));
    EXPECT_GE(next().number, 0);
    EXPECT_EQ(content(), std::string("\x07\0", 2));
}

TEST_F(ImageCounter, ANegativeNumberIsStoredAsItIsAndUsedWithoutItsSign) {
    store(-42);
    EXPECT_EQ(next().number, 41);
    EXPECT_EQ(stored(), -41);
}

TEST_F(ImageCounter, StaysDefinedAtItsLimit) {
    store(std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(next().number, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(stored(), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(next().number, std::numeric_limits<std::int32_t>::max());
}

TEST(ImageNames, ProofLiesBesideTheImage) {
    EXPECT_EQ(acquisitionFileName("E:\\Images", "Model 100%s", 41), "E:\\Images\\ACQUISITION--Model 100%s.41.txt");
    EXPECT_EQ(mapFileName("E:\\Images\\Model.41.img"), "E:\\Images\\Model.41.img.map");
}

TEST(ImageNames, TheMapOfACopyOntoADriveHasItsSourceAndItsBeginning) {
    const LocalMoment begin{2026, 3, 1, 9, 5, 7};
    DriveRecord source;
    source.model.assign("A/B");
    source.serialNumber.assign("S:1");
    EXPECT_EQ(cloneMapFileName(source, begin), "CLONE--A_B.S_1.20260301-090507.map");
    source.model.assign(std::string(200, 'm'));
    source.serialNumber.assign("");
    EXPECT_EQ(cloneMapFileName(source, begin), "CLONE--" + std::string(64, 'm') + "..20260301-090507.map");
    EXPECT_EQ(imageToDriveMapFileName("E:\\Images\\a.img", begin), "IMAGE-TO-DRIVE--a.img.20260301-090507.map");
    EXPECT_EQ(imageToDriveMapFileName("a.img", begin), "IMAGE-TO-DRIVE--a.img.20260301-090507.map");
    EXPECT_EQ(imageToDriveMapFileName(std::string(63, 'i') + "\xC3\xA4", begin),
              "IMAGE-TO-DRIVE--" + std::string(63, 'i') + ".20260301-090507.map")
        << "no half of a letter";
}

} // namespace
} // namespace torvane
