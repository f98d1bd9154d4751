#include "scan/monitoring_dispatch.h"

#include "discovery/physical_drive_probe.h"
#include "health/panel_model.h"
#include "monitoring/smart_report.h"
#include "state/app_state.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::IsEmpty;

constexpr const char* kSolidStateReport = "Rotation Rate:    Solid State Device\r\n"
                                          "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    11\r\n";

class MonitoringDispatch : public ::testing::Test {
  protected:
    DriveRecordPtr probeOnly(const std::string& json) {
        bench_.addDrive(json);
        bench_.open();
        return ProbePhysicalDrive(0);
    }

    testing::TestBench bench_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
};

void expectNvmeUnread(const DriveRecord& record) {
    EXPECT_EQ(record.nvme.criticalWarning, -1);
    EXPECT_EQ(record.nvme.availableSpare, -1);
    EXPECT_EQ(record.nvme.availableSpareThreshold, -1);
    EXPECT_EQ(record.nvme.percentageUsed, -1);
    EXPECT_EQ(record.nvme.dataUnitsRead, -1);
    EXPECT_EQ(record.nvme.dataUnitsWritten, -1);
    EXPECT_EQ(record.nvme.powerOnHours, -1);
    EXPECT_EQ(record.nvme.errorLogEntries, -1);
}

TEST_F(MonitoringDispatch, AnNvmeDriveIsReadByTheStorageQuery) {
    const DriveRecordPtr record = probeOnly(
        R"({"number": 0, "bus": "nvme", "size": "1 MiB", "road": "nvme-query",
        "nvme": {"health": {"percentageUsed": 12, "availableSpare": 99}}})");
    ASSERT_TRUE(record);
    record->smartText = kSolidStateReport;
    EXPECT_EQ(dispatchMonitoring(*record), 1);
    EXPECT_EQ(record->nvme.percentageUsed, 12);
    EXPECT_EQ(record->nvme.availableSpare, 99);
    EXPECT_EQ(record->smartType, 1002);
    EXPECT_EQ(record->ssd[Counter::kReallocatedSectors],
              0); // a transport answered: the attribute pass never ran
}

TEST_F(MonitoringDispatch, AUsbDriveIsReadThroughItsBridge) {
    const DriveRecordPtr record = probeOnly(
        R"({"number": 0, "bus": "usb", "size": "1 MiB", "road": "usb-bridge",
        "nvme": {"model": "NVME IN A BOX", "health": {"percentageUsed": 7}}})");
    ASSERT_TRUE(record);
    EXPECT_EQ(dispatchMonitoring(*record), 1);
    EXPECT_EQ(record->nvme.percentageUsed, 7);
    EXPECT_EQ(record->smartType, 1002);
}

TEST_F(MonitoringDispatch, ADirectDriveIsReadThroughTheRaidDriver) {
    const DriveRecordPtr record = probeOnly(
        R"({"number": 0, "bus": "raid", "size": "1 MiB", "road": "raid-miniport",
        "nvme": {"model": "NVME BEHIND RAID", "health": {"percentageUsed": 8}}})");
    ASSERT_TRUE(record);
    EXPECT_EQ(dispatchMonitoring(*record), 1);
    EXPECT_EQ(record->nvme.percentageUsed, 8);
    EXPECT_EQ(record->smartType, 1002);
}

TEST_F(MonitoringDispatch, ADirectDriveThatTheRaidDriverDoesNotKnowIsReadByTheStorageQuery) {
    const DriveRecordPtr record = probeOnly(
        R"({"number": 0, "bus": "raid", "size": "1 MiB", "road": "nvme-query",
        "nvme": {"health": {"percentageUsed": 9}}})");
    ASSERT_TRUE(record);
    EXPECT_EQ(dispatchMonitoring(*record), 1);
    EXPECT_EQ(record->nvme.percentageUsed, 9);
}

TEST_F(MonitoringDispatch, WithoutAnNvmeRoadTheAttributesOfASolidStateDeviceAreRead) {
    const DriveRecordPtr record = probeOnly(R"({"number": 0, "bus": "raid", "size": "1 MiB"})");
    ASSERT_TRUE(record);
    record->smartText = kSolidStateReport;
    EXPECT_EQ(dispatchMonitoring(*record), 1);
    expectNvmeUnread(*record);
    EXPECT_EQ(record->ssd[Counter::kReallocatedSectors], 11);
    EXPECT_EQ(record->smartType, 1001);
}

TEST_F(MonitoringDispatch, AFlashDriveThatThePassDoesNotTakeForOneHasItsDialsAtZero) {
    const DriveRecordPtr record = probeOnly(R"({"number": 0, "bus": "sata", "size": "1 MiB"})");
    ASSERT_TRUE(record);
    record->smartText = "Rotation Rate:    Solid State Drive\r\n"
                        "  5 Reallocated_Sector_Ct   PO--CK   100   100   010    -    11\r\n";
    record->smartLoaded = 1;
    std::vector<AttributeFinding> findings;
    EXPECT_EQ(parseSmartReport(*record, findings), 1);
    EXPECT_EQ(dispatchMonitoring(*record), 1);
    EXPECT_EQ(record->smartType, 1001);
    const PanelModel panel = buildPanelModel(record.get(), {});
    for (const Dial& dial : panel.dials) {
        EXPECT_NE(dial.caption, "");
        EXPECT_EQ(dial.needleEnd, NeedleEndPoint(0.0, 55.0, dial.pivot)) << dial.caption;
    }
}

TEST_F(MonitoringDispatch, WithoutAnyDataTheNvmeValuesAreNotReadAndTheTypeStays) {
    const DriveRecordPtr record = probeOnly(R"({"number": 0, "bus": "usb", "size": "1 MiB"})");
    ASSERT_TRUE(record);
    EXPECT_EQ(dispatchMonitoring(*record), 1);
    expectNvmeUnread(*record);
    EXPECT_EQ(record->smartType, 1000);
    EXPECT_THAT(view_.messages("ERROR"), IsEmpty());
}

TEST_F(MonitoringDispatch, OtherAccessPathsSendNoRequest) {
    const DriveRecordPtr record = probeOnly(R"({"number": 0, "bus": "nvme", "size": "1 MiB", "road": "nvme-query"})");
    ASSERT_TRUE(record);
    for (const std::int32_t busCode : {2002, 2004}) {
        record->busCode = busCode;
        const auto before = bench_.log("target=drive:0").size();
        EXPECT_EQ(dispatchMonitoring(*record), 1);
        EXPECT_EQ(bench_.log("target=drive:0").size(), before) << busCode;
        expectNvmeUnread(*record);
    }
}

} // namespace
} // namespace torvane
