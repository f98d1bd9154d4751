#include "base/owned_handle.h"
#include "copy/dialogs/found_digests.h"
#include "copy/engine/digest_text.h"
#include "tests/component/forensic_bench.h"
#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"

#include <bcrypt.h>

// The import slot of a function that a test replaces. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" decltype(&BCryptHashData) __imp_BCryptHashData;

namespace torvane {
namespace {

namespace fs = std::filesystem;

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::ImportPatched;
using testing::kHashError;
using testing::kVerify;
using testing::kVerifyQuestion;
using testing::writeFile;

constexpr const char* kSucceeded = "****** VERIFY SUCCEEDED ******";
constexpr const char* kVerified = "CREATED File has been verified";
constexpr const char* kFailed = "****** VERIFY FAILED ******";
constexpr const char* kNotVerified = "CREATED File has NOT been verified";

/// Verifications of an image of some day: three blocks of zeros and a sector.
class VerifyImage : public testing::Forensic {
  protected:
    VerifyImage() {
        writeFile(kImage, std::string(3 * kBlock + 512, '\0'));
        order_.kind = CopyKind::kVerifyImage;
        order_.path = (fs::current_path() / kImage).string();
        order_.known = right();
    }

    static Digests right() {
        return {.md5 = digestIn<Md5Digest>("8140F90BF0E9CC0D7CEE6A4CB1CD7946"),
                .sha256 = digestIn<Sha256Digest>("cc5a7a551271687560cc942cc02ed6a2778f8926d5c9bc6e6e01945c18e69ccb")};
    }
    void expectVerified() {
        user_.expectInform(kSucceeded, kVerified);
        EXPECT_EQ(run(runVerifyImage), 1U);
        EXPECT_EQ(state().raceTrack.succeeded, 1);
        EXPECT_FALSE(state().jobs.active());
    }
    void expectNotVerified() {
        user_.expectInform(kFailed, kNotVerified);
        EXPECT_EQ(run(runVerifyImage), 1U);
        EXPECT_EQ(state().raceTrack.succeeded, 0);
        EXPECT_FALSE(state().jobs.active());
    }
    void expectNoComparison() {
        EXPECT_EQ(run(runVerifyImage), 0U);
        EXPECT_FALSE(state().jobs.active());
        EXPECT_EQ(display_.digests().second, Digests{});
    }
};

TEST_F(VerifyImage, ComparesBothDigests) {
    expectVerified();
    EXPECT_EQ(display_.digests(), std::pair(right(), right()));
    EXPECT_THAT(display_.statuses(), Contains(" Beginning Verification"));
    EXPECT_EQ(display_.lastStatus(), " Status: 00:00:00 -- %100");
}

TEST_F(VerifyImage, MakesOnlyTheDigestThatIsKnown) {
    order_.known.sha256.reset();
    {
        const ImportPatched patched(
            __imp_BCryptHashData, +[](BCRYPT_HASH_HANDLE, PUCHAR, ULONG, ULONG) -> NTSTATUS {
                ADD_FAILURE() << "nobody has asked for it";
                return -1;
            });
        expectVerified();
    }
    EXPECT_EQ(display_.digests().second, order_.known);
    order_.known = {.md5 = {}, .sha256 = right().sha256};
    expectVerified();
    EXPECT_EQ(display_.digests().second, order_.known);
}

TEST_F(VerifyImage, OneDigestThatDiffersIsEnough) {
    order_.known.sha256->back() ^= 1;
    expectNotVerified();
    EXPECT_EQ(display_.digests(), std::pair(order_.known, right()));
    order_.known = right();
    order_.known.md5->front() ^= 1;
    expectNotVerified();
}

TEST_F(VerifyImage, AnImageThatWasChangedIsNotVerified) {
    std::fstream(kImage, std::ios::binary | std::ios::in | std::ios::out).put('x');
    expectNotVerified();
}

TEST_F(VerifyImage, OfAReadOnlyFileThatOthersUse) {
    const std::wstring image = fs::path(order_.path).wstring();
    const UniqueFile writer{CreateFileW(image.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, 0, nullptr)};
    ASSERT_TRUE(writer);
    ASSERT_TRUE(SetFileAttributesW(image.c_str(), FILE_ATTRIBUTE_READONLY));
    expectVerified();
    EXPECT_NE(GetFileAttributesW(image.c_str()) & FILE_ATTRIBUTE_READONLY, 0U) << "it stays as it is";
    SetFileAttributesW(image.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(VerifyImage, ThatIsTerminatedComparesWhatItRead) {
    display_.onStatus = [&](std::string_view text) {
        if (text.find("%33") != std::string_view::npos) {
            terminate();
        }
    };
    expectNotVerified();
    EXPECT_NE(display_.digests().second, right());
}

TEST_F(VerifyImage, AskedToStopBeforeItsFlagWasRaisedReadsNothing) {
    EXPECT_EQ(runAskedToStop(runVerifyImage), 0U);
    EXPECT_EQ(display_.lastStatus(), " Status: Idle");
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(VerifyImage, OfAFileThatIsNotThereSaysSo) {
    fs::remove(kImage);
    expectNoComparison();
    EXPECT_EQ(display_.lastStatus(), "Could not open image for VERIFICATION");
}

TEST_F(VerifyImage, ThatCannotBeReadToItsEndSaysSo) {
    display_.onStatus = [](std::string_view text) {
        if (text == " Beginning Verification") {
            fs::resize_file(kImage, kBlock);
        }
    };
    writeFile(kImage, std::string(8 * kBlock, '\0'));
    expectNoComparison();
    EXPECT_EQ(display_.lastStatus(), "Could not READ image for VERIFICATION");
}

TEST_F(VerifyImage, ThatCannotHashSaysSo) {
    const ImportPatched patched(
        __imp_BCryptHashData, +[](BCRYPT_HASH_HANDLE, PUCHAR, ULONG, ULONG) -> NTSTATUS { return -1; });
    user_.expectStop(kHashError, "Could not add a block to the SHA-256 HASH. Nothing more is read. Start again");
    expectNoComparison();
}

TEST_F(VerifyImage, WithoutMemoryHasFailed) {
    EXPECT_EQ(run(runVerifyImage, kTooMuchMemory), 0U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not ALLOCATE copy buffers"));
}

TEST_F(VerifyImage, RunsAsTheProgramStartsItAndNotBesideAScan) {
    {
        const std::optional<JobClaim> scan = state().jobs.begin(JobKind::kScan);
        user_.expectStop("***** Working *****",
                         "Still at work: the drive scan.\n\nNothing was started. What was told to stop ends with the "
                         "read, write or tool that it has under way. Please try again then.");
        EXPECT_FALSE(start(CopyKind::kVerifyImage));
    }
    user_.expectInform(kSucceeded, kVerified);
    EXPECT_TRUE(start(CopyKind::kVerifyImage));
    EXPECT_TRUE(awaitEnd());
    EXPECT_EQ(display_.digests().second, right());
}

TEST_F(VerifyImage, LeavesNoHandleBehind) {
    testing::expectNoHandleLost([&] {
        user_.expectInform(kSucceeded, kVerified);
        run(runVerifyImage);
    });
}

/// The hash files beside an image.
class DigestsBeside : public testing::Forensic {
  protected:
    static std::string image() { return (fs::current_path() / kImage).string(); }
};

TEST_F(DigestsBeside, AreThoseThatTheForensicImageHasLeft) {
    openDrive(3 * kBlock + 512);
    order_.alsoSha256 = true;
    const testing::HardFolder folder = testing::HardFolder::withLongPath();
    order_.path = folder.path();
    user_.expectAsk(kVerify, kVerifyQuestion, false);
    EXPECT_EQ(run(runForensicImage), 1U);
    const std::string image = folder.path() + "\\Model X.41.img";
    const Digests found = awaitDigestsBeside(image).value();
    EXPECT_TRUE(found.md5 && found.sha256);
    order_ = {.kind = CopyKind::kVerifyImage, .source = nullptr, .destination = nullptr, .path = image, .known = found};
    user_.expectInform(kSucceeded, kVerified);
    EXPECT_EQ(run(runVerifyImage), 1U);
}

TEST_F(DigestsBeside, AreNoneWhereNoFileTellsThem) {
    EXPECT_EQ(awaitDigestsBeside(image()), Digests{});
    fs::create_directory(kHashFile);
    writeFile(image() + ".sha256", "");
    EXPECT_EQ(awaitDigestsBeside(image()), Digests{});
}

TEST_F(DigestsBeside, AreLookedForAtTheBeginningOfAFileOfAnySize) {
    const std::string line = std::string(64, '0') + " *Model X.41.img\n";
    writeFile(image() + ".sha256", line + std::string(1000000, '\n'));
    EXPECT_EQ(awaitDigestsBeside(image()).value().sha256, Sha256Digest{});
    writeFile(image() + ".sha256", std::string(1000000, '\n') + line);
    EXPECT_EQ(awaitDigestsBeside(image()), Digests{});
}

} // namespace
} // namespace torvane
