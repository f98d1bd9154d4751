#include "base/owned_handle.h"
#include "base/tool_watch.h"
#include "tests/component/bitlocker_bench.h"
#include "tests/component/import_patched.h"

// NOLINTBEGIN(bugprone-reserved-identifier): the linker names these
extern "C" {
extern decltype(&SetFilePointer) __imp_SetFilePointer;
extern decltype(&WriteFile) __imp_WriteFile;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using testing::ImportPatched;
using ::testing::IsEmpty;
using testing::readFile;
using testing::writeFile;

constexpr const char* kFile = "BITLOCKER.db";

DWORD WINAPI failToMove(HANDLE, LONG, PLONG, DWORD) {
    SetLastError(ERROR_SEEK);
    return INVALID_SET_FILE_POINTER;
}

BOOL WINAPI failToWrite(HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED) {
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

BOOL WINAPI writeShort(HANDLE, LPCVOID, DWORD size, LPDWORD written, LPOVERLAPPED) {
    *written = size - 1;
    return TRUE;
}

std::string record(const std::string& password, char letter) {
    std::string bytes(261, '\0');
    bytes[0] = 1;
    bytes.replace(4, password.size(), password);
    bytes[260] = letter;
    return bytes;
}

BitLockerVolumeEntry entryOf(const std::string& password, char letter) {
    BitLockerVolumeEntry entry;
    entry.hasKey = 1;
    entry.recoveryPassword.assign(password);
    entry.driveLetter = letter;
    return entry;
}

class BitLockerKeys : public testing::BitLockerBench {
  protected:
    /// Any drive will do for what concerns the file alone.
    void openAny() {
        addDrive(0, "");
        open();
    }
};

TEST_F(BitLockerKeys, TwoReadableVolumesAppendTwoRecordsWithTheirLetters) {
    addDrive(0, volume('D', unlocked("1-1")) + "," + volume('E', unlocked("2-2")));
    open();
    writeFile(kFile, "");
    BL_SaveRecoveryKeys(state().scan);
    EXPECT_EQ(readFile(kFile), record("1-1", 'D') + record("2-2", 'E'));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 2);
    EXPECT_EQ(drive(0).checkedVolumeCount, 2);
    EXPECT_THAT(events(), ElementsAre("SUCCESS: BITLOCKER file SUCCESSFULLY UPDATED PASSWORD SAVED for DRIVE D",
                                      "SUCCESS: BITLOCKER file SUCCESSFULLY UPDATED PASSWORD SAVED for DRIVE E"));
}

TEST_F(BitLockerKeys, AMissingFileIsCreatedByTheFirstAppendWithoutASuccessRow) {
    openAny();
    EXPECT_EQ(BL_AppendRecord(entryOf("1-1", 'D')), 1);
    EXPECT_EQ(readFile(kFile), record("1-1", 'D'));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(BitLockerKeys, ALockedVolumeIsKeptInTheRecordAndNotAppended) {
    addDrive(0, volume('D', kLocked) + "," + volume('E', kError) + "," + volume('F', kOff));
    open();
    BL_SaveRecoveryKeys(state().scan);
    EXPECT_FALSE(std::filesystem::exists(kFile));
    ASSERT_EQ(drive(0).bitLockerEntryCount, 2);
    EXPECT_EQ(entry(0, 0).driveLetter, 'D');
    EXPECT_EQ(entry(0, 0).hasKey, 0U);
    EXPECT_EQ(entry(0, 1).driveLetter, '\0') << "an error text takes an all-zero entry";
    EXPECT_EQ(drive(0).checkedVolumeCount, 3);
}

TEST_F(BitLockerKeys, EveryRunAppendsAgainAndAddsToTheEntries) {
    addDrive(0, volume('D', unlocked("1-1")));
    open();
    BL_SaveRecoveryKeys(state().scan);
    BL_SaveRecoveryKeys(state().scan);
    EXPECT_EQ(readFile(kFile), record("1-1", 'D') + record("1-1", 'D'));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 2);
    EXPECT_EQ(drive(0).checkedVolumeCount, 2);
}

TEST_F(BitLockerKeys, WhatTheFileHoldsIsNeverRewritten) {
    openAny();
    writeFile(kFile, "seven..");
    EXPECT_EQ(BL_AppendRecord(entryOf("1-1", 'D')), 1);
    EXPECT_EQ(readFile(kFile), "seven.." + record("1-1", 'D'));
}

TEST_F(BitLockerKeys, EachDriveGetsItsOwnVolumes) {
    addDrive(0, volume('D', unlocked("1-1")));
    addDrive(3, volume('E', unlocked("2-2")));
    open();
    BL_SaveRecoveryKeys(state().scan);
    EXPECT_EQ(entry(0, 0).driveLetter, 'D');
    EXPECT_EQ(entry(1, 0).driveLetter, 'E');
    EXPECT_EQ(drive(1).checkedVolumeCount, 1);
}

TEST_F(BitLockerKeys, AVolumeOfNoListedDriveIsNotChecked) {
    addDrive(0, volume('D', unlocked("1-1")));
    open();
    drive(0).driveNumber = 7;
    BL_SaveRecoveryKeys(state().scan);
    EXPECT_THAT(bench_.log("request=powershell"), IsEmpty());
    EXPECT_EQ(drive(0).checkedVolumeCount, 0);
}

TEST_F(BitLockerKeys, AFailedCommandCountsTheVolumeAndGoesOn) {
    addDrive(0, volume('D', unlocked("1-1")) + "," + volume('E', unlocked("2-2")));
    describePowershell(R"({"missing": true})");
    open();
    BL_SaveRecoveryKeys(state().scan);
    EXPECT_EQ(drive(0).checkedVolumeCount, 2);
    EXPECT_EQ(drive(0).bitLockerEntryCount, 0);
    EXPECT_FALSE(std::filesystem::exists(kFile));
}

TEST_F(BitLockerKeys, AnEleventhPasswordIsAppendedThoughTheRecordHasNoRoom) {
    std::string volumes;
    for (char letter = 'D'; letter <= 'N'; ++letter) {
        volumes += (letter == 'D' ? "" : ",") + volume(letter, unlocked(std::string(1, letter)));
    }
    addDrive(0, volumes);
    open();
    BL_SaveRecoveryKeys(state().scan);
    EXPECT_EQ(drive(0).bitLockerEntryCount, 10);
    EXPECT_EQ(readFile(kFile).size(), 11U * 261U);
}

TEST_F(BitLockerKeys, AFailedMoveToTheEndIsLoggedAndNothingIsWritten) {
    openAny();
    writeFile(kFile, record("0-0", 'C'));
    {
        const ImportPatched patched(__imp_SetFilePointer, &failToMove);
        EXPECT_EQ(BL_AppendRecord(entryOf("1-1", 'D')), 0);
    }
    EXPECT_THAT(events(), ElementsAre("ERROR: SetFilePointer BITLOCKER File FAILED"));
    EXPECT_EQ(readFile(kFile), record("0-0", 'C'));
}

TEST_F(BitLockerKeys, AFailedOrShortWriteIsLogged) {
    openAny();
    for (const auto write : {&failToWrite, &writeShort}) {
        writeFile(kFile, "");
        const ImportPatched patched(__imp_WriteFile, write);
        EXPECT_EQ(BL_AppendRecord(entryOf("1-1", 'D')), 0);
    }
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not WRITE BITLOCKER file. PASSWORD NOT SAVED",
                                      "ERROR: Could not WRITE BITLOCKER file. PASSWORD NOT SAVED"));
}

TEST_F(BitLockerKeys, AFailedOrShortWriteIntoANewFileIsLogged) {
    openAny();
    for (const auto write : {&failToWrite, &writeShort}) {
        std::filesystem::remove(kFile);
        const ImportPatched patched(__imp_WriteFile, write);
        EXPECT_EQ(BL_AppendRecord(entryOf("1-1", 'D')), 0);
    }
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not SAVE BITLOCKER file", "ERROR: Could not SAVE BITLOCKER file"));
}

TEST_F(BitLockerKeys, AFileThatCannotBeMadeIsLoggedAndThePassGoesOn) {
    addDrive(0, volume('D', unlocked("1-1")) + "," + volume('E', unlocked("2-2")));
    open();
    std::filesystem::create_directory(kFile);
    BL_SaveRecoveryKeys(state().scan);
    EXPECT_THAT(events(),
                ElementsAre("ERROR: Could not WRITE BITLOCKER file", "ERROR: Could not WRITE BITLOCKER file"));
    EXPECT_EQ(drive(0).bitLockerEntryCount, 2);
}

TEST_F(BitLockerKeys, AFileThatIsInUseIsNotEmptied) {
    openAny();
    writeFile(kFile, record("0-0", 'C'));
    {
        const UniqueFile held{CreateFileA(kFile, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                          FILE_ATTRIBUTE_NORMAL, nullptr)};
        ASSERT_TRUE(held);
        EXPECT_EQ(BL_AppendRecord(entryOf("1-1", 'D')), 0);
    }
    EXPECT_EQ(readFile(kFile), record("0-0", 'C'));
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not WRITE BITLOCKER file"));
}

TEST_F(BitLockerKeys, OthersMayReadTheFileMeanwhile) {
    openAny();
    writeFile(kFile, "");
    const UniqueFile reader{CreateFileA(kFile, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr)};
    ASSERT_TRUE(reader);
    EXPECT_EQ(BL_AppendRecord(entryOf("1-1", 'D')), 1);
}

/// Has enough of a PowerShell that has printed a key.
class EnoughOfAKey : public ToolWatch {
  public:
    [[nodiscard]] bool mayBegin() override { return true; }
    [[nodiscard]] bool mayGoOn(const ToolAtWork&) override {
        writeFile("BITLOCKER.txt", "RecoveryPassword : 1-1\r\n");
        return false;
    }
};

TEST_F(BitLockerKeys, WhatAPowershellPrintedThatWasEndedIsEmptiedToo) {
    addDrive(0, volume('D', unlocked("1-1")));
    describePowershell(std::string(R"({"delayMilliseconds": )") + testing::kUntilToldToHurry + "}");
    open();
    EnoughOfAKey watch;
    const ToolWatchScope watched(watch);
    BL_SaveRecoveryKeys(state().scan);
    ASSERT_TRUE(std::filesystem::exists("BITLOCKER.txt"));
    EXPECT_EQ(readFile("BITLOCKER.txt"), "");
    EXPECT_THAT(events(),
                ElementsAre("ERROR: PARSE_BuildDataFile: [BITLOCKER.txt] TERMINATED before the tool was done"));
}

TEST_F(BitLockerKeys, APasswordStandsNowhereElse) {
    constexpr const char* kSecret = "314159-265358-979323-846264-338327-950288-419716-939937";
    addDrive(0, volume('D', unlocked(kSecret)));
    open();
    writeFile(kFile, "");
    scan();
    BL_SaveRecoveryKeys(state().scan);
    ASSERT_EQ(rows_.rows(), std::vector<std::string>{std::string("D:\\|Encrypted|") + kSecret});

    for (const std::string& call : view_.calls()) {
        EXPECT_EQ(call.find(kSecret), std::string::npos) << call;
    }
    for (const std::string& line : bench_.log()) {
        EXPECT_EQ(line.find(kSecret), std::string::npos) << line;
    }
    std::vector<std::string> holders;
    for (const auto& file : std::filesystem::recursive_directory_iterator(std::filesystem::current_path())) {
        if (file.is_regular_file() && readFile(file.path().string()).find(kSecret) != std::string::npos) {
            holders.push_back(file.path().filename().string());
        }
    }
    // The first is the description of the test's own drive.
    EXPECT_THAT(holders, ::testing::UnorderedElementsAre("1.json", "BITLOCKER.db"));
}

} // namespace
} // namespace torvane
