#include "copy/evidence/map_file.h"
#include "discovery/find_drive.h"
#include "records/drive_texts.h"
#include "tests/component/copy_bench.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace torvane {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::noise;
using testing::readFile;
using testing::unreadable;
using testing::writeFile;

constexpr const char* kNotBegun = "***** RESCUE NOT STARTED *****";

class RescueJob : public testing::CopyBench {
  protected:
    static constexpr std::size_t kBytes = 4 << 20;
    static constexpr const char* kImage = "Model X.41.img";

    RescueJob() { order_.kind = CopyKind::kRescue; }

    void openDrive(const std::string& faults = "{}", const std::string& more = "") {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": "noise", "seed": 7},
                            "identity": {"product": "Model X", "serial": "S1"}, "size": "4 MiB", "faults": )" +
                        faults + more + "}");
        source_ = &drive(1);
        order_.source = source_;
        writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4));
    }

    void goOn() {
        order_.path += std::string("\\") + kImage;
        order_.rescue.goOn = true;
    }

    /// What the drive holds, with the marker in place of these sectors.
    static std::string without(const std::vector<std::size_t>& sectors) {
        std::string bytes = noise(7, 0, kBytes);
        for (const std::size_t sector : sectors) {
            bytes.replace(sector * 512, 512, unreadable(512));
        }
        return bytes;
    }

    static SourceMap savedMap(const std::string& name = std::string(kImage) + ".map") {
        const std::variant<MapFile, MapFault> file = readMapFile(readFile(name.c_str()), kBytes);
        if (const auto* const fault = std::get_if<MapFault>(&file)) {
            ADD_FAILURE() << fault->line << ": " << fault->reason;
            return SourceMap(0);
        }
        return std::get<MapFile>(file).map;
    }

    DriveRecord* source_ = nullptr;
};

constexpr const char* kTwoBadPlaces = R"({"reads": [{"firstSector": 100}, {"firstSector": 3000, "sectors": 3}]})";

TEST_F(RescueJob, BringsEverySectorThatCanBeReadIntoANewImage) {
    openDrive(kTwoBadPlaces);
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(readFile(kImage) == without({100, 3000, 3001, 3002}));
    EXPECT_THAT(savedMap().ranges(),
                ElementsAre(MappedRange{0, 51200, RangeStatus::kFinished}, MappedRange{51200, 512, RangeStatus::kBad},
                            MappedRange{51712, 1484288, RangeStatus::kFinished},
                            MappedRange{1536000, 1536, RangeStatus::kBad},
                            MappedRange{1537536, kBytes - 1537536, RangeStatus::kFinished}));
    EXPECT_THAT(readFile("ACQUISITION--Model X.41.txt"),
                AllOf(HasSubstr("Job: Rescue\r\n"), HasSubstr("Ending: completed\r\n"),
                      HasSubstr("Bytes missing from the image: 2048\r\n"), HasSubstr("Unreadable ranges: 2\r\n"),
                      HasSubstr("sectors 3000 to 3002")));
    EXPECT_EQ(display_.lastStatus(), " Rescue Completed, not everything could be read");
    EXPECT_EQ(display_.losses(), "red: 2 KB of the source not copied");
    EXPECT_THAT(display_.calls(), ElementsAre("bad"));
    EXPECT_FALSE(display_.rescues().empty());
    EXPECT_FALSE(state().jobs.active());
    EXPECT_THAT(bench_.log("request=write"), IsEmpty());
}

TEST_F(RescueJob, OfAHealthyDriveIsTheWholeDrive) {
    openDrive();
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBytes));
    EXPECT_EQ(display_.lastStatus(), " Rescue SUCCESSFULLY Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
    EXPECT_THAT(display_.calls(), ElementsAre("good"));
}

TEST_F(RescueJob, GoesOnWithWhatIsMissingAlone) {
    openDrive(R"({"reads": [{"firstSector": 100, "times": 2}]})");
    EXPECT_EQ(run(runRescueJob), 1U);
    const std::size_t reads = bench_.log("target=drive:1 request=read").size();
    goOn();
    order_.rescue.retryPasses = 1;
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBytes));
    constexpr std::size_t kSamples = 19; // by which drive and copy are compared
    EXPECT_EQ(bench_.log("target=drive:1 request=read").size(), reads + kSamples + 1);
    EXPECT_EQ(savedMap().bytes(RangeStatus::kFinished), kBytes);
}

TEST_F(RescueJob, GoesOnWithTheImageOfACopy) {
    openDrive(R"({"reads": [{"firstSector": 100}]})");
    order_.kind = CopyKind::kImageToFile;
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_EQ(savedMap().bytes(RangeStatus::kNonTrimmed), kBlock);
    order_.kind = CopyKind::kRescue;
    goOn();
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(readFile(kImage) == without({100}));
    EXPECT_EQ(savedMap().bytes(RangeStatus::kBad), 512U);
    EXPECT_THAT(readFile("ACQUISITION--Model X.41.txt"), HasSubstr("Job: Image\r\n")) << "it stays as it was";
}

TEST_F(RescueJob, StoppedCostsNothingThatWasRead) {
    openDrive();
    int shown = 0;
    display_.onStatus = [&](std::string_view text) {
        if (text.find("Copying") != std::string_view::npos && ++shown == 2) { // the first comes before the first read
            terminate();
        }
    };
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_EQ(display_.lastStatus(), " Rescue stopped. It can go on later");
    const std::uint64_t finished = savedMap().bytes(RangeStatus::kFinished);
    EXPECT_GT(finished, 0U);
    EXPECT_LT(finished, kBytes);
    EXPECT_EQ(lastDriveStatus(*source_).find("BAD not completed"), 0U);
    display_.onStatus = {};
    goOn();
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBytes));
    EXPECT_EQ(bench_.log("target=drive:1 request=read length=65536").size(), kBytes / 65536);
}

TEST_F(RescueJob, RefusesAnImageOfAnotherDrive) {
    openDrive();
    EXPECT_EQ(run(runRescueJob), 1U);
    const std::string before = readFile(kImage);
    const std::size_t reads = bench_.log("target=drive:1 request=read").size();
    writeFile("ACQUISITION--Model X.41.txt", "Model: Model X\r\nSerial number: S2\r\nSize in bytes: 4194304\r\n");
    goOn();
    user_.expectStop(kNotBegun, "[" + order_.path + ".map], or the record beside it, is of another drive than " +
                                    jobDriveText(*source_) + ". Nothing was read or written");
    EXPECT_EQ(run(runRescueJob), 0U);
    EXPECT_TRUE(readFile(kImage) == before);
    EXPECT_EQ(bench_.log("target=drive:1 request=read").size(), reads);
    EXPECT_FALSE(state().jobs.active());
}

TEST_F(RescueJob, RefusesAnImageWithoutAMap) {
    openDrive();
    writeFile(kImage, "whatever");
    goOn();
    user_.expectStop(kNotBegun,
                     "There is no map [" + order_.path +
                         ".map]. Without it nobody knows what is missing. Nothing was read or written. Choose "
                         "an image that has its map beside it, or begin a new one");
    EXPECT_EQ(run(runRescueJob), 0U);
    EXPECT_EQ(readFile(kImage), "whatever");
}

TEST_F(RescueJob, AsksWhoseAMapIsThatDoesNotTell) {
    openDrive();
    writeFile(kImage, noise(7, 0, kBytes / 2));
    writeFile((std::string(kImage) + ".map").c_str(),
              "# Mapfile. Created by GNU ddrescue version 1.26\n0x0 ? 1\n0x0 0x200000 +\n0x200000 0x200000 ?\n");
    goOn();
    const std::string question = "[" + order_.path + ".map] does not tell which drive it is of. Is it of " +
                                 jobDriveText(*source_) +
                                 "? If it is not, the copy becomes a mixture of two drives, and is lost";
    user_.expectAskDefaultNo("***** WHICH DRIVE? *****", question, false);
    EXPECT_EQ(run(runRescueJob), 0U);
    EXPECT_EQ(readFile(kImage).size(), kBytes / 2);
    user_.expectAskDefaultNo("***** WHICH DRIVE? *****", question, true);
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBytes));
    EXPECT_THAT(bench_.log("target=drive:1 request=read offset=0 length=65536"), IsEmpty()) << "finished";
}

TEST_F(RescueJob, WaitsForADriveThatVanishesAndGoesOn) {
    openDrive();
    bool unplugged = false;
    display_.onStatus = [&](std::string_view text) {
        if (text.find("Copying") != std::string_view::npos && !unplugged) {
            unplugged = true;
            bench_.unplug(1);
        } else if (text.find("Waiting") != std::string_view::npos) {
            bench_.plug(1);
        }
    };
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(unplugged);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBytes));
    EXPECT_THAT(events(), Contains(HasSubstr("is back. The rescue goes on")));
}

TEST_F(RescueJob, DoesNotGoOnWithAnotherDriveInItsPlace) {
    openDrive();
    int looks = 0;
    display_.onStatus = [&](std::string_view text) {
        if (text.find("Copying") != std::string_view::npos && looks++ == 0) {
            bench_.swap(1);
        } else if (text.find("Waiting") != std::string_view::npos) {
            std::thread([] {
                std::this_thread::sleep_for(std::chrono::milliseconds(1500));
                terminate();
            }).detach();
        }
    };
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_EQ(display_.lastStatus(), " Rescue stopped. It can go on later");
    const std::uint64_t finished = savedMap().bytes(RangeStatus::kFinished);
    EXPECT_TRUE(readFile(kImage).substr(0, finished) == noise(7, 0, finished));
    bench_.swap(1);
}

TEST_F(RescueJob, LeavesAReadThatNeverReturns) {
    openDrive(R"({"stopsAnswering": {"afterRequests": 10, "milliseconds": )" + std::string(testing::kUntilToldToHurry) +
              "}}");
    std::thread stopper([this] {
        EXPECT_TRUE(bench_.awaitLog("target=drive:1 request=read", 10));
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        terminate();
    });
    EXPECT_EQ(run(runRescueJob), 1U);
    stopper.join();
    EXPECT_EQ(display_.lastStatus(), " Rescue stopped. It can go on later");
    EXPECT_FALSE(state().jobs.active());
    bench_.hurry();
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // the read ends, and with it its handle
}

class RescueOntoDrive : public RescueJob {
  protected:
    void openBoth(const std::string& faults = "{}", const std::string& destination = "") {
        bench_.addDrive(R"({"number": 2, "bus": "nvme", "identity": {"product": "Model Y", "serial": "S9"},
                            "size": "5 MiB")" +
                        destination + "}");
        openDrive(faults);
        destination_ = &drive(2);
        order_.destination = destination_;
    }

    static constexpr const char* kMap = "RESCUE--Model X.S1--Model Y.S9.map";

    DriveRecord* destination_ = nullptr;
};

TEST_F(RescueOntoDrive, BringsEverySectorThatCanBeReadToItsPlace) {
    openBoth(kTwoBadPlaces);
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(content(2, 0, kBytes) == without({100, 3000, 3001, 3002}));
    EXPECT_EQ(savedMap(kMap).bytes(RangeStatus::kBad), 2048U);
    EXPECT_FALSE(bench_.log("request=diskpart").empty()) << "it was cleaned";
}

TEST_F(RescueOntoDrive, GoesOnWithoutCleaningWhatItHolds) {
    openBoth(R"({"reads": [{"firstSector": 100, "times": 2}]})");
    EXPECT_EQ(run(runRescueJob), 1U);
    const std::size_t cleans = bench_.log("request=diskpart").size();
    const std::size_t writes = bench_.log("target=drive:2 request=write").size();
    order_.rescue = {.goOn = true, .retryPasses = 1};
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_TRUE(content(2, 0, kBytes) == noise(7, 0, kBytes));
    EXPECT_EQ(bench_.log("request=diskpart").size(), cleans);
    EXPECT_EQ(bench_.log("target=drive:2 request=write").size(), writes + 1);
}

TEST_F(RescueOntoDrive, BegunAnewCleansItAndKeepsTheEarlierMap) {
    openBoth(kTwoBadPlaces);
    EXPECT_EQ(run(runRescueJob), 1U);
    const std::string earlier = readFile(kMap);
    const std::size_t cleans = bench_.log("request=diskpart").size();
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_GT(bench_.log("request=diskpart").size(), cleans);
    EXPECT_EQ(readFile((std::string(kMap) + ".old").c_str()), earlier);
    EXPECT_EQ(savedMap(kMap).bytes(RangeStatus::kBad), 2048U);
}

TEST_F(RescueOntoDrive, RefusesASmallerDrive) {
    bench_.addDrive(R"({"number": 2, "bus": "nvme", "identity": {"product": "Model Y"}, "size": "1 MiB"})");
    openDrive();
    order_.destination = &drive(2);
    user_.expectStop(kNotBegun,
                     "The DESTINATION is smaller than the SOURCE. Nothing was read or written. Choose a drive "
                     "that is at least as large, or rescue into an image");
    EXPECT_EQ(run(runRescueJob), 0U);
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
}

TEST_F(RescueOntoDrive, ThatDoesNotTakeAWriteEnds) {
    openBoth("{}", R"(, "faults": {"writes": [{"firstSector": 2048, "sectors": 8}]})");
    EXPECT_EQ(run(runRescueJob), 1U);
    EXPECT_EQ(display_.lastStatus(), " Could not WRITE. Rescue stopped");
    EXPECT_THAT(display_.losses(), HasSubstr("1 failed write"));
    EXPECT_NE(savedMap(kMap).statusAt(1 << 20), RangeStatus::kFinished);
}

TEST(FindDriveAgain, FindsTheDriveWhateverItsNumberIsByNow) {
    testing::TestBench bench;
    bench.addDrive(R"({"number": 3, "bus": "sata", "identity": {"product": "P", "serial": "S1"}, "size": "1 MiB"})");
    bench.addDrive(R"({"number": 4, "bus": "sata", "identity": {"product": "P", "serial": "S2"}, "size": "1 MiB"})");
    bench.open();
    const DriveRecordPtr record = ProbePhysicalDrive(3);
    ASSERT_TRUE(record);
    record->driveNumber = 9;
    const std::optional<FoundDrive> found = findDriveAgain(*record, 20);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->number, 3);
    CloseHandle(found->handle);
    bench.unplug(3);
    EXPECT_FALSE(findDriveAgain(*record, 20));
}

TEST(FindDriveAgain, TakesNoneOfTwoThatTellTheSame) {
    testing::TestBench bench;
    bench.addDrive(R"({"number": 3, "bus": "usb", "identity": {"product": "P", "serial": "0"}, "size": "1 MiB"})");
    bench.addDrive(R"({"number": 4, "bus": "usb", "identity": {"product": "P", "serial": "0"}, "size": "1 MiB"})");
    bench.open();
    const DriveRecordPtr record = ProbePhysicalDrive(3);
    ASSERT_TRUE(record);
    EXPECT_FALSE(findDriveAgain(*record, 20));
}

TEST(FindDriveAgain, TakesNoDriveThatNeverToldWhichItIs) {
    testing::TestBench bench;
    bench.addDrive(R"({"number": 3, "bus": "usb", "size": "1 MiB"})");
    bench.open();
    const DriveRecordPtr record = ProbePhysicalDrive(3);
    ASSERT_TRUE(record);
    EXPECT_FALSE(findDriveAgain(*record, 20));
}

} // namespace
} // namespace torvane
