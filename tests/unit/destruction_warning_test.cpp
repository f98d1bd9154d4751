#include "admin/destruction_warning.h"

#include "discovery/drive_volumes.h"
#include "discovery/volume_table.h"
#include "records/drive_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace torvane {

static void PrintTo(const WarningRow& row, std::ostream* out) {
    *out << row.type << " | " << row.name << " | " << row.relation;
}

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class DestructionWarning : public ::testing::Test {
  protected:
    DestructionWarning() {
        resetVolumeTable(volumes_);
        drive_.recordKind = kRecordKindPhysicalDrive;
        drive_.driveNumber = 3;
        drive_.model.assign("Tarn S2000");
        drive_.serialNumber.assign("TS-77");
    }

    void addVolume(char letter, const std::vector<std::uint32_t>& disks) {
        std::vector<VolumeExtent> extents;
        extents.reserve(disks.size());
        for (const std::uint32_t disk : disks) {
            extents.push_back({.diskNumber = disk, .startingOffset = 1048576, .length = 4096});
        }
        appendVolume(volumes_, letter, extents);
    }

    [[nodiscard]] std::vector<WarningRow> rows() const {
        std::vector<std::wstring> roots;
        for (const char letter : volumeLettersOn(drive_, volumes_)) {
            roots.push_back({static_cast<wchar_t>(letter), L':', L'\\'});
        }
        return warningRows(
            drive_, roots,
            [this](const std::wstring& root) -> std::optional<VolumeIdentity> {
                const auto found = identities_.find(static_cast<char>(root.front()));
                return found == identities_.end() ? std::nullopt : std::optional(found->second);
            },
            notTold);
    }
    static std::optional<std::uint64_t> notTold(const std::wstring&) { return std::nullopt; }

    DriveRecord drive_;
    VolumeTable volumes_;
    std::map<char, VolumeIdentity> identities_;
};

TEST_F(DestructionWarning, NamesTheDriveByNumberModelAndSerialNumber) {
    EXPECT_THAT(rows(), ElementsAre(WarningRow{"PHYSICAL", "003 - Tarn S2000 TS-77", "DESTINATION"}));
}

TEST_F(DestructionWarning, ListsTheVolumesOfTheDriveAlone) {
    addVolume('C', {0});
    addVolume('K', {3});
    addVolume('L', {4});
    addVolume('M', {3});
    identities_['K'] = {"Backup", 0x1A2B3C4D};
    identities_['M'] = {"Music", 0x00010002};
    EXPECT_THAT(rows(), ElementsAre(WarningRow{"PHYSICAL", "003 - Tarn S2000 TS-77", "DESTINATION"},
                                    WarningRow{"VOLUME", "K:\\ - Backup - 1A2B-3C4D", "RELATED VOLUME"},
                                    WarningRow{"VOLUME", "M:\\ - Music - 0001-0002", "RELATED VOLUME"}));
}

TEST_F(DestructionWarning, VolumeWithoutALabelHasAnEmptyOne) {
    addVolume('K', {3});
    identities_['K'] = {"", 0xFFFFFFFF};
    EXPECT_EQ(rows().back().name, "K:\\ -  - FFFF-FFFF");
}

TEST_F(DestructionWarning, VolumeThatDoesNotAnswerIsListedAllTheSame) {
    addVolume('K', {3});
    EXPECT_EQ(rows().back(), (WarningRow{"VOLUME", "K:\\ - Not Available - 0000-0000", "RELATED VOLUME"}));
}

TEST_F(DestructionWarning, VolumeOfSeveralExtentsIsOneRow) {
    addVolume('K', {3, 5, 3});
    EXPECT_THAT(rows(), SizeIs(2));
    drive_.driveNumber = 5;
    EXPECT_THAT(rows(), SizeIs(2));
}

TEST_F(DestructionWarning, ListIsAsLongAsTheDriveHasVolumes) {
    for (char letter = 'D'; letter <= 'Z'; ++letter) {
        addVolume(letter, {3});
    }
    EXPECT_THAT(rows(), SizeIs(24));
    EXPECT_THAT(volumeLettersOn(drive_, volumes_), SizeIs(23));
}

TEST_F(DestructionWarning, FullVolumeTableIsReadToItsEnd) {
    for (int i = 0; i < 60; ++i) {
        addVolume(static_cast<char>('D' + i % 20), {3});
    }
    EXPECT_THAT(volumeLettersOn(drive_, volumes_), SizeIs(20));
}

TEST_F(DestructionWarning, DevicesTextsAreNoFormats) {
    drive_.model.assign("100%s %n");
    drive_.serialNumber.assign("%d");
    addVolume('K', {3});
    identities_['K'] = {"%s%s%n", 1};
    EXPECT_THAT(rows(), ElementsAre(WarningRow{"PHYSICAL", "003 - 100%s %n %d", "DESTINATION"},
                                    WarningRow{"VOLUME", "K:\\ - %s%s%n - 0000-0001", "RELATED VOLUME"}));
}

TEST_F(DestructionWarning, ImageFileHasNoVolumesOfTheDiskWithItsNumber) {
    drive_.recordKind = kRecordKindImageFile;
    drive_.driveNumber = 0;
    addVolume('C', {0});
    EXPECT_THAT(volumeLettersOn(drive_, volumes_), IsEmpty());
    EXPECT_THAT(rows(), SizeIs(1));
    EXPECT_FALSE(holdsVolume(drive_, volumes_, 'C'));
}

TEST_F(DestructionWarning, DriveHoldsItsOwnVolumesAlone) {
    addVolume('C', {0});
    addVolume('K', {0, 3});
    EXPECT_TRUE(holdsVolume(drive_, volumes_, 'K'));
    EXPECT_FALSE(holdsVolume(drive_, volumes_, 'C'));
    EXPECT_FALSE(holdsVolume(drive_, volumes_, 'L'));
    EXPECT_FALSE(holdsVolume(drive_, volumes_, 'k')) << "letters are upper case";
}

TEST_F(DestructionWarning, VolumeWithoutALetterIsListedByItsFolderOrItsLength) {
    const auto nameless = [](const std::wstring&) { return std::optional(VolumeIdentity{"Data", 0x00010002}); };
    const auto hundred = [](const std::wstring& root) {
        return root == L"\\\\?\\Volume{1}\\" ? std::optional<std::uint64_t>(100ULL << 20U) : std::nullopt;
    };
    const std::vector<std::wstring> roots{L"C:\\mnt\\", L"\\\\?\\Volume{1}\\", L"C:\\\x00fc\\", L"\\\\?\\Volume{2}\\"};
    const std::vector<WarningRow> listed = warningRows(drive_, roots, nameless, hundred);
    ASSERT_THAT(listed, SizeIs(5));
    EXPECT_EQ(listed[1].name, "C:\\mnt\\ - Data - 0001-0002");
    EXPECT_EQ(listed[2],
              (WarningRow{"VOLUME", "a volume without letter, 100 MB - Data - 0001-0002", "RELATED VOLUME"}));
    EXPECT_EQ(listed[3].name, "C:\\?\\ - Data - 0001-0002");
    EXPECT_EQ(listed[4].name, "a volume without letter - Data - 0001-0002") << "it does not tell its length";
}

TEST_F(DestructionWarning, TellsTheDrivesNumberAndItsSizeToTheByte) {
    drive_.sizeBytes = 2000398934016;
    drive_.sizeGigabytes = 1863.02;
    EXPECT_EQ(warningDetails(drive_, ""), "Drive number 3, 1863.02 GB (2000398934016 bytes)");
}

TEST_F(DestructionWarning, TellsBothSerialNumbersWhereReportAndDriveDisagree) {
    const std::string alone = warningDetails(drive_, "");
    drive_.device.identifySerial = "TS-77";
    EXPECT_EQ(warningDetails(drive_, ""), alone);
    drive_.device.identifySerial = "ts-77 ";
    EXPECT_EQ(warningDetails(drive_, ""), alone) << "one number, written otherwise";
    drive_.device.identifySerial = "TS-99";
    EXPECT_EQ(warningDetails(drive_, ""), alone + "\nSerial number by its report: TS-77, by the drive itself: TS-99");
    drive_.device.identifySerial.clear();
    drive_.device.descriptor = StorageDeviceTexts{};
    drive_.device.descriptor->serialNumber = "TS-55";
    EXPECT_EQ(warningDetails(drive_, ""), alone + "\nSerial number by its report: TS-77, by the drive itself: TS-55");
}

TEST_F(DestructionWarning, TellsWhatIsPrintedOnTheDrive) {
    const std::string alone = warningDetails(drive_, "");
    drive_.printed.serialNumber = "TS-77";
    EXPECT_EQ(warningDetails(drive_, ""), alone);
    drive_.printed.serialNumber = "HG51-2290";
    EXPECT_EQ(warningDetails(drive_, ""), alone + "\nPrinted on the drive: serial number HG51-2290");
}

TEST_F(DestructionWarning, TellsFirstWhatMayKeepSomebodyFromTheWrongDrive) {
    const std::string alone = warningDetails(drive_, "");
    drive_.printed.serialNumber = "HG51-2290";
    drive_.device.identifySerial = "TS-99";
    EXPECT_EQ(warningDetails(drive_, "Look twice"),
              alone + "\nLook twice\nSerial number by its report: TS-77, by the drive itself: TS-99\n"
                      "Printed on the drive: serial number HG51-2290");
}

TEST_F(DestructionWarning, SystemDriveIsTheMarkedOneAndTheOneWithVolumeC) {
    EXPECT_FALSE(isSystemDrive(drive_, volumes_));
    addVolume('D', {3});
    addVolume('C', {2});
    EXPECT_FALSE(isSystemDrive(drive_, volumes_));
    drive_.driveNumber = 2;
    EXPECT_TRUE(isSystemDrive(drive_, volumes_));
    drive_.driveNumber = 7;
    drive_.systemDrive = 1;
    EXPECT_TRUE(isSystemDrive(drive_, volumes_));
}

TEST_F(DestructionWarning, NoLetterIsHeldByNoDrive) {
    addVolume('\0', {3});
    EXPECT_FALSE(holdsVolume(drive_, volumes_, 0));
}

} // namespace
} // namespace torvane
