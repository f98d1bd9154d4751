#include "tests/component/forensic_bench.h"
#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"

#include <wincrypt.h>

#include <regex>

// The import slots of the functions that a test replaces. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CryptAcquireContextA) __imp_CryptAcquireContextA;
extern decltype(&CryptCreateHash) __imp_CryptCreateHash;
extern decltype(&CryptHashData) __imp_CryptHashData;
extern decltype(&CryptGetHashParam) __imp_CryptGetHashParam;
extern decltype(&SetFilePointer) __imp_SetFilePointer;
extern decltype(&WriteFile) __imp_WriteFile;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::Forensic;
using ::testing::HasSubstr;
using testing::ImportPatched;
using testing::kHashError;
using testing::kVerify;
using testing::kVerifyQuestion;
using testing::noise;
using testing::readFile;
using ::testing::SizeIs;
using testing::unreadable;
using testing::writeFile;

TEST_F(Forensic, LeavesAnImageAndItsHashFile) {
    openDrive(3 * kBlock + 512, "{}", "zero");
    user_.expectAsk(kVerify, kVerifyQuestion, false);
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_TRUE(readFile(kImage) == std::string(3 * kBlock + 512, '\0'));
    EXPECT_TRUE(std::regex_match(readFile(kHashFile),
                                 std::regex("KVL Data MD5 HASH\n"
                                            "Date:\t\t\t\\d\\d/\\d\\d/\\d{4}\n"
                                            "Time:\t\t\t\\d\\d:\\d\\d:\\d\\d\n"
                                            "Drive Model:\t\\[Model X\\]\n"
                                            "Serial Number:\t\\[S1\\]\n"
                                            "Total Sectors:\t\\[385\\]\n"
                                            "HASH:\t\t\t81 40 F9 0B F0 E9 CC 0D 7C EE 6A 4C B1 CD 79 46 ")))
        << readFile(kHashFile);
    EXPECT_THAT(display_.statuses(), ElementsAre(" Status: Idle", HasSubstr(" Image Status: 00:"), HasSubstr(" -- %33"),
                                                 HasSubstr(" -- %66"), " Image SUCCESSFULLY Completed"));
    EXPECT_EQ(state().raceTrack.animationBlocks, 3);
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(Forensic, IsMadeAndVerifiedInAFolderWithAPathOfAnyLength) {
    openDrive(3 * kBlock + 512);
    const testing::HardFolder folder = testing::HardFolder::withLongPath();
    order_.path = folder.path();
    user_.expectAsk(kVerify, kVerifyQuestion, true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(folder.content(L"Model X.41.img").size(), 3 * kBlock + 512);
    EXPECT_THAT(folder.content(L"MD5-HASH--Model X.41.txt"), ::testing::StartsWith("KVL Data MD5 HASH\n"));
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED, verified");
}

TEST_F(Forensic, IsMadeAndVerifiedInAFolderWithAForeignName) {
    openDrive(2 * kBlock);
    const testing::HardFolder folder = testing::HardFolder::withForeignName();
    const testing::TextsAreUtf8 utf8;
    order_.path = folder.path();
    user_.expectAsk(kVerify, kVerifyQuestion, true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_THAT(folder.content(L"MD5-HASH--Model X.41.txt"), ::testing::StartsWith("KVL Data MD5 HASH\n"));
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED, verified");
}

TEST_F(Forensic, OfThirtyTwoMebibyteBlocksIsVerified) {
    openDrive(70 * 1048576, "{}", "zero");
    user_.expectAsk(kVerify, kVerifyQuestion, true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(ForensicImageWorker), 1U);
    EXPECT_EQ(hashLine(), "HASH:\t\t\tB8 9F DC CD D6 1D 57 B3 71 F9 61 1E EC 7D 3C EF ");
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED, verified");
}

TEST_F(Forensic, WithUnreadableBlocksIsVerifiedToo) {
    openDrive(5 * kBlock, R"({"reads": [{"firstSector": 200}]})");
    user_.expectAsk(kVerify, kVerifyQuestion, true, [&] { EXPECT_FALSE(state().jobs.active()); });
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(readFile(kImage).substr(kBlock, kBlock), unreadable(kBlock));
    EXPECT_THAT(display_.statuses(), Contains(" Beginning Verification"));
    EXPECT_EQ(display_.lastStatus(), " Status: 00:00:00 -- %100");
    EXPECT_EQ(state().raceTrack.succeeded, 1);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD 1 unreadable block, verified");
}

TEST_F(Forensic, StoppedBeforeItsRemainderIsNotCompletedHoweverItIsVerified) {
    openDrive(3 * kBlock + 512);
    stopBeforeTheRemainder();
    user_.expectAsk(kVerify, kVerifyQuestion, true, [&] { EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed"); });
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(0, 0, 3 * kBlock));
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, verified");
}

TEST_F(Forensic, StoppedBeforeItsRemainderAndChangedIsBoth) {
    openDrive(3 * kBlock + 512);
    stopBeforeTheRemainder();
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] { std::filesystem::resize_file(kImage, kBlock); });
    user_.expectInform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, not verified");
}

TEST_F(Forensic, StoppedBeforeItsRemainderAndDeletedIsBoth) {
    openDrive(3 * kBlock + 512);
    stopBeforeTheRemainder();
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] { std::filesystem::remove(kImage); });
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, verification failed");
}

TEST_F(Forensic, AnImageThatWasChangedIsNotVerified) {
    openDrive(3 * kBlock);
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] {
        std::fstream image(kImage, std::ios::binary | std::ios::in | std::ios::out);
        image.seekp(kBlock);
        image.put(static_cast<char>(noise(0, kBlock, 1)[0] + 1));
    });
    user_.expectInform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not verified");
}

TEST_F(Forensic, AnImageThatWasTruncatedIsNotVerified) {
    openDrive(3 * kBlock);
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] { std::filesystem::resize_file(kImage, 2 * kBlock + 100); });
    user_.expectInform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
}

TEST_F(Forensic, AnImageThatIsTruncatedWhileItIsVerifiedCannotBeRead) {
    openDrive(8 * kBlock);
    display_.onStatus = [](std::string_view text) {
        if (text == " Beginning Verification") {
            std::filesystem::resize_file(kImage, 2 * kBlock);
        }
    };
    const auto imageAndVerify = [&] {
        restartCounter();
        for (const char* const file : {kImage, kHashFile, "Model X.41.img.map", "ACQUISITION--Model X.41.txt"}) {
            std::filesystem::remove(file);
        }
        user_.expectAsk(kVerify, kVerifyQuestion, true);
        EXPECT_EQ(run(runForensicImage), 1U);
    };
    imageAndVerify();
    EXPECT_EQ(display_.lastStatus(), "Could not READ image for VERIFICATION");
    EXPECT_TRUE(state().jobs.active()) << "stays set on purpose";
    EXPECT_EQ(state().raceTrack.succeeded, 0);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD verification failed");
    testing::expectNoHandleLost(imageAndVerify);
}

TEST_F(Forensic, AnImageThatWasDeletedCannotBeOpened) {
    openDrive(3 * kBlock);
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] { std::filesystem::remove(kImage); });
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(display_.lastStatus(), "Could not open image for VERIFICATION");
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(state().raceTrack.succeeded, 1);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD verification failed");
}

TEST_F(Forensic, AVerificationThatIsTerminatedComparesWhatItRead) {
    openDrive(8 * kBlock);
    user_.expectAsk(kVerify, kVerifyQuestion, true, [&] {
        display_.onStatus = [&](std::string_view text) {
            if (text.find("%12") != std::string_view::npos) {
                terminate();
            }
        };
    });
    user_.expectInform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(state().raceTrack.succeeded, 1) << "the trophy is shown all the same";
}

TEST_F(Forensic, ATerminatedImageGetsNoHashFileAndNoQuestion) {
    openDrive(8 * kBlock);
    display_.onStatus = [&](std::string_view text) {
        if (text.find("%12") != std::string_view::npos) {
            terminate();
        }
    };
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_FALSE(std::filesystem::exists(kHashFile));
    EXPECT_TRUE(readFile(kImage) == noise(0, 0, 3 * kBlock));
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
}

TEST_F(Forensic, AskedToStopBeforeItsFlagWasRaisedGetsNoHashFileAndNoQuestion) {
    openDrive(1024);
    EXPECT_EQ(runAskedToStop(runForensicImage), 1U);
    EXPECT_EQ(readFile(kImage), "");
    EXPECT_FALSE(std::filesystem::exists(kHashFile));
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed");
}

TEST_F(Forensic, ThatCannotBeWrittenIsTerminated) {
    openDrive(8 * kBlock);
    const auto imageWithoutThirdBlock = [&] {
        static decltype(&WriteFile) original = nullptr;
        static int blocks = 0;
        original = __imp_WriteFile;
        blocks = 0;
        const ImportPatched patched(
            __imp_WriteFile,
            +[](HANDLE file, LPCVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) -> BOOL {
                return size == kBlock && ++blocks == 3 ? FALSE : original(file, bytes, size, count, overlapped);
            });
        EXPECT_EQ(run(runForensicImage), 1U);
    };
    imageWithoutThirdBlock();
    EXPECT_THAT(display_.statuses(), Contains("Could not WRITE to DESTINATION image"));
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_THAT(display_.timers(), ElementsAre(750, 750));
    EXPECT_FALSE(state().jobs.active());
    EXPECT_FALSE(std::filesystem::exists(kHashFile));
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 1 failed write");
    testing::expectNoHandleLost(imageWithoutThirdBlock);
}

/// Writes of blocks with this many bytes fail.
class LostBlocks {
  public:
    explicit LostBlocks(DWORD bytes) : patched_(__imp_WriteFile, &write) {
        lost_ = bytes;
        original_ = patched_.original();
    }

  private:
    static BOOL WINAPI write(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
        return size == lost_ && testing::isFileOf(file, L".img") ? FALSE
                                                                 : original_(file, bytes, size, count, overlapped);
    }

    static inline DWORD lost_ = 0;
    static inline decltype(&WriteFile) original_ = nullptr;
    ImportPatched<decltype(&WriteFile)> patched_;
};

std::string notComplete(const std::string& verb) {
    return "The last block of [" + std::filesystem::current_path().string() + "\\Model X.41.img] could not be " + verb +
           ". The image is not whole, and it has no hash file. Make it anew";
}

TEST_F(Forensic, WhoseRemainderCannotBeWrittenIsNoSuccess) {
    openDrive(3 * kBlock + 1024);
    user_.expectStop("***** IMAGE NOT COMPLETE *****", notComplete("written"));
    {
        const LostBlocks lost(1024);
        EXPECT_EQ(run(runForensicImage), 1U);
    }
    EXPECT_FALSE(std::filesystem::exists(kHashFile));
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_EQ(state().raceTrack.succeeded, 0);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 1 failed write");
    EXPECT_EQ(display_.losses(), "red: 1 failed write");
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(Forensic, WhoseLastBlockCannotBeHashedIsNoSuccess) {
    openDrive(kBlock);
    const ImportPatched patched(
        __imp_CryptHashData, +[](HCRYPTHASH, const BYTE*, DWORD, DWORD) -> BOOL { return FALSE; });
    user_.expectStop(kHashError, "Could not get HASH data. Exiting");
    user_.expectStop("***** IMAGE NOT COMPLETE *****", notComplete("hashed"));
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_FALSE(std::filesystem::exists(kHashFile));
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed");
    EXPECT_EQ(display_.losses(), "red: not hashed");
}

TEST_F(Forensic, AHashFileThatCannotBeCreatedIsLogged) {
    openDrive(kBlock);
    std::filesystem::create_directory(kHashFile);
    user_.expectAsk(kVerify, kVerifyQuestion, false);
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not CREATE HASH file for [" +
                                      std::filesystem::current_path().string() + "\\" + kHashFile + "]. Exiting."));
    EXPECT_TRUE(readFile(kImage) == noise(0, 0, kBlock));
}

TEST_F(Forensic, ThatCannotBeCreatedEndsAtOnce) {
    openDrive(kBlock);
    std::filesystem::create_directory(kImage);
    EXPECT_EQ(run(runForensicImage), 0U);
    EXPECT_THAT(display_.statuses(), ElementsAre("Could not CREATE DESTINATION image"));
    EXPECT_THAT(view_.driveStatuses(*source_), ElementsAre("BAD not started"));
}

TEST_F(Forensic, WithoutAProviderEndsAtOnce) {
    openDrive(kBlock);
    const ImportPatched patched(
        __imp_CryptAcquireContextA,
        +[](HCRYPTPROV*, LPCSTR container, LPCSTR provider, DWORD type, DWORD flags) -> BOOL {
            EXPECT_EQ(container, nullptr);
            EXPECT_EQ(provider, nullptr);
            EXPECT_EQ(type, 1U);
            EXPECT_EQ(flags, 0xF0000000U);
            return FALSE;
        });
    const auto image = [&] {
        user_.expectStop(kHashError, "Could not get HANDLE to CRYPTO provider. Exiting");
        EXPECT_EQ(run(runForensicImage), 0U);
    };
    image();
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(readFile(kImage), "");
    EXPECT_THAT(view_.driveStatuses(*source_), ElementsAre("BAD not started"));
    testing::expectNoHandleLost(image);
}

TEST_F(Forensic, WithoutAHashEndsAtOnce) {
    openDrive(kBlock);
    const ImportPatched patched(
        __imp_CryptCreateHash, +[](HCRYPTPROV, ALG_ID algorithm, HCRYPTKEY key, DWORD, HCRYPTHASH*) -> BOOL {
            EXPECT_EQ(algorithm, 0x8003U);
            EXPECT_EQ(key, 0U);
            return FALSE;
        });
    const auto image = [&] {
        user_.expectStop(kHashError, "Could not get MD5 HASH for Crypto Provider. Exiting");
        EXPECT_EQ(run(runForensicImage), 0U);
    };
    image();
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not started");
    testing::expectNoHandleLost(image);
}

TEST_F(Forensic, DataThatCannotBeHashedTerminatesIt) {
    openDrive(5 * kBlock);
    const ImportPatched patched(
        __imp_CryptHashData, +[](HCRYPTHASH, const BYTE*, DWORD, DWORD) -> BOOL { return FALSE; });
    const auto image = [&] {
        user_.expectStop(kHashError, "Could not get HASH data. Exiting");
        EXPECT_EQ(run(runForensicImage), 1U);
    };
    image();
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_TRUE(readFile(kImage) == noise(0, 0, kBlock));
    EXPECT_THAT(display_.timers(), ElementsAre(750, 750));
    testing::expectNoHandleLost(image);
}

TEST_F(Forensic, WithoutItsDigestGetsNoHashFile) {
    openDrive(kBlock);
    const ImportPatched patched(
        __imp_CryptGetHashParam, +[](HCRYPTHASH, DWORD, BYTE*, DWORD*, DWORD) -> BOOL { return FALSE; });
    int number = 40;
    const auto image = [&] {
        user_.expectStop("***** IMAGE NOT COMPLETE *****",
                         "The HASH of [" + order_.path + "\\Model X." + std::to_string(++number) +
                             ".img] could not be read. The image has no hash file, and it cannot be "
                             "verified. Make it anew");
        EXPECT_EQ(run(runForensicImage), 1U);
    };
    image();
    EXPECT_FALSE(std::filesystem::exists(kHashFile));
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not hashed");
    EXPECT_EQ(state().raceTrack.succeeded, 0);
    testing::expectNoHandleLost(image);
}

TEST_F(Forensic, AnImageThatCannotBeRewoundStaysOpen) {
    openDrive(kBlock);
    static decltype(&SetFilePointer) original = nullptr;
    original = __imp_SetFilePointer;
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] {
        __imp_SetFilePointer = [](HANDLE, LONG, PLONG, DWORD) -> DWORD { return INVALID_SET_FILE_POINTER; };
    });
    {
        // Puts the import back at the end of the scope; until the question it is the system's own.
        const ImportPatched<decltype(&SetFilePointer)> patched(__imp_SetFilePointer, original);
        EXPECT_EQ(run(runForensicImage), 1U);
    }
    EXPECT_THAT(keptImages(), SizeIs(1));
    EXPECT_FALSE(DeleteFileA(kImage)) << "in use";
    EXPECT_FALSE(state().jobs.active());
    EXPECT_EQ(state().raceTrack.succeeded, 0);
    EXPECT_EQ(lastDriveStatus(*source_), "BAD verification failed");
}

TEST_F(Forensic, WithoutMemoryDoesNotBegin) {
    openDrive(kBlock);
    EXPECT_EQ(run(runForensicImage, kTooMuchMemory), 0U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not ALLOCATE copy buffers"));
    EXPECT_THAT(view_.driveStatuses(*source_), ElementsAre("BAD not started"));
}

TEST_F(Forensic, VerificationWithoutMemoryHasFailed) {
    openDrive(kBlock);
    writeFile(kImage, noise(0, 0, kBlock));
    const auto verify = [](const CopyJob& job) {
        return static_cast<std::uint32_t>(
            VerifyImageHash(job, kImage, {.md5 = Md5Digest{}, .sha256 = {}}, {.whole = true, .losses = {}}));
    };
    EXPECT_EQ(run(verify, kTooMuchMemory), 0U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not ALLOCATE copy buffers"));
    EXPECT_THAT(view_.driveStatuses(*source_), ElementsAre("BAD verification failed"));
}

TEST_F(Forensic, LeavesNoHandleBehind) {
    openDrive(3 * kBlock);
    const auto imageAndVerify = [&] {
        user_.expectAsk(kVerify, kVerifyQuestion, true);
        user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
        run(runForensicImage);
    };
    testing::expectNoHandleLost(imageAndVerify);
}

} // namespace
} // namespace torvane
