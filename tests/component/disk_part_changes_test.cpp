#include "admin/disk_part.h"
#include "tests/component/copy_bench.h"
#include "ui/owned.h"

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

TEST_F(DiskPartChanges, WithoutDiskPartTheFlagIsReadOnly) {
    DriveRecord& disk = openDisk("", R"({"missing": true})");
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

TEST_F(DiskPartChanges, AChangeIsTrueOnlyWhenDiskPartTellsSo) {
    DriveRecord& disk = openDisk();
    EXPECT_TRUE(changeReadOnly(view_, disk, true));
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_TRUE(changeReadOnly(view_, disk, false));
    EXPECT_EQ(disk.readOnly, 0);
}

TEST_F(DiskPartChanges, AReadOnlyFlagThatIsOnlyAssumedIsNoChange) {
    DriveRecord& disk = openDisk("", R"({"output": "There is no disk selected.\r\n"})");
    EXPECT_FALSE(changeReadOnly(view_, disk, true));
    EXPECT_EQ(disk.readOnly, 1);
    EXPECT_EQ(DP_SetReadOnly(view_, disk), 1) << "read-only, or not known";
    EXPECT_FALSE(changeReadOnly(view_, disk, false));
}

TEST_F(DiskPartChanges, AnImageFilesAttributeIsNeverChanged) {
    DriveRecord& disk = openDisk();
    disk.recordKind = kRecordKindImageFile;
    disk.driveNumber = 0;
    EXPECT_FALSE(changeReadOnly(view_, disk, true));
    EXPECT_FALSE(changeReadOnly(view_, disk, false));
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
