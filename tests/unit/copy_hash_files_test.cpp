#include "base/file_name_part.h"
#include "copy/engine/digest_text.h"
#include "copy/jobs/hash_files.h"
#include "copy/jobs/image_names.h"
#include "copy/jobs/verify_steps.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>

namespace torvane {
namespace {

// Of the three letters "abc".
constexpr const char* kMd5Hex = "900150983cd24fb0d6963f7d28e17f72";
constexpr const char* kSha256Hex = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

Md5Digest md5() {
    return digestIn<Md5Digest>(kMd5Hex).value();
}
Sha256Digest sha256() {
    return digestIn<Sha256Digest>(kSha256Hex).value();
}
std::string sha256Line(const std::string& name) {
    return kSha256Hex + (" *" + name) + "\n";
}

TEST(DigestText, IsReadAndWritten) {
    EXPECT_EQ(hexText(md5()), kMd5Hex);
    EXPECT_EQ(hexText(sha256()), kSha256Hex);
    EXPECT_EQ(hexText(std::array<std::uint8_t, 3>{0x00, 0x0f, 0xa0}), "000fa0");
}

TEST(DigestText, MayBeTypedOrPastedAsOthersWriteIt) {
    Md5Digest ascending{};
    std::iota(ascending.begin(), ascending.end(), std::uint8_t{0});
    for (const char* const text :
         {"000102030405060708090a0b0c0d0e0f", "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ",
          "00:01:02:03:04:05:06:07:08:09:0a:0B:0c:0D:0e:0F", "\t0001 0203 0405 0607\r\n0809 0A0B 0C0D 0E0F\r\n",
          "0 0 0 1 02030405060708090a0b0c0d0e0f"}) {
        EXPECT_EQ(digestIn<Md5Digest>(text), ascending) << text;
    }
}

DigestReading readingOf(std::string_view text) {
    Md5Digest digest{};
    return readDigest(text, digest);
}

TEST(DigestText, SaysWhatIsWrong) {
    EXPECT_EQ(readingOf(""), DigestReading::kNothing);
    EXPECT_EQ(readingOf(" \t\r\n"), DigestReading::kNothing);
    EXPECT_EQ(readingOf("::"), DigestReading::kOtherLength);
    EXPECT_EQ(readingOf("000102030405060708090a0b0c0d0e0"), DigestReading::kOtherLength);
    EXPECT_EQ(readingOf("000102030405060708090a0b0c0d0e0f0"), DigestReading::kOtherLength);
    EXPECT_EQ(readingOf(std::string(100000, '0')), DigestReading::kOtherLength);
    EXPECT_EQ(readingOf("000102030405060708090a0b0c0d0e0g"), DigestReading::kOtherLetter);
    EXPECT_EQ(readingOf("0x0102030405060708090a0b0c0d0e0f"), DigestReading::kOtherLetter);
    EXPECT_EQ(readingOf(std::string_view("\0", 1)), DigestReading::kOtherLetter);
    EXPECT_EQ(readingOf("\xC3\xA4"), DigestReading::kOtherLetter);
}

TEST(Sha256File, LiesBesideItsImage) {
    EXPECT_EQ(sha256FileName("E:\\Images\\Model.41.img"), "E:\\Images\\Model.41.img.sha256");
    EXPECT_EQ(fileNameOf("E:\\Images\\Model.41.img"), "Model.41.img");
    EXPECT_EQ(fileNameOf("E:\\Images/Model 7/Model.41.img"), "Model.41.img");
    EXPECT_EQ(fileNameOf("Model.41.img"), "Model.41.img");
    EXPECT_EQ(fileNameOf("E:Model.41.img"), "Model.41.img");
}

TEST(Sha256File, IsOneLineInBinaryMode) {
    EXPECT_EQ(sha256FileText("Model X.41.img", sha256()), std::string(kSha256Hex) + " *Model X.41.img\n");
}

TEST(Sha256File, EscapesWhatWouldEndALine) {
    EXPECT_EQ(sha256FileText("a\\b\nc\rd.img", sha256()), "\\" + std::string(kSha256Hex) + " *a\\\\b\\nc\\rd.img\n");
}

TEST(Sha256File, IsReadAsItWasWritten) {
    for (const std::string name : {"Model X.41.img", "a\\b\nc\rd.img", " ", "*"}) {
        EXPECT_EQ(sha256InFile(sha256FileText(name, sha256()), name), sha256()) << name;
    }
}

TEST(Sha256File, MayComeFromOtherPrograms) {
    const std::string hex = kSha256Hex;
    EXPECT_EQ(sha256InFile(hex + "  m.img\n", "m.img"), sha256()) << "text mode";
    EXPECT_EQ(sha256InFile(hex + " *m.img", "m.img"), sha256()) << "no line feed";
    EXPECT_EQ(sha256InFile(hex + " *m.img\r\n", "m.img"), sha256()) << "lines end as on Windows";
    EXPECT_EQ(sha256InFile("# of today\n\n" + hex + " *m.img\n", "m.img"), sha256()) << "other lines";
    std::string upper = hex;
    std::ranges::transform(upper, upper.begin(), [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
    EXPECT_EQ(sha256InFile(upper + " *m.img\n", "m.img"), sha256());
}

TEST(Sha256File, OfSeveralImagesTellsTheOneThatIsNamed) {
    const std::string other = std::string(64, '0') + " *other.img\n";
    EXPECT_EQ(sha256InFile(other + sha256Line("m.img"), "m.img"), sha256());
    EXPECT_EQ(sha256InFile(sha256Line("m.img") + other, "m.img"), sha256());
    EXPECT_EQ(sha256InFile(other + sha256Line("m.img"), "renamed.img"), std::nullopt) << "nobody knows which";
    EXPECT_EQ(sha256InFile(sha256Line("m.img"), "renamed.img"), sha256()) << "there is but one";
}

TEST(Sha256File, ThatHoldsSomethingElseTellsNothing) {
    const std::string hex = kSha256Hex;
    for (const std::string& text : {std::string(), hex, hex + "\n", hex + " *", hex + "x *m.img\n", hex + "-*m.img\n",
                                    hex + " m.img\n", hex.substr(1) + " *m.img\n", "g" + hex.substr(1) + " *m.img\n",
                                    std::string("\\"), std::string(100000, '\n'), std::string(1000, '\0')}) {
        EXPECT_EQ(sha256InFile(text, "m.img"), std::nullopt) << text;
    }
}

TEST(Md5File, LiesBesideItsImage) {
    EXPECT_EQ(hashFileOfImage(imageFileName("E:\\Images", "WDC WD5000AAKX", 41)),
              hashFileName("E:\\Images", "WDC WD5000AAKX", 41));
    EXPECT_EQ(hashFileOfImage(imageFileName("E:", "Model 1.5", 0)), hashFileName("E:", "Model 1.5", 0));
    EXPECT_EQ(hashFileOfImage("Model.41.IMG"), "MD5-HASH--Model.41.txt");
    EXPECT_EQ(hashFileOfImage("E:\\a.b\\image"), "E:\\a.b\\MD5-HASH--image.txt") << "no extension";
    EXPECT_EQ(hashFileOfImage(""), "MD5-HASH--.txt");
}

TEST(Md5File, IsReadAsItWasWritten) {
    DriveRecord source;
    source.model.assign("HASH: 00");
    EXPECT_EQ(md5InHashFile(hashFileText(source, md5(), {2024, 3, 1, 9, 5, 7})), md5());
}

TEST(Md5File, MayHaveBeenEdited) {
    EXPECT_EQ(md5InHashFile(std::string("HASH:\t") + kMd5Hex + "\r\nmore\r\n"), md5());
    EXPECT_EQ(md5InHashFile(std::string("a\r\nHASH:") + kMd5Hex), md5());
}

TEST(Md5File, ThatHoldsSomethingElseTellsNothing) {
    const std::string hex = kMd5Hex;
    for (const std::string& text : {std::string(), hex, "MD5 HASH: " + hex, std::string("HASH:"),
                                    "HASH: " + hex + " 00", "HASH: " + hex.substr(1), "HASH: g" + hex.substr(1),
                                    "HASH:\n" + hex, "HASH: 00\nHASH: " + hex, std::string(100000, '\n')}) {
        EXPECT_EQ(md5InHashFile(text), std::nullopt) << text;
    }
}

TEST(Verification, SucceedsWhenEveryDigestThatIsKnownAgrees) {
    const Digests both{.md5 = md5(), .sha256 = sha256()};
    const Digests otherMd5{.md5 = Md5Digest{}, .sha256 = sha256()};
    const Digests otherSha256{.md5 = md5(), .sha256 = Sha256Digest{}};
    EXPECT_TRUE(agree(both, both));
    EXPECT_FALSE(agree(both, otherMd5));
    EXPECT_FALSE(agree(both, otherSha256));
    EXPECT_TRUE(agree({.md5 = md5(), .sha256 = {}}, {.md5 = md5(), .sha256 = {}}));
    EXPECT_TRUE(agree({.md5 = md5(), .sha256 = {}}, otherSha256)) << "one that is not known is not compared";
    EXPECT_TRUE(agree({.md5 = {}, .sha256 = sha256()}, otherMd5));
}

} // namespace
} // namespace torvane
