#include "discovery/physical_drive_probe.h"

#include "records/smart_type.h"
#include "state/app_state.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"
#include "ui/owned.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Everything behind "target=...", without the path that differs from run to run.
std::string requestOf(const std::string& logLine) {
    const std::size_t at = logLine.find("request=");
    return at == std::string::npos ? logLine : logLine.substr(at);
}

class Probe : public ::testing::Test {
  protected:
    void addDrive(std::string_view json) { bench_.addDrive(json); }

    DriveRecordPtr probe(int driveNumber) {
        if (!opened_) {
            bench_.open();
            opened_ = true;
        }
        return ProbePhysicalDrive(driveNumber);
    }

    std::vector<std::string> requests(const std::string& fields) {
        std::vector<std::string> found;
        for (const std::string& line : bench_.log(fields)) {
            found.push_back(requestOf(line));
        }
        return found;
    }

    /// Everything the event log got, as "CATEGORY: message".
    [[nodiscard]] std::vector<std::string> events() const {
        std::vector<std::string> rows;
        for (const LogRow& row : view_.logRows()) {
            rows.push_back(row.category + ": " + row.message);
        }
        return rows;
    }

  private:
    testing::TestBench bench_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    bool opened_ = false;
};

constexpr std::string_view kSataDisk = R"({
    "number": 0, "bus": "sata", "size": "64 MiB", "road": "ata",
    "identity": {"vendor": "ATA", "product": "DESCRIPTOR PRODUCT", "revision": "REV", "serial": "DESCRIPTORSERIAL"},
    "ata": {"model": "ST1000DM010-2EP102", "serial": "Z9AB12CD", "firmware": "CC43"}
})";

TEST_F(Probe, ASataDiskIsIdentifiedOverAta) {
    addDrive(kSataDisk);
    const DriveRecordPtr record = probe(0);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->model.view(), "ST1000DM010-2EP102");
    EXPECT_EQ(record->vendor.view(), "ATA");
    EXPECT_EQ(record->product.view(), "DESCRIPTOR PRODUCT");
    EXPECT_EQ(record->busText.view(), "Serial ATA");
    EXPECT_EQ(record->busType, 11);
    EXPECT_EQ(record->smartType, 1000);
    EXPECT_EQ(record->busCode, 2001);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Probe, AnAtaDiskIsIdentifiedOverAta) {
    addDrive(R"({"number": 3, "bus": "ata", "size": "64 MiB", "road": "ata", "ata": {"model": "OLD DISK"}})");
    const DriveRecordPtr record = probe(3);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->model.view(), "OLD DISK");
    EXPECT_EQ(record->smartType, 1000);
    EXPECT_EQ(record->busCode, 2001);
    EXPECT_EQ(record->busText.view(), "ATA");
}

TEST_F(Probe, AScsiDiskIsIdentifiedOverAtaAndKeepsItsSmartTypeUnknown) {
    addDrive(R"({"number": 2, "bus": "scsi", "size": "64 MiB", "road": "ata",
                 "identity": {"product": "NOT THIS"}, "ata": {"model": "SCSI BUS DISK", "serial": "SC-1"}})");
    const DriveRecordPtr record = probe(2);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->model.view(), "SCSI BUS DISK");
    EXPECT_EQ(record->smartType, 1003);
    EXPECT_EQ(smartTypeText(record->smartType), "UNKNOWN SMART TYPE");
    EXPECT_EQ(record->busCode, 2001);
}

TEST_F(Probe, AUsbDiskTakesItsVendorTextAsModelAndIsLogged) {
    addDrive(R"({"number": 1, "bus": "usb", "size": "64 MiB", "road": "sat",
                 "identity": {"vendor": "JMicron", "product": "Generic", "serial": "DD56419"}})");
    const DriveRecordPtr record = probe(1);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->model.view(), "JMicron");
    EXPECT_EQ(record->smartType, 1000);
    EXPECT_EQ(record->busCode, 2000);
    EXPECT_THAT(events(), ElementsAre("DIAG: USB PHYS [\\\\.\\PhysicalDrive1]"));
    EXPECT_THAT(requests("target=drive:1 command=IDENTIFY_DEVICE"), IsEmpty());
}

TEST_F(Probe, ARaidDiskTakesItsProductTextAsModel) {
    addDrive(
        R"({"number": 4, "bus": "raid", "size": "64 MiB", "identity": {"vendor": "Intel", "product": "Raid 1 Volume"}})");
    const DriveRecordPtr record = probe(4);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->model.view(), "Raid 1 Volume");
    EXPECT_EQ(record->smartType, 1000);
    EXPECT_EQ(record->busCode, 2001);
    EXPECT_THAT(requests("target=drive:4 command=IDENTIFY_DEVICE"), IsEmpty());
}

TEST_F(Probe, AnNvmeDiskTakesItsProductTextAsModelAndIsNeverSentTheAtaIdentify) {
    addDrive(
        R"({"number": 5, "bus": "nvme", "size": "64 MiB", "road": "nvme-query",
                 "identity": {"product": "Samsung SSD 980 PRO 1TB", "serial": "0025_3856_11B0_1234."}})");
    const DriveRecordPtr record = probe(5);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->model.view(), "Samsung SSD 980 PRO 1TB");
    EXPECT_EQ(record->serialNumber.view(), "0025_3856_11B0_1234.");
    EXPECT_EQ(record->smartType, 1002);
    EXPECT_EQ(record->busCode, 2003);
    EXPECT_THAT(requests("target=drive:5 request=SMART_RCV_DRIVE_DATA"), IsEmpty());
}

TEST_F(Probe, IdentifyOverAtaOverwritesTheStartOfTheDescriptorsTexts) {
    addDrive(kSataDisk);
    const DriveRecordPtr record = probe(0);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->serialNumber.view(),
              "Z9AB12CD"); // 20 characters written over 16, then trimmed
    EXPECT_EQ(record->firmware.view(), "CC43");
}

TEST_F(Probe, AFirmwareTextShorterThanTheEarlierOneLeavesItsTail) {
    addDrive(R"({"number": 0, "bus": "sata", "size": "64 MiB", "road": "ata",
                 "ata": {"model": "M", "serial": "S", "firmware": "CC43"}})");
    const DriveRecordPtr record = probe(0);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->firmware.view(), "CC43    lable");
}

TEST_F(Probe, WhenIdentifyFailsTheModelIsEmptyAndTheDescriptorsTextsStay) {
    for (const std::string_view bus : {"sata", "ata", "scsi"}) {
        testing::TestBench bench;
        bench.addDrive(
            R"({"number": 0, "size": "64 MiB", "road": "ata", "ata": {"model": "M", "identifyFails": true},
                           "identity": {"product": "P", "revision": "R1", "serial": "S1"}, "bus": ")" +
            std::string(bus) + "\"}");
        bench.open();
        const DriveRecordPtr record = ProbePhysicalDrive(0);
        ASSERT_TRUE(record) << bus;
        EXPECT_EQ(record->model.view(), "") << bus;
        EXPECT_EQ(record->serialNumber.view(), "S1") << bus;
        EXPECT_EQ(record->firmware.view(), "R1") << bus;
        EXPECT_EQ(identifyOverAta(*record), 0) << bus;
    }
}

TEST_F(Probe, EveryRequestHasItsExactLengthsAndOrder) {
    addDrive(kSataDisk);
    ASSERT_TRUE(probe(0));
    EXPECT_THAT(requests("target=drive:0"),
                ElementsAre(HasSubstr("request=open path=\"\\\\\\\\.\\\\PhysicalDrive0\" access=rw result=ok"),
                            HasSubstr("request=IOCTL_DISK_GET_DRIVE_GEOMETRY_EX in=0 out=33"),
                            ::testing::AllOf(HasSubstr("request=IOCTL_STORAGE_QUERY_PROPERTY"),
                                             HasSubstr("in=12 out=551"), HasSubstr("property=StorageDeviceProperty")),
                            ::testing::AllOf(HasSubstr("request=IOCTL_STORAGE_QUERY_PROPERTY"),
                                             HasSubstr("in=29 out=540"), HasSubstr("property=StorageAdapterProperty")),
                            ::testing::AllOf(HasSubstr("request=SMART_RCV_DRIVE_DATA"), HasSubstr("in=32 out=528"),
                                             HasSubstr("command=IDENTIFY_DEVICE")),
                            HasSubstr("request=close")));
}

TEST_F(Probe, IdentifySelectsTheDeviceByTheDriveNumber) {
    addDrive(R"({"number": 6, "bus": "sata", "size": "64 MiB", "road": "ata"})");
    addDrive(R"({"number": 7, "bus": "sata", "size": "64 MiB", "road": "ata"})");
    ASSERT_TRUE(probe(6));
    ASSERT_TRUE(probe(7));
    EXPECT_THAT(requests("target=drive:6 request=SMART_RCV_DRIVE_DATA"),
                ElementsAre(HasSubstr("data=000000000001010000a0ec0006000000")));
    EXPECT_THAT(requests("target=drive:7 request=SMART_RCV_DRIVE_DATA"),
                ElementsAre(HasSubstr("data=000000000001010000b0ec0007000000")));
}

TEST_F(Probe, EveryFieldHasItsStartingValue) {
    addDrive(
        R"({"number": 19, "bus": "raid", "size": 1000204886016, "identity": {"product": "P"},
                 "adapter": {"busMajorVersion": 770, "busMinorVersion": 1284}})");
    const DriveRecordPtr record = probe(19);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->devicePath.view(), "\\\\.\\PhysicalDrive19");
    EXPECT_EQ(record->driveNumber, 19);
    EXPECT_EQ(record->identifyDriveNumber, 19);
    EXPECT_EQ(record->recordKind, 1000);
    EXPECT_EQ(record->smartLoaded, 0);
    EXPECT_EQ(record->systemDrive, 0);
    EXPECT_EQ(record->smartErrorFlag, 0);
    EXPECT_EQ(record->securityEnabled, 0);
    EXPECT_EQ(record->readOnly, 0);
    EXPECT_EQ(record->bitLockerEntryCount, 0);
    EXPECT_EQ(record->shortTestResult, ReadTestResult::kNotPerformed);
    EXPECT_EQ(record->criticalTestResult, ReadTestResult::kNotPerformed);
    EXPECT_EQ(record->nistTestResult, ReadTestResult::kNotPerformed);
    EXPECT_EQ(record->disk[Counter::kPowerOnHours], -1);
    EXPECT_EQ(record->disk[Counter::kReallocatedSectors], -1);
    EXPECT_EQ(record->disk[Counter::kReportedUncorrectable], -1);
    EXPECT_EQ(record->disk[Counter::kReallocationEvents], -1);
    EXPECT_EQ(record->disk[Counter::kPendingSectors], -1);
    EXPECT_EQ(record->disk[Counter::kOfflineUncorrectable], -1);
    Counters zeros;
    zeros.fill(0);
    EXPECT_EQ(record->ssd, zeros);
    EXPECT_EQ(record->bytesPerSector, 512);
    EXPECT_EQ(record->sizeBytes, 1000204886016);
    EXPECT_EQ(record->sizeSectors, 1953525168);
    EXPECT_DOUBLE_EQ(record->sizeGigabytes, 1000204886016 / 1073741824.0);
    // The versions 0302h and 0504h stand one byte further on than they are read.
    EXPECT_EQ(record->busMajorVersion, 0x0200);
    EXPECT_EQ(record->busMinorVersion, 0x0403);
}

TEST_F(Probe, ADriveOfLargeSectorsStillCountsUnitsOf512Bytes) {
    addDrive(R"({"number": 0, "bus": "nvme", "size": "64 MiB", "sectorSize": 4096})");
    const DriveRecordPtr record = probe(0);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->bytesPerSector, 4096);
    EXPECT_EQ(record->sizeSectors, 64 * 1024 * 2);
}

TEST_F(Probe, SerialIsTrimmedAndMustBePrintable) {
    addDrive(R"({"number": 0, "bus": "nvme", "size": "1 MiB", "identity": {"serial": "  S N 1  "}})");
    addDrive(R"({"number": 1, "bus": "nvme", "size": "1 MiB", "identity": {"serial": " "}})");
    addDrive(R"({"number": 2, "bus": "nvme", "size": "1 MiB", "identity": {"serial": "SN\u00021"}})");
    addDrive(R"({"number": 3, "bus": "nvme", "size": "1 MiB"})");
    EXPECT_EQ(probe(0)->serialNumber.view(), "S N 1");
    EXPECT_EQ(probe(1)->serialNumber.view(), " ");
    EXPECT_EQ(probe(2)->serialNumber.view(), "Not Available");
    EXPECT_EQ(probe(3)->serialNumber.view(), "Not Available");
}

TEST_F(Probe, HostileTextsStopAtTheirFieldsEndAndNeverReachTheFormatter) {
    addDrive(R"({"number": 0, "bus": "usb", "size": "1 MiB",
                 "identity": {"vendor": ")" +
             std::string(500, 'V') + R"("}})");
    addDrive(R"({"number": 1, "bus": "nvme", "size": "1 MiB",
                 "identity": {"vendor": "%n%s", "product": "100%% %s%n disk", "revision": "%x", "serial": "A%dB"}})");
    const DriveRecordPtr longText = probe(0);
    EXPECT_EQ(longText->vendor.view(), std::string(63, 'V'));
    EXPECT_EQ(longText->model.view(), std::string(63, 'V'));
    const DriveRecordPtr percent = probe(1);
    EXPECT_EQ(percent->vendor.view(), "");
    EXPECT_EQ(percent->model.view(), "100%  disk");
    EXPECT_EQ(percent->firmware.view(), "");
    EXPECT_EQ(percent->serialNumber.view(), "AB");
}

TEST_F(Probe, OffsetsOutsideWhatTheDeviceReturnedReadAsAbsent) {
    addDrive(
        R"({"number": 0, "bus": "nvme", "size": "1 MiB", "identity": {"product": "PRODUCT"},
                 "descriptor": {"vendorOffset": 4294967295, "revisionOffset": 551, "serialOffset": 2000000000}})");
    addDrive(
        R"({"number": 1, "bus": "nvme", "size": "1 MiB", "identity": {"product": "PRODUCT"},
                 "descriptor": {"returnedLength": 40}})");
    const DriveRecordPtr offsets = probe(0);
    ASSERT_TRUE(offsets);
    EXPECT_EQ(offsets->vendor.view(), "Not Available");
    EXPECT_EQ(offsets->product.view(), "PRODUCT");
    EXPECT_EQ(offsets->firmware.view(), "Not Available");
    EXPECT_EQ(offsets->serialNumber.view(), "Not Available");
    const DriveRecordPtr cut = probe(1);
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->product.view(), "PROD");
}

TEST_F(Probe, AMissingDriveGivesNothingAndLogsNothing) {
    addDrive(R"({"number": 0, "bus": "nvme", "size": "1 MiB"})");
    EXPECT_FALSE(probe(1));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Probe, ADriveThatCannotBeOpenedGivesNothingAndLogsNothing) {
    addDrive(R"({"number": 0, "bus": "nvme", "size": "1 MiB", "faults": {"open": "ERROR_ACCESS_DENIED"}})");
    EXPECT_FALSE(probe(0));
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Probe, ADriveWithoutGeometryGivesNothingLogsNothingAndIsClosed) {
    addDrive(
        R"({"number": 0, "bus": "nvme", "size": "1 MiB", "faults": {"requests":
                 [{"request": "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX", "error": "ERROR_IO_DEVICE"}]}})");
    EXPECT_FALSE(probe(0));
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_THAT(requests("target=drive:0 request=close"), SizeIs(1));
}

TEST_F(Probe, ADriveWithoutStorageDescriptorIsRejectedAsBusZeroWithAnEmptyText) {
    addDrive(
        R"({"number": 3, "bus": "sata", "size": "1 MiB", "faults": {"requests":
                 [{"request": "StorageDeviceProperty", "error": "ERROR_NOT_SUPPORTED"}]}})");
    EXPECT_FALSE(probe(3));
    EXPECT_THAT(events(), ElementsAre("FAILURE: Unsupported Bus Type [] BUS: [0] for Physical Device [3]"));
    EXPECT_THAT(requests("target=drive:3 request=close"), SizeIs(1));
}

TEST_F(Probe, ADriveWithoutAdapterDescriptorIsKeptWithoutBusVersion) {
    addDrive(
        R"({"number": 0, "bus": "nvme", "size": "1 MiB", "faults": {"requests":
                 [{"request": "StorageAdapterProperty", "error": "ERROR_NOT_SUPPORTED"}]}})");
    const DriveRecordPtr record = probe(0);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->busMajorVersion, 0);
    EXPECT_EQ(record->busMinorVersion, 0);
}

struct Unsupported {
    int busType;
    const char* text;
};

class UnsupportedBus : public Probe, public ::testing::WithParamInterface<Unsupported> {};

TEST_P(UnsupportedBus, IsLoggedAndRejectedAndItsHandleClosed) {
    const std::string number = std::to_string(GetParam().busType);
    addDrive(R"({"number": 9, "size": "1 MiB", "identity": {"product": "P"}, "bus": )" + number + "}");
    EXPECT_FALSE(probe(9));
    EXPECT_THAT(events(), ElementsAre("FAILURE: Unsupported Bus Type [" + std::string(GetParam().text) + "] BUS: [" +
                                      number + "] for Physical Device [9]"));
    EXPECT_THAT(requests("target=drive:9 request=close"), SizeIs(1));
    EXPECT_THAT(requests("target=drive:9 command=IDENTIFY_DEVICE"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(OfTheTable, UnsupportedBus,
                         ::testing::Values(Unsupported{0, "Unknown"}, Unsupported{2, "ATAPI"},
                                           Unsupported{4, "IEEE 1394"}, Unsupported{5, "SSA"},
                                           Unsupported{6, "Fibre Channel"}, Unsupported{9, "iSCSI"},
                                           Unsupported{10, "Serial Attached SCSI"}, Unsupported{12, "Secure Digital"},
                                           Unsupported{13, "Multi-Media Card"}, Unsupported{14, "Virtual Disk"},
                                           Unsupported{15, "Virtual File Disk"}, Unsupported{16, "Storage Spaces"}));

INSTANTIATE_TEST_SUITE_P(BeyondTheTable, UnsupportedBus,
                         ::testing::Values(Unsupported{18, "Unknown"}, Unsupported{127, "Unknown"}));

TEST_F(Probe, TheRecordHoldsItsDeviceOpenAndClosesItAtItsEnd) {
    addDrive(kSataDisk);
    DriveRecordPtr record = probe(0);
    ASSERT_TRUE(record);
    ASSERT_NE(record->handle, nullptr);
    std::array<char, 512> sector{};
    DWORD count = 0;
    EXPECT_TRUE(ReadFile(record->handle, sector.data(), sector.size(), &count, nullptr));
    EXPECT_THAT(requests("target=drive:0 request=close"), IsEmpty());
    record.reset();
    EXPECT_THAT(requests("target=drive:0 request=close"), SizeIs(1));
}

TEST_F(Probe, AnotherHandleOfTheSameDriveIsIndependentOfTheRecords) {
    addDrive(kSataDisk);
    const DriveRecordPtr record = probe(0);
    ASSERT_TRUE(record);
    const UniqueHandle own(openDriveByNumber(0));
    ASSERT_TRUE(own);
    EXPECT_NE(own.get(), record->handle);
    EXPECT_EQ(openDriveByNumber(1), nullptr);
}

TEST_F(Probe, NoHandleIsLeftBehindByAnyOutcome) {
    addDrive(kSataDisk);
    addDrive(R"({"number": 1, "bus": "iscsi", "size": "1 MiB"})");
    addDrive(
        R"({"number": 2, "bus": "nvme", "size": "1 MiB", "faults": {"requests":
                 [{"request": "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX", "error": "ERROR_IO_DEVICE"}]}})");
    ASSERT_TRUE(probe(0));
    const DWORD before = testing::openHandleCount();
    for (int round = 0; round < 50; ++round) {
        for (int number = 0; number < 20; ++number) {
            probe(number);
        }
    }
    EXPECT_LE(testing::lowestHandleCount(before), before);
}

} // namespace
} // namespace torvane
