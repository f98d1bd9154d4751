#include "admin/disk_part.h"
#include "base/bytes.h"
#include "discovery/disk_identity.h"
#include "tests/component/copy_bench.h"
#include "ui/owned.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <thread>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::readFile;
using ::testing::SizeIs;

class DiskPartChanges : public testing::CopyBench {
  protected:
    /// A disk of the model "Model 100%s": a device's percent signs count as in a format.
    DriveRecord& openDisk(const std::string& more = "", const std::string& diskpart = "{}") {
        bench_.describe(R"({"tools": {"diskpart": )" + diskpart + "}}");
        bench_.addDrive(
            R"({"number": 3, "bus": "nvme", "identity": {"product": "Model 100%%s", "serial": "S1"}, "size": "16 MiB")" +
            more + "}");
        DriveRecord& disk = drive(3);
        return disk;
    }

    /// A diskpart that prints so, whatever it does.
    static std::string acting(const std::string& output) { return R"({"acts": true, "output": ")" + output + R"("})"; }
    /// Makes the change of disk 3, which is pulled while diskpart runs.
    template <typename Change>
    DiskChange endOfPulledDisk(Change change) {
        DiskChange end = DiskChange::kMade;
        std::thread working([&] { end = change(); });
        EXPECT_TRUE(bench_.awaitLog("request=start"));
        bench_.unplug(3);
        bench_.hurry();
        working.join();
        return end;
    }
    /// Writes an MBR with one partition before the bench opens.
    static void putPartitionedMbr(std::uint32_t signature, const char* file) {
        std::array<std::uint8_t, 512> sector{};
        storeLe(std::span(sector), 440, signature);
        sector[446 + 4] = 7;                         // type of the first entry
        storeLe(std::span(sector), 446 + 8, 2048U);  // first sector
        storeLe(std::span(sector), 446 + 12, 4096U); // sectors
        sector[510] = 0x55;
        sector[511] = 0xAA;
        std::filesystem::create_directories("bench\\backing");
        std::ofstream content(std::string("bench\\backing\\") + file, std::ios::binary);
        content.write(reinterpret_cast<const char*>(sector.data()), sector.size());
    }
    void expectNothingRun() const { EXPECT_THAT(bench_.log("request=start"), IsEmpty()); }

    static constexpr const char* kChanged =
        "ERROR: [\\\\.\\PhysicalDrive3] is not the drive that was loaded any more: diskpart was not run";
    static constexpr const char* kGone = "ERROR: [\\\\.\\PhysicalDrive3] is not the drive that was loaded any more: "
                                         "what diskpart has changed is not known";
    /// The system does not tell the attribute, as before Windows 7.
    static constexpr const char* kAttributeUntold =
        R"(, "faults": {"requests": [{"request": "IOCTL_DISK_GET_DISK_ATTRIBUTES", "error": "ERROR_INVALID_FUNCTION"}]})";
    static constexpr const char* kReadOnly = R"(, "readOnly": true)";
    static constexpr const char* kMounted =
        R"(, "volumes": [{"letter": "K", "extents": [{"offset": "1 MiB", "length": "8 MiB"}]}])";
};

TEST_F(DiskPartChanges, SetReadOnlySetsTheAttributeAndRefreshesTheFlag) {
    DriveRecord& disk = openDisk();
    EXPECT_EQ(DP_SetReadOnly(view_, disk), 1);
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_EQ(readFile("ScriptReadOnly.txt"), "select disk 3\nattributes disk set readonly\n");
    EXPECT_NE(readFile("Enable RO Results DISK [Model 100%s] - [S1].txt"), "");
    EXPECT_THAT(view_.calls(), ElementsAre("redraw drives"));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPartChanges, ClearReadOnlyClearsTheAttributeAndRefreshesTheFlag) {
    DriveRecord& disk = openDisk(kReadOnly);
    disk.readOnly = 1;
    EXPECT_EQ(DP_ClearReadOnly(view_, disk), 0);
    EXPECT_EQ(disk.readOnly, 0);
    EXPECT_EQ(readFile("ScriptReadOnly.txt"), "select disk 3\nattributes disk clear readonly\n");
    EXPECT_NE(readFile("Disable RO Results DISK [Model 100%s] - [S1].txt"), "");
}

TEST_F(DiskPartChanges, AScriptThatCannotBeWrittenChangesNothing) {
    DriveRecord& disk = openDisk();
    disk.readOnly = 1;
    std::filesystem::create_directory("ScriptReadOnly.txt");
    EXPECT_EQ(DP_SetReadOnly(view_, disk), 0);
    EXPECT_EQ(DP_ClearReadOnly(view_, disk), 0);
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_THAT(events(),
                ElementsAre("ERROR: Could not create DISKPART [ScriptReadOnly.txt] script. ENABLING READ ONLY",
                            "ERROR: Could not create DISKPART [ScriptReadOnly.txt] script. DISBLING READ ONLY"));
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
}

TEST_F(DiskPartChanges, WithoutDiskPartAndASystemThatTellsTheFlagIsReadOnly) {
    DriveRecord& disk = openDisk(kAttributeUntold, R"({"missing": true})");
    EXPECT_EQ(DP_ClearReadOnly(view_, disk), 1);
}

TEST_F(DiskPartChanges, ADrivesTextsCannotLeadTheResultsElsewhere) {
    DriveRecord& disk = openDisk();
    disk.model.assign("..\\..\\a*b?\"c\"");
    disk.serialNumber.assign("../<x>|y:stream\x01");
    EXPECT_EQ(DP_SetReadOnly(view_, disk), 1);
    EXPECT_NE(readFile("Enable RO Results DISK [.._.._a_b__c_] - [..__x__y_stream_].txt"), "");
    EXPECT_EQ(DP_ClearReadOnly(view_, disk), 0);
    EXPECT_NE(readFile("Disable RO Results DISK [.._.._a_b__c_] - [..__x__y_stream_].txt"), "");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPartChanges, TheLongestTextsOfADriveStillMakeAFileName) {
    DriveRecord& disk = openDisk();
    disk.model.assign(std::string(255, 'm'));
    disk.serialNumber.assign(std::string(127, 's'));
    EXPECT_EQ(DP_SetReadOnly(view_, disk), 1);
    EXPECT_NE(readFile("Enable RO Results DISK [" + std::string(80, 'm') + "] - [" + std::string(80, 's') + "].txt"),
              "");
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPartChanges, WhereTheSystemDoesNotTellAChangeIsWhatDiskPartTells) {
    DriveRecord& disk = openDisk(kAttributeUntold);
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kMade);
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_EQ(changeReadOnly(view_, disk, false), DiskChange::kMade);
    EXPECT_EQ(disk.readOnly, 0);
}

TEST_F(DiskPartChanges, AReadOnlyFlagThatIsOnlyAssumedIsNoChange) {
    DriveRecord& disk = openDisk(kAttributeUntold, R"({"output": "There is no disk selected.\r\n"})");
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kNotMade);
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_EQ(DP_SetReadOnly(view_, disk), 1) << "read-only, or not known";
    EXPECT_EQ(changeReadOnly(view_, disk, false), DiskChange::kNotMade);
}

TEST_F(DiskPartChanges, AnAttributeThatIsChangedInAnotherLanguageIsChanged) {
    DriveRecord& disk = openDisk("", acting("Die Datentr\\u00e4gerattribute wurden erfolgreich festgelegt.\\r\\n"));
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kMade);
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_EQ(changeReadOnly(view_, disk, false), DiskChange::kMade);
    EXPECT_EQ(disk.readOnly, 0);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPartChanges, AnAttributeThatDiskPartOnlyClaimsToHaveChangedIsNot) {
    DriveRecord& disk = openDisk("", R"({"output": "Current Read-only State : Yes\r\n"})");
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kNotMade);
    EXPECT_EQ(disk.readOnly, 0) << "what the system tells";
    EXPECT_EQ(DP_SetReadOnly(view_, disk), 0);
}

// diskpart selects by number, whoever has the number.

TEST_F(DiskPartChanges, ADiskThatIsNotTheOneThatWasLoadedIsNotTouched) {
    DriveRecord& disk = openDisk(kMounted);
    disk.sizeBytes += 512;
    EXPECT_EQ(DP_CleanDisk(disk), 0);
    EXPECT_EQ(cleanDrive(disk), DiskChange::kOtherDrive);
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kOtherDrive);
    EXPECT_EQ(changeReadOnly(view_, disk, false), DiskChange::kOtherDrive);
    DP_SetReadOnly(view_, disk);
    expectNothingRun();
    EXPECT_THAT(events(), ElementsAre(kChanged, kChanged, kChanged, kChanged, kChanged));
}

TEST_F(DiskPartChanges, ADiskThatWasPulledIsNotTouched) {
    DriveRecord& disk = openDisk(kMounted);
    bench_.unplug(3);
    EXPECT_EQ(cleanDrive(disk), DiskChange::kOtherDrive);
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kOtherDrive);
    expectNothingRun();
}

TEST_F(DiskPartChanges, WhatDiskPartSaysAfterTheDiskWasPulledIsNotOfThisDisk) {
    DriveRecord& disk = openDisk("", R"({"delayMilliseconds": )" + std::string(testing::kUntilToldToHurry) +
                                         R"(, "output": "DiskPart succeeded in cleaning the disk.\r\n"})");
    EXPECT_EQ(endOfPulledDisk([&] { return cleanDrive(disk); }), DiskChange::kDriveLost);
    EXPECT_EQ(events().back(), kGone);
}

TEST_F(DiskPartChanges, TheAttributeOfAnotherDiskThatGotTheNumberIsNotTakenForThisOnes) {
    DriveRecord& disk = openDisk("", R"({"delayMilliseconds": )" + std::string(testing::kUntilToldToHurry) +
                                         R"(, "output": "Current Read-only State : Yes\r\n"})");
    EXPECT_EQ(endOfPulledDisk([&] { return changeReadOnly(view_, disk, true); }), DiskChange::kDriveLost);
    EXPECT_EQ(events().back(), kGone);
}

TEST_F(DiskPartChanges, AnImageFilesAttributeIsNeverChanged) {
    DriveRecord& disk = openDisk();
    disk.recordKind = kRecordKindImageFile;
    disk.driveNumber = 0;
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kNotMade);
    EXPECT_EQ(changeReadOnly(view_, disk, false), DiskChange::kNotMade);
    DP_SetReadOnly(view_, disk);
    DP_ClearReadOnly(view_, disk);
    EXPECT_FALSE(std::filesystem::exists("ScriptReadOnly.txt"));
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
}

TEST_F(DiskPartChanges, CleanLetsRawWritesThrough) {
    DriveRecord& disk = openDisk(kMounted);
    DWORD written = 0;
    const std::string sector(512, 'x');
    const auto writeSector = [&] {
        SetFilePointer(disk.handle, 2097152, nullptr, FILE_BEGIN);
        return WriteFile(disk.handle, sector.data(), 512, &written, nullptr);
    };
    EXPECT_FALSE(writeSector());
    EXPECT_EQ(DP_CleanDisk(disk), 1);
    EXPECT_TRUE(writeSector());
    EXPECT_EQ(readFile("DPCleanDiskScript.txt"), "select disk 3\nclean\n");
    EXPECT_THAT(readFile("DISKPART Clean Results.txt"), HasSubstr("succeeded"));
    EXPECT_THAT(bench_.log("request=start"),
                ElementsAre(HasSubstr(R"(command-line="diskpart /s DPCleanDiskScript.txt")")));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPartChanges, ACleanScriptThatCannotBeWrittenIsLogged) {
    DriveRecord& disk = openDisk();
    std::filesystem::create_directory("DPCleanDiskScript.txt");
    EXPECT_EQ(DP_CleanDisk(disk), 0);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not create diskpart script file DPCleanDiskScript.txt"));
}

TEST_F(DiskPartChanges, CleanResultsThatCannotBeLoadedAreLogged) {
    DriveRecord& disk = openDisk();
    std::filesystem::create_directory("DISKPART Clean Results.txt");
    EXPECT_EQ(DP_CleanDisk(disk), 0);
    const std::vector<std::string> rows = events();
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(rows.back(), "ERROR: Could nore LOAD [DISKPART Clean Results.txt] to TEST for CLEAR");
}

TEST_F(DiskPartChanges, ACleanThatDoesNotSucceedIsLogged) {
    DriveRecord& disk = openDisk(kReadOnly);
    EXPECT_EQ(DP_CleanDisk(disk), 0);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive3]"));
}

TEST_F(DiskPartChanges, ACleanWithoutDiskPartIsLogged) {
    DriveRecord& disk = openDisk("", R"({"missing": true})");
    EXPECT_EQ(DP_CleanDisk(disk), 0);
    EXPECT_EQ(events().back(), "ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive3]");
}

TEST_F(DiskPartChanges, TheResultsOfAnEarlierCleanAreNotTakenForThisOnes) {
    DriveRecord& disk = openDisk();
    testing::writeFile("DISKPART Clean Results.txt", "DiskPart succeeded in cleaning the disk.\r\n");
    // Somebody reads the old results in a program that lets nobody write.
    const UniqueFile reader(CreateFileA("DISKPART Clean Results.txt", GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(reader);
    EXPECT_EQ(DP_CleanDisk(disk), 0);
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_EQ(events().back(), "ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive3]");
}

TEST_F(DiskPartChanges, NobodyChangesTheScriptWhileDiskPartRuns) {
    DriveRecord& disk = openDisk("", R"({"delayMilliseconds": )" + std::string(testing::kUntilToldToHurry) + "}");
    const auto openForWriting = [] {
        return UniqueFile(CreateFileA("DPCleanDiskScript.txt", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    };
    int cleaned = 0;
    std::thread cleaning([&] { cleaned = DP_CleanDisk(disk); });
    EXPECT_TRUE(bench_.awaitLog("request=start"));
    EXPECT_FALSE(openForWriting());
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    bench_.hurry();
    cleaning.join();
    EXPECT_EQ(cleaned, 1);
    EXPECT_TRUE(openForWriting());
}

TEST_F(DiskPartChanges, ACleanThatIsToldInAnotherLanguageIsOne) {
    DriveRecord& disk = openDisk(kMounted, acting("Der Datentr\\u00e4ger wurde bereinigt.\\r\\n"));
    EXPECT_EQ(cleanDrive(disk), DiskChange::kMade);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_TRUE(isStillTheProbedDisk(disk)) << "the empty table is the drive's own now";
}

TEST_F(DiskPartChanges, EveryChangeOfADiskIsMadeAndToldInGermanToo) {
    DriveRecord& disk = openDisk(kMounted, R"({"language": "de"})");
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kMade);
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_THAT(readFile("DISKPART Results.txt"), HasSubstr("Aktueller schreibgesch\x81tzter Zustand: Ja"));
    EXPECT_EQ(cleanDrive(disk), DiskChange::kNotMade) << "write-protected";
    EXPECT_EQ(changeReadOnly(view_, disk, false), DiskChange::kMade);
    EXPECT_EQ(disk.readOnly, 0);
    EXPECT_EQ(cleanDrive(disk), DiskChange::kMade);
    EXPECT_THAT(readFile("DISKPART Clean Results.txt"), HasSubstr("Der Datentr\x84ger wurde bereinigt."));
    EXPECT_THAT(events(), ElementsAre("ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive3]"));
}

TEST_F(DiskPartChanges, ABlankDiskIsCleanedInAnotherLanguageToo) {
    DriveRecord& disk = openDisk("", acting("Der Datentr\\u00e4ger wurde bereinigt.\\r\\n"));
    EXPECT_EQ(cleanDrive(disk), DiskChange::kMade);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(DiskPartChanges, ACardThatIsPutInDuringTheCleanDoesNotBecomeTheDrive) {
    putPartitionedMbr(0x11111111, "drive3.img");
    putPartitionedMbr(0x22222222, "drive3-swapped.img");
    // The reader does not count its media.
    DriveRecord& disk = openDisk(
        R"(, "removable": true,
            "faults": {"requests": [{"request": "IOCTL_STORAGE_CHECK_VERIFY", "error": "ERROR_INVALID_FUNCTION"}]})",
        R"({"delayMilliseconds": )" + std::string(testing::kUntilToldToHurry) +
            R"(, "output": "Disk 3 is now the selected disk.\r\nDiskPart succeeded in cleaning the disk.\r\n"})");
    rememberPartitionTable(disk);
    DiskChange end = DiskChange::kMade;
    std::thread cleaning([&] { end = cleanDrive(disk); });
    EXPECT_TRUE(bench_.awaitLog("request=start"));
    bench_.swap(3);
    bench_.hurry();
    cleaning.join();
    EXPECT_EQ(end, DiskChange::kDriveLost);
    EXPECT_EQ(events().back(), kGone);
    EXPECT_EQ(disk.partitionTable.get()->mbrSignature, 0x11111111U);
}

TEST_F(DiskPartChanges, ACleanThatLeavesTheTableIsNoneWhateverDiskPartReports) {
    DriveRecord& disk = openDisk(std::string(kMounted) + R"(, "faults": {"clean": "pretended"})");
    EXPECT_EQ(cleanDrive(disk), DiskChange::kNotMade);
    EXPECT_THAT(readFile("DISKPART Clean Results.txt"), HasSubstr("succeeded"));
    EXPECT_THAT(events(), ElementsAre("ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive3]"));
}

TEST_F(DiskPartChanges, AnotherDiskOfTheSameNumberAndSizeIsNotTouched) {
    DriveRecord& disk = openDisk(kMounted);
    bench_.swap(3);
    EXPECT_EQ(cleanDrive(disk), DiskChange::kOtherDrive);
    EXPECT_EQ(changeReadOnly(view_, disk, true), DiskChange::kOtherDrive);
    expectNothingRun();
    bench_.swap(3);
    EXPECT_EQ(cleanDrive(disk), DiskChange::kMade) << "the disk is back";
}

TEST_F(DiskPartChanges, ACleanThatIsRefusedIsNone) {
    DriveRecord& disk = openDisk(std::string(kMounted) + R"(, "faults": {"clean": "refused"})");
    EXPECT_EQ(cleanDrive(disk), DiskChange::kNotMade);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could nore VERIFY partition CLEAR for [\\\\.\\PhysicalDrive3]"));
}

TEST_F(DiskPartChanges, AnImageFileIsNeverCleaned) {
    DriveRecord& disk = openDisk();
    disk.recordKind = kRecordKindImageFile;
    disk.driveNumber = 0;
    EXPECT_EQ(DP_CleanDisk(disk), 0);
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_THAT(events(), SizeIs(1));
}

} // namespace
} // namespace torvane
