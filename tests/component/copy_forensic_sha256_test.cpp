#include "tests/component/forensic_bench.h"
#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"

#include <bcrypt.h>

#include <wincrypt.h>

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&BCryptOpenAlgorithmProvider) __imp_BCryptOpenAlgorithmProvider;
extern decltype(&BCryptCreateHash) __imp_BCryptCreateHash;
extern decltype(&BCryptHashData) __imp_BCryptHashData;
extern decltype(&BCryptFinishHash) __imp_BCryptFinishHash;
extern decltype(&CryptHashData) __imp_CryptHashData;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using testing::ImportPatched;
using testing::kHashError;
using testing::kVerify;
using testing::kVerifyQuestion;
using testing::noise;
using testing::readFile;
using testing::writeFile;

constexpr NTSTATUS kRefused = static_cast<NTSTATUS>(0xC0000001L); // STATUS_UNSUCCESSFUL

/// Forensic images with a SHA-256 beside the MD5.
class ForensicSha256 : public testing::Forensic {
  protected:
    ForensicSha256() { order_.alsoSha256 = true; }

    static constexpr const char* kSha256File = "Model X.41.img.sha256";

    void expectNoHashFiles() {
        EXPECT_FALSE(std::filesystem::exists(kHashFile));
        EXPECT_FALSE(std::filesystem::exists(kSha256File));
    }
};

TEST_F(ForensicSha256, StandsBesideTheImageAndTheMd5StaysAsItIs) {
    openDrive(3 * kBlock + 512, "{}", "zero");
    user_.expectAsk(kVerify, kVerifyQuestion, false);
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(hashLine(), "HASH:\t\t\t81 40 F9 0B F0 E9 CC 0D 7C EE 6A 4C B1 CD 79 46 ");
    EXPECT_EQ(readFile(kSha256File),
              "cc5a7a551271687560cc942cc02ed6a2778f8926d5c9bc6e6e01945c18e69ccb *Model X.41.img\n");
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(ForensicSha256, IsNotMadeUnlessItIsOrdered) {
    order_.alsoSha256 = false;
    openDrive(kBlock);
    user_.expectAsk(kVerify, kVerifyQuestion, true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    const ImportPatched patched(
        __imp_BCryptOpenAlgorithmProvider, +[](BCRYPT_ALG_HANDLE*, LPCWSTR, LPCWSTR, ULONG) -> NTSTATUS {
            ADD_FAILURE() << "nobody has asked for it";
            return kRefused;
        });
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_FALSE(std::filesystem::exists(kSha256File));
}

TEST_F(ForensicSha256, IsVerifiedWithTheMd5) {
    openDrive(5 * kBlock + 512, R"({"reads": [{"firstSector": 200}]})");
    user_.expectAsk(kVerify, kVerifyQuestion, true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD 1 unreadable block, verified");
}

TEST_F(ForensicSha256, OfThirtyTwoMebibyteBlocksIsVerifiedInAFolderWithAPathOfAnyLength) {
    openDrive(70 * 1048576, "{}", "zero");
    const testing::HardFolder folder = testing::HardFolder::withLongPath();
    order_.path = folder.path();
    user_.expectAsk(kVerify, kVerifyQuestion, true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(ForensicImageWorker), 1U);
    EXPECT_EQ(folder.content(L"Model X.41.img.sha256"),
              "d563c767a739c2a9066a2668341a473c4cb0dcbc106c2d533133ad8311c3c007 *Model X.41.img\n");
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED, verified");
}

TEST_F(ForensicSha256, IsMadeInAFolderWithAForeignName) {
    openDrive(kBlock, "{}", "zero");
    const testing::HardFolder folder = testing::HardFolder::withForeignName();
    const testing::TextsAreUtf8 utf8;
    order_.path = folder.path();
    user_.expectAsk(kVerify, kVerifyQuestion, false);
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(folder.content(L"Model X.41.img.sha256"),
              "de2f256064a0af797747c2b97505dc0b9f3df0de4f489eac731c23ae9ca9cc31 *Model X.41.img\n");
}

// Kept for tests/hash_files/check_hash_files.
TEST_F(ForensicSha256, IsWhatOtherToolsCheck) {
    openDrive(9 * kBlock + 512, R"({"reads": [{"firstSector": 200}]})");
    user_.expectAsk(kVerify, kVerifyQuestion, false);
    EXPECT_EQ(run(runForensicImage), 1U);
    const std::filesystem::path folder = TORVANE_HASH_FILES_FOLDER;
    std::filesystem::create_directories(folder);
    for (const char* const file : {kImage, kHashFile, kSha256File}) {
        std::filesystem::copy_file(file, folder / file, std::filesystem::copy_options::overwrite_existing);
    }
}

TEST_F(ForensicSha256, AnImageThatWasChangedIsNotVerified) {
    openDrive(3 * kBlock);
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] { std::filesystem::resize_file(kImage, 2 * kBlock); });
    user_.expectInform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not verified");
}

TEST_F(ForensicSha256, OfATerminatedImageIsNotWritten) {
    openDrive(8 * kBlock);
    display_.onStatus = [&](std::string_view text) {
        if (text.find("%12") != std::string_view::npos) {
            terminate();
        }
    };
    EXPECT_EQ(run(runForensicImage), 1U);
    expectNoHashFiles();
}

TEST_F(ForensicSha256, AFileThatIsThereTakesItsNumber) {
    openDrive(kBlock);
    writeFile(kSha256File, "somebody's");
    order_.alsoSha256 = false;
    user_.expectAsk(kVerify, kVerifyQuestion, false);
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(readFile(kSha256File), "somebody's");
    EXPECT_FALSE(std::filesystem::exists(kImage));
    EXPECT_TRUE(std::filesystem::exists("Model X.42.img"));
}

TEST_F(ForensicSha256, AFileThatCannotBeCreatedIsLogged) {
    openDrive(kBlock);
    std::filesystem::create_directory(kSha256File);
    user_.expectAsk(kVerify, kVerifyQuestion, false);
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not CREATE HASH file for [" + order_.path + "\\" + kSha256File +
                                      "]. Exiting."));
    EXPECT_THAT(hashLine(), ::testing::StartsWith("HASH:"));
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
}

TEST_F(ForensicSha256, WithoutAProviderTheImageIsNotBegun) {
    openDrive(kBlock);
    const ImportPatched patched(
        __imp_BCryptOpenAlgorithmProvider,
        +[](BCRYPT_ALG_HANDLE*, LPCWSTR algorithm, LPCWSTR implementation, ULONG flags) -> NTSTATUS {
            EXPECT_STREQ(algorithm, L"SHA256");
            EXPECT_EQ(implementation, nullptr);
            EXPECT_EQ(flags, 0U);
            return kRefused;
        });
    const auto image = [&] {
        user_.expectStop(kHashError, "Could not open the system's provider of SHA-256. Nothing was read. Start again "
                                     "without SHA-256");
        EXPECT_EQ(run(runForensicImage), 0U);
    };
    image();
    EXPECT_EQ(readFile(kImage), "");
    EXPECT_THAT(view_.driveStatuses(*source_), ElementsAre("BAD not started"));
    EXPECT_FALSE(state().jobs.active());
    testing::expectNoHandleLost(image);
}

TEST_F(ForensicSha256, WithoutAHashTheImageIsNotBegun) {
    openDrive(kBlock);
    const ImportPatched patched(
        __imp_BCryptCreateHash,
        +[](BCRYPT_ALG_HANDLE, BCRYPT_HASH_HANDLE*, PUCHAR object, ULONG size, PUCHAR, ULONG, ULONG) -> NTSTATUS {
            EXPECT_EQ(object, nullptr);
            EXPECT_EQ(size, 0U);
            return kRefused;
        });
    user_.expectStop(kHashError, "Could not begin a SHA-256 HASH. Nothing was read. Start again without SHA-256");
    EXPECT_EQ(run(runForensicImage), 0U);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not started");
}

constexpr const char* kNoSha256Data = "Could not add a block to the SHA-256 HASH. Nothing more is read. Start again";

TEST_F(ForensicSha256, ABlockThatCannotBeHashedEndsTheImageAsOneOfMd5Does) {
    openDrive(5 * kBlock);
    const ImportPatched patched(
        __imp_BCryptHashData, +[](BCRYPT_HASH_HANDLE, PUCHAR, ULONG, ULONG) -> NTSTATUS { return kRefused; });
    const auto image = [&] {
        user_.expectStop(kHashError, kNoSha256Data);
        EXPECT_EQ(run(runForensicImage), 1U);
    };
    image();
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_TRUE(readFile(kImage) == noise(0, 0, kBlock));
    EXPECT_THAT(display_.timers(), ElementsAre(750, 750));
    EXPECT_EQ(display_.losses(), "red: 256 KB of the source not copied, not hashed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed");
    expectNoHashFiles();
    testing::expectNoHandleLost(image);
}

TEST_F(ForensicSha256, ABlockThatNeitherTakesIsToldOfBoth) {
    openDrive(5 * kBlock);
    const ImportPatched md5(
        __imp_CryptHashData, +[](HCRYPTHASH, const BYTE*, DWORD, DWORD) -> BOOL { return FALSE; });
    const ImportPatched sha256(
        __imp_BCryptHashData, +[](BCRYPT_HASH_HANDLE, PUCHAR, ULONG, ULONG) -> NTSTATUS { return kRefused; });
    user_.expectStop(kHashError, "Could not get HASH data. Exiting");
    user_.expectStop(kHashError, kNoSha256Data);
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(0, 0, kBlock));
}

TEST_F(ForensicSha256, WithoutItsDigestGetsNoHashFiles) {
    openDrive(kBlock);
    const ImportPatched patched(
        __imp_BCryptFinishHash, +[](BCRYPT_HASH_HANDLE, PUCHAR, ULONG size, ULONG) -> NTSTATUS {
            EXPECT_EQ(size, 32U);
            return kRefused;
        });
    user_.expectStop(kHashError, "The SHA-256 HASH of [" + order_.path +
                                     "\\Model X.41.img] could not be read. The image has no hash files, and it cannot "
                                     "be verified. Make it anew");
    EXPECT_EQ(run(runForensicImage), 1U);
    expectNoHashFiles();
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not hashed");
    EXPECT_EQ(state().raceTrack.succeeded, 0);
}

// The verification's own failures: the first pass has to succeed, so the slot is replaced when the question comes.
TEST_F(ForensicSha256, AVerificationThatCannotHashSaysSo) {
    openDrive(3 * kBlock);
    static decltype(&BCryptHashData) original = nullptr;
    original = __imp_BCryptHashData;
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] {
        __imp_BCryptHashData = [](BCRYPT_HASH_HANDLE, PUCHAR, ULONG, ULONG) -> NTSTATUS { return kRefused; };
    });
    user_.expectStop(kHashError, kNoSha256Data);
    {
        // Puts the import back at the end of the scope; until the question it is the system's own.
        const ImportPatched<decltype(&BCryptHashData)> patched(__imp_BCryptHashData, original);
        EXPECT_EQ(run(runForensicImage), 1U);
    }
    EXPECT_EQ(lastDriveStatus(*source_), "BAD verification failed");
    EXPECT_TRUE(std::filesystem::exists(kSha256File)) << "the imaging pass has made it";
}

} // namespace
} // namespace torvane
