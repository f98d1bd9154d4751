#include "tests/component/bitlocker_bench.h"
#include "tests/component/import_patched.h"

#include <bit>

// The linker names it. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateFileA) __imp_CreateFileA;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::ImportPatched;
using ::testing::IsEmpty;
using testing::readFile;
using ::testing::SizeIs;

class BitLockerScan : public testing::BitLockerBench {};

TEST_F(BitLockerScan, TwoReadableVolumesGiveTwoRowsAndTwoEntries) {
    addDrive(0, volume('D', unlocked("1-1")) + "," + volume('E', unlocked("2-2")));
    open();
    scan();
    EXPECT_THAT(rows_.rows(), ElementsAre("D:\\|Encrypted|1-1", "E:\\|Encrypted|2-2"));
    ASSERT_EQ(drive(0).bitLockerEntryCount, 2);
    EXPECT_EQ(entry(0, 0).hasKey, 1U);
    EXPECT_EQ(entry(0, 0).recoveryPassword.view(), "1-1");
    EXPECT_EQ(entry(0, 0).driveLetter, 'D');
    EXPECT_EQ(entry(0, 1).recoveryPassword.view(), "2-2");
    EXPECT_EQ(entry(0, 1).driveLetter, 'E');
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(BitLockerScan, EveryVolumeIsAskedByTheCmdletAndItsOutputEmptied) {
    addDrive(0, volume('D', unlocked("1-1")) + "," + volume('E', unlocked("2-2")));
    open();
    scan();
    EXPECT_THAT(
        bench_.log("request=start"),
        ElementsAre(
            HasSubstr(
                R"(command-line="powershell -windowstyle hidden (Get-BitLockerVolume -MountPoint D).KeyProtector")"),
            HasSubstr("-MountPoint E)")));
    EXPECT_TRUE(std::filesystem::exists("BITLOCKER.txt"));
    EXPECT_EQ(readFile("BITLOCKER.txt"), "");
}

TEST_F(BitLockerScan, EachOutcomeHasItsRowAndItsEntry) {
    addDrive(0, volume('D', unlocked("1-1")) + "," + volume('E', kLocked) + "," + volume('F', kError) + "," +
                    volume('G', kOff));
    open();
    expectUntold("F:\\ - Get-BitLockerVolume : Access denied\n");
    scan();
    EXPECT_THAT(rows_.rows(),
                ElementsAre("D:\\|Encrypted|1-1", "E:\\|Encrypted and Locked|No Key Found",
                            "F:\\|Windows could not tell|No Key Found", "G:\\|Not Bitlocker Encrypted|No Key Found"));
    ASSERT_EQ(drive(0).bitLockerEntryCount, 3) << "nothing printed, nothing kept";
    EXPECT_EQ(entry(0, 1).hasKey, 0U);
    EXPECT_EQ(entry(0, 1).driveLetter, 'E');
    EXPECT_TRUE(entry(0, 1).recoveryPassword.empty());
    EXPECT_EQ((std::bit_cast<std::array<char, 261>>(entry(0, 2))), (std::array<char, 261>{}));
    EXPECT_EQ(drive(0).bitLockerNotes[2].driveLetter, 'F');
    EXPECT_FALSE(drive(0).bitLockerNotes[2].isTold) << "access was denied";
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(BitLockerScan, TheVolumeBehindAnEmptyOutputTakesItsRow) {
    addDrive(0, volume('D', kOff) + "," + volume('E', unlocked("2-2")) + "," + volume('F', kOff) + "," +
                    volume('G', kOff));
    open();
    scan();
    EXPECT_THAT(rows_.rows(), ElementsAre("E:\\|Encrypted|2-2", "G:\\|Not Bitlocker Encrypted|No Key Found"));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 1);
}

TEST_F(BitLockerScan, AVolumeShowsItsLetterBeforePowershellAnswers) {
    addDrive(0, volume('D', kLocked));
    open();
    scan();
    EXPECT_THAT(rows_.written(), ElementsAre("clear", "0 D:\\||", "0 D:\\|Encrypted and Locked|No Key Found"));
}

TEST_F(BitLockerScan, AFailedCommandSkipsTheVolumeWithoutATextInTheList) {
    addDrive(0, volume('D', unlocked("1-1")) + "," + volume('E', kOff));
    describePowershell(R"({"missing": true})");
    open();
    expectUntold("D:\\ - powershell could not be run, or what it printed could not be read\n"
                 "E:\\ - powershell could not be run, or what it printed could not be read\n");
    scan();
    EXPECT_THAT(rows_.rows(), ElementsAre("E:\\||"));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 0);
    EXPECT_THAT(events(), ElementsAre("ERROR: PARSE_BuildDataFile: [BITLOCKER.txt] CreateProcess FAILED",
                                      "ERROR: PARSE_BuildDataFile: [BITLOCKER.txt] CreateProcess FAILED"));
}

TEST_F(BitLockerScan, AnOutputFileThatCannotBeMadeSkipsTheVolume) {
    addDrive(0, volume('D', unlocked("1-1")));
    std::filesystem::create_directory("BITLOCKER.txt");
    open();
    expectUntold("D:\\ - powershell could not be run, or what it printed could not be read\n");
    scan();
    EXPECT_THAT(rows_.rows(), ElementsAre("D:\\||"));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 0);
    EXPECT_THAT(events(), ElementsAre("ERROR: PARSE_BuildDataFile: [BITLOCKER.txt] CREATE_ALWAYS FAILED"));
}

TEST_F(BitLockerScan, AnOutputFileThatCannotBeEmptiedIsLogged) {
    addDrive(0, volume('D', unlocked("1-1")));
    open();
    {
        // As one that was made read-only the moment PowerShell ended.
        const ImportPatched patched(
            __imp_CreateFileA,
            +[](LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                HANDLE pattern) -> HANDLE {
                return disposition == TRUNCATE_EXISTING ? INVALID_HANDLE_VALUE
                                                        : CreateFileW(std::filesystem::path(name).c_str(), access,
                                                                      share, security, disposition, flags, pattern);
            });
        scan();
    }
    EXPECT_THAT(rows_.rows(), ElementsAre("D:\\|Encrypted|1-1"));
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not empty [BITLOCKER.txt]: it may hold recovery passwords"));
}

TEST_F(BitLockerScan, OnlyTheActiveDrivesVolumesAreChecked) {
    addDrive(0, volume('D', unlocked("1-1")));
    addDrive(1, volume('E', unlocked("2-2")));
    open();
    state().activeDrive = &drive(1);
    scan();
    EXPECT_THAT(rows_.rows(), ElementsAre("E:\\|Encrypted|2-2"));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 0);
    EXPECT_EQ(drive(1).bitLockerEntryCount, 1);
}

TEST_F(BitLockerScan, ADrivesVolumesAreThoseOfItsNumberEvenWhenTheNumberingHasAGap) {
    addDrive(0, volume('D', unlocked("1-1")));
    addDrive(3, volume('E', unlocked("2-2")));
    open();
    state().activeDrive = &drive(1);
    scan();
    EXPECT_THAT(rows_.rows(), ElementsAre("E:\\|Encrypted|2-2"));
}

TEST_F(BitLockerScan, ScanningAgainReplacesEntriesAndRows) {
    addDrive(0, volume('D', unlocked("1-1")) + "," + volume('E', unlocked("2-2")));
    open();
    scan();
    state().scan.volumes.count = 1;
    scan();
    EXPECT_THAT(rows_.rows(), ElementsAre("D:\\|Encrypted|1-1"));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 1);
    EXPECT_EQ(entry(0, 1).hasKey, 0U) << "the entry of before is cleared";
    EXPECT_TRUE(entry(0, 1).recoveryPassword.empty());
}

TEST_F(BitLockerScan, AnEleventhVolumeIsShownAndNotKept) {
    std::string volumes;
    for (char letter = 'D'; letter <= 'O'; ++letter) {
        volumes += (letter == 'D' ? "" : ",") + volume(letter, unlocked(std::string(1, letter)));
    }
    addDrive(0, volumes);
    open();
    const std::int32_t beforeEntries = drive(0).checkedVolumeCount;
    scan();
    ASSERT_THAT(rows_.rows(), SizeIs(12));
    EXPECT_EQ(rows_.rows()[10], "N:\\|Encrypted|N");
    EXPECT_EQ(rows_.rows()[11], "O:\\|Encrypted|O");
    EXPECT_EQ(drive(0).bitLockerEntryCount, 10);
    EXPECT_EQ(entry(0, 9).driveLetter, 'M');
    EXPECT_EQ(drive(0).checkedVolumeCount, beforeEntries) << "the words before the entries are untouched";
}

TEST_F(BitLockerScan, ASpannedVolumeHasARowForEachExtentOnTheDrive) {
    addDrive(0,
             R"({"letter": "S", "extents": [{"offset": "1 MiB", "length": "1 MiB"},
                {"offset": "4 MiB", "length": "1 MiB"}, {"disk": 1, "offset": "1 MiB", "length": "1 MiB"}],
                "bitLocker": )" +
                 unlocked("1-1") + "}");
    addDrive(1, "");
    open();
    scan();
    EXPECT_THAT(rows_.rows(), ElementsAre("S:\\|Encrypted|1-1", "S:\\|Encrypted|1-1"));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 2);
}

TEST_F(BitLockerScan, ADriveWithoutVolumesRunsNothing) {
    addDrive(0, "");
    open();
    scan();
    EXPECT_THAT(rows_.rows(), IsEmpty());
    EXPECT_THAT(bench_.log("request=powershell"), IsEmpty());
}

TEST_F(BitLockerScan, WithoutAnActiveDriveNothingHappens) {
    addDrive(0, volume('D', unlocked("1-1")));
    open();
    state().activeDrive = nullptr;
    scan();
    EXPECT_THAT(rows_.written(), IsEmpty());
    EXPECT_THAT(bench_.log("request=powershell"), IsEmpty());
}

TEST_F(BitLockerScan, NeverWritesTheKeyFile) {
    addDrive(0, volume('D', unlocked("1-1")));
    open();
    scan();
    EXPECT_FALSE(std::filesystem::exists("BITLOCKER.db"));
}

} // namespace
} // namespace torvane
