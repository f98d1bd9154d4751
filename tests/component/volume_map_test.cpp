#include "discovery/volume_map.h"

#include "discovery/physical_drive_probe.h"
#include "state/app_state.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace torvane {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class VolumeMap : public ::testing::Test {
  protected:
    ~VolumeMap() override {
        state().scan.driveCount = 0;
        for (DriveRecordPtr& record : state().scan.drives) {
            record.reset();
        }
    }

    static AppState& state() { return appState(); }
    static const VolumeTable& volumes() { return state().scan.volumes; }
    static const VolumeRecord& volume(std::size_t position) { return volumes().records[position]; }
    static const DriveRecord& drive(std::size_t position) { return *state().scan.drives[position]; }

    /// The table as a scan would leave it.
    static void probeAll() {
        int count = 0;
        for (int number = 0; number < kMaxDrives; ++number) {
            if (DriveRecordPtr record = ProbePhysicalDrive(number)) {
                state().scan.drives[static_cast<std::size_t>(count++)] = std::move(record);
            }
        }
        state().scan.driveCount = count;
    }

    /// A drive of 1 GiB with the given volumes.
    void addDrive(int number, const std::string& volumesJson) {
        bench_.addDrive(R"({"bus": "nvme", "size": "1 GiB", "number": )" + std::to_string(number) + R"(, "volumes": )" +
                        volumesJson + "}");
    }
    void enumerate() {
        bench_.open();
        probeAll();
        EnumerateVolumes(state().scan);
    }

    testing::TestBench bench_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
};

constexpr const char* kSystemVolume = R"([{"letter": "C", "extents": [{"offset": "1 MiB", "length": "500 MiB"}]}])";

TEST_F(VolumeMap, VolumeCOnDiskZeroMarksTheFirstDrive) {
    addDrive(0, kSystemVolume);
    addDrive(1, R"([{"letter": "D", "extents": [{"offset": "1 MiB", "length": "900 MiB"}]}])");
    enumerate();
    EXPECT_EQ(drive(0).systemDrive, 1);
    EXPECT_EQ(drive(1).systemDrive, 0);
    ASSERT_EQ(volumes().count, 2);
    EXPECT_EQ(volume(0).driveLetter, 'C');
    EXPECT_EQ(volume(0).diskNumber, 0);
    EXPECT_EQ(volume(0).startingOffset, 1024 * 1024);
    EXPECT_EQ(volume(0).extentLength, 500 * 1024 * 1024);
    EXPECT_EQ(volume(1).driveLetter, 'D');
    EXPECT_EQ(volume(1).diskNumber, 1);
    EXPECT_EQ(volume(2).driveLetter, -1);
    EXPECT_EQ(volume(2).diskNumber, -1);
}

TEST_F(VolumeMap, TheDiskNumberIsThePositionInTheTableEvenWhenTheNumberingHasAGap) {
    addDrive(0, "[]");
    addDrive(1, kSystemVolume);
    addDrive(3, "[]");
    bench_.open();
    probeAll();
    // Drive 1 gone from the table: position 1 now holds drive 3.
    state().scan.drives[1] = std::move(state().scan.drives[2]);
    state().scan.driveCount = 2;
    EnumerateVolumes(state().scan);
    EXPECT_EQ(drive(0).systemDrive, 0);
    EXPECT_EQ(drive(1).driveNumber, 3);
    EXPECT_EQ(drive(1).systemDrive, 1);
}

TEST_F(VolumeMap, MarkingIsSkippedWhenTheTableHasNoSuchPosition) {
    addDrive(0, "[]");
    addDrive(2, kSystemVolume);
    enumerate();
    ASSERT_EQ(state().scan.driveCount, 2);
    EXPECT_EQ(drive(0).systemDrive, 0);
    EXPECT_EQ(drive(1).systemDrive, 0);
    ASSERT_EQ(volumes().count, 1);
    EXPECT_EQ(volume(0).diskNumber, 2);
}

TEST_F(VolumeMap, EveryDriveThatHoldsAPartOfCIsMarked) {
    addDrive(0,
             R"([{"letter": "C", "extents": [{"offset": "1 MiB", "length": "100 MiB"},
                                                {"disk": 2, "offset": "1 MiB", "length": "100 MiB"}]}])");
    addDrive(1, "[]");
    addDrive(2, "[]");
    enumerate();
    EXPECT_EQ(drive(0).systemDrive, 1);
    EXPECT_EQ(drive(1).systemDrive, 0);
    EXPECT_EQ(drive(2).systemDrive, 1);
}

TEST_F(VolumeMap, ASpannedVolumeGivesTwoRecordsWithOneLetter) {
    addDrive(0,
             R"([{"letter": "S", "extents": [{"offset": "1 MiB", "length": "100 MiB"},
                                                {"disk": 1, "offset": "2 MiB", "length": "200 MiB"}]}])");
    addDrive(1, "[]");
    enumerate();
    ASSERT_EQ(volumes().count, 2);
    EXPECT_EQ(volume(0).driveLetter, 'S');
    EXPECT_EQ(volume(0).diskNumber, 0);
    EXPECT_EQ(volume(1).driveLetter, 'S');
    EXPECT_EQ(volume(1).diskNumber, 1);
    EXPECT_EQ(volume(1).startingOffset, 2 * 1024 * 1024);
    EXPECT_EQ(volume(1).extentLength, 200 * 1024 * 1024);
    EXPECT_EQ(drive(0).systemDrive, 0);
    EXPECT_EQ(drive(1).systemDrive, 0);
}

TEST_F(VolumeMap, OpticalAndNetworkLettersAddNothing) {
    addDrive(0, kSystemVolume);
    bench_.describe(R"({"volumes": [{"letter": "D", "kind": "optical"}, {"letter": "N", "kind": "network"}]})");
    enumerate();
    ASSERT_EQ(volumes().count, 1);
    EXPECT_EQ(volume(0).driveLetter, 'C');
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

TEST_F(VolumeMap, LettersThatCannotBeOpenedOrDoNotAnswerAreSkippedSilently) {
    addDrive(0,
             R"([{"letter": "D", "extents": [{"offset": "1 MiB", "length": "1 MiB"}],
                     "faults": {"open": "ERROR_ACCESS_DENIED"}},
                    {"letter": "E", "extents": [{"offset": "3 MiB", "length": "1 MiB"}],
                     "faults": {"extents": "ERROR_NOT_SUPPORTED"}},
                    {"letter": "F", "extents": [{"offset": "5 MiB", "length": "1 MiB"}]}])");
    enumerate();
    ASSERT_EQ(volumes().count, 1);
    EXPECT_EQ(volume(0).driveLetter, 'F');
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

TEST_F(VolumeMap, AVolumeThatBitLockerHasLockedIsInTheTable) {
    addDrive(0, R"([{"letter": "D", "extents": [{"offset": "1 MiB", "length": "3 MiB"}],
                     "bitLocker": {"state": "locked"}}])");
    enumerate();
    ASSERT_EQ(volumes().count, 1);
    EXPECT_EQ(volume(0).driveLetter, 'D');
    EXPECT_EQ(volume(0).diskNumber, 0);
    EXPECT_EQ(volume(0).extentLength, 3 * 1024 * 1024);
    EXPECT_THAT(bench_.log("target=volume:D request=open"),
                ::testing::ElementsAre(HasSubstr("access=rw result=ERROR_ACCESS_DENIED"), HasSubstr("result=ok")));
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

TEST_F(VolumeMap, LettersAreAskedFromCToZOnceEachAndNeverAOrB) {
    addDrive(0, R"([{"letter": "Z", "extents": [{"offset": "1 MiB", "length": "1 MiB"}]}])");
    enumerate();
    auto opened = bench_.log("request=open");
    std::erase_if(opened, [](const std::string& line) { return line.find("PhysicalDrive") != std::string::npos; });
    ASSERT_THAT(opened, SizeIs('Z' - 'C' + 1));
    for (std::size_t i = 0; i < opened.size(); ++i) {
        const std::string letter(1, static_cast<char>('C' + static_cast<char>(i)));
        EXPECT_THAT(opened[i], HasSubstr(R"(path="\\\\.\\)" + letter + ":\""));
    }
    EXPECT_THAT(opened.back(), HasSubstr("access=rw result=ok"));
}

TEST_F(VolumeMap, EveryVolumeIsAskedForItsExtentsAndClosed) {
    addDrive(0, kSystemVolume);
    enumerate();
    EXPECT_THAT(bench_.log("target=volume:C request=IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS"),
                ::testing::ElementsAre(HasSubstr("in=0 out=4096")));
    EXPECT_THAT(bench_.log("target=volume:C request=close"), SizeIs(1));
}

TEST_F(VolumeMap, ExtentsBeyondFiftyAreDroppedAndCIsStillMarked) {
    std::string extents;
    for (int i = 0; i < 60; ++i) {
        extents += (i == 0 ? "" : ", ") + std::string(R"({"disk": )") + (i < 55 ? "1" : "0") + R"(, "offset": ")" +
                   std::to_string(i + 1) + R"( MiB", "length": "1 MiB"})";
    }
    addDrive(0, "[]");
    addDrive(1, R"([{"letter": "C", "extents": [)" + extents + "]}]");
    enumerate();
    EXPECT_EQ(volumes().count, 50);
    EXPECT_EQ(volume(49).driveLetter, 'C');
    EXPECT_EQ(volume(49).startingOffset, 50 * 1024 * 1024);
    EXPECT_EQ(drive(1).systemDrive, 1);
    EXPECT_EQ(drive(0).systemDrive, 1);
}

TEST_F(VolumeMap, RefreshingFindsNewLettersAndDropsThoseThatAreGone) {
    addDrive(0, R"([{"letter": "K", "extents": [{"offset": "1 MiB", "length": "1 MiB"}]}])");
    bench_.open();
    state().scan.volumes.records[0] = {.driveLetter = 'G', .diskNumber = 7};
    state().scan.volumes.count = 1;
    state().scan.volumes = refreshedVolumes(state().scan.volumes);
    ASSERT_EQ(volumes().count, 1);
    EXPECT_EQ(volume(0).driveLetter, 'K');
    EXPECT_EQ(volume(0).diskNumber, 0);
}

TEST_F(VolumeMap, RefreshingKeepsAVolumeThatDoesNotTellNow) {
    addDrive(0, R"([{"letter": "K", "extents": [{"offset": "1 MiB", "length": "1 MiB"}],
                     "faults": {"extents": "ERROR_IO_DEVICE"}},
                    {"letter": "L", "extents": [{"offset": "4 MiB", "length": "1 MiB"}],
                     "faults": {"open": "ERROR_ACCESS_DENIED"}}])");
    bench_.open();
    state().scan.volumes.records[0] = {.driveLetter = 'K', .diskNumber = 0};
    state().scan.volumes.records[1] = {.driveLetter = 'L', .diskNumber = 0};
    state().scan.volumes.count = 2;
    state().scan.volumes = refreshedVolumes(state().scan.volumes);
    ASSERT_EQ(volumes().count, 2);
    EXPECT_EQ(volume(0).driveLetter, 'K');
    EXPECT_EQ(volume(1).driveLetter, 'L');
}

TEST_F(VolumeMap, EnumeratingAgainReplacesTheTable) {
    addDrive(0, kSystemVolume);
    enumerate();
    EnumerateVolumes(state().scan);
    EXPECT_EQ(volumes().count, 1);
}

} // namespace
} // namespace torvane
