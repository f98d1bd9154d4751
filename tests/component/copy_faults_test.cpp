#include "tests/component/copy_bench.h"

// Faults in the middle of each copy job, one way of failing at a time: what arrives, what is told, and that no handle
// is lost over it. What a job does about each block is in the jobs' own tests.

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::noise;
using testing::readFile;
using ::testing::SizeIs;
using testing::unreadable;
using testing::writeFile;

class CopyFaults : public testing::CopyBench {
  protected:
    void addSource(std::size_t bytes, const std::string& faults = "{}", int sectorSize = 512) {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": "noise", "seed": 7},
                            "identity": {"product": "Model X", "serial": "S1"}, "size": )" +
                        std::to_string(bytes) + R"(, "sectorSize": )" + std::to_string(sectorSize) + R"(, "faults": )" +
                        faults + "}");
    }
    void addDestination(std::size_t bytes, const std::string& faults = "{}", int sectorSize = 512) {
        bench_.addDrive(R"({"number": 2, "bus": "nvme", "size": )" + std::to_string(bytes) + R"(, "sectorSize": )" +
                        std::to_string(sectorSize) + R"(, "faults": )" + faults + "}");
    }
    void openDrives() {
        source_ = &drive(1);
        destination_ = &drive(2);
        order_.source = source_;
        order_.destination = destination_;
    }
    void openSource() {
        source_ = &drive(1);
        order_.source = source_;
        writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4));
    }
    void openImageAndDestination(std::size_t imageBytes) {
        writeFile("disk.img", noise(3, 0, imageBytes));
        destination_ = &drive(2);
        order_.destination = destination_;
        order_.path = (std::filesystem::current_path() / "disk.img").string();
    }

    void expectVerification(bool answer) {
        user_.expectAsk("****** VERIFY HASH ******", "Would you like to Verify the Image HASH?", answer);
    }

    /// A job that is not begun, because its drive has gone since.
    void expectRefused(std::uint32_t (*job)(const CopyJob&), const std::string& role) {
        user_.expectStop("***** DRIVE HAS CHANGED *****",
                         "The " + role +
                             " is not the drive that was loaded any more, or it does not answer. Nothing "
                             "was written. Load the drives again");
        EXPECT_EQ(run(job), 0U);
    }

    static constexpr std::size_t kOddBytes = 5 * kBlock + 3 * 512;

    /// From sectors of 512 bytes onto larger ones that the source does not fill.
    void expectOddRangeArrives(std::uint32_t (*job)(const CopyJob&)) {
        addSource(kOddBytes);
        addDestination(8 * kBlock, "{}", 4096);
        openDrives();
        user_.expectAsk("***** LAST SECTOR NOT FILLED *****",
                        "The SOURCE is 1536 bytes longer than whole sectors of the DESTINATION, which have 4096 bytes. "
                        "The last sector will be filled up with zeros. Do you want to continue?",
                        true);
        EXPECT_EQ(run(job), 1U);
        EXPECT_TRUE(content(2, 0, kOddBytes) == noise(7, 0, kOddBytes));
        EXPECT_EQ(content(2, kOddBytes, kBlock), std::string(kBlock, '\0'));
        EXPECT_EQ(destination_->writeErrorCount, 0U);
        EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED");
    }

    /// From sectors of 4096 bytes onto a destination that ends inside one of them.
    void expectEndInsideASectorIsReached(std::uint32_t (*job)(const CopyJob&)) {
        addSource(8 * kBlock, "{}", 4096);
        addDestination(kOddBytes);
        openDrives();
        EXPECT_EQ(run(job), 1U);
        EXPECT_TRUE(content(2, 0, kOddBytes) == noise(7, 0, kOddBytes));
        EXPECT_EQ(source_->badReadCount, 0U);
        EXPECT_EQ(lastDriveStatus(*destination_), "BAD 190.5 KB of the source not copied");
    }

    static void expectIdle() { EXPECT_FALSE(state().jobs.active()); }

    /// Faults that make the first sector of these blocks unreadable.
    static std::string badBlocks(int first, int count) {
        std::string reads;
        for (int i = 0; i < count; ++i) {
            reads += (i == 0 ? "" : ", ") + (R"({"firstSector": )" + std::to_string((first + i) * 128)) + "}";
        }
        return R"({"reads": [)" + reads + "]}";
    }

    static constexpr const char* kImage = "Model X.41.img";
    static constexpr const char* kHashFile = "MD5-HASH--Model X.41.txt";

    DriveRecord* source_ = nullptr;
    DriveRecord* destination_ = nullptr;
};

TEST_F(CopyFaults, SourceVanishesInAReverseClone) {
    addSource(30 * kBlock, R"({"vanishAfterRequests": 5})");
    addDestination(30 * kBlock);
    openDrives();
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_EQ(content(2, 25 * kBlock, 5 * kBlock), noise(7, 25 * kBlock, 5 * kBlock));
    EXPECT_EQ(content(2, 14 * kBlock, 11 * kBlock), unreadable(11 * kBlock));
    EXPECT_EQ(content(2, 13 * kBlock, kBlock), std::string(kBlock, '\0'));
    EXPECT_EQ(source_->badReadCount, 11U);
    EXPECT_EQ(display_.lastStatus(), " User Terminated Clone");
    EXPECT_EQ(state().raceTrack.failed, 1);
    EXPECT_EQ(state().raceTrack.succeeded, 0);
    testing::expectNoHandleLost([this] { expectRefused(runReverseClone, "SOURCE"); });
    expectIdle();
}

TEST_F(CopyFaults, SourceVanishesInAnImage) {
    addSource(30 * kBlock, R"({"vanishAfterRequests": 5})");
    openSource();
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 5 * kBlock) + unreadable(11 * kBlock));
    EXPECT_THAT(events(), SizeIs(11));
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 11 unreadable blocks");
    testing::expectNoHandleLost([this] { expectRefused(runImageToFile, "SOURCE"); });
    expectIdle();
}

TEST_F(CopyFaults, SourceVanishesInAForensicImage) {
    addSource(30 * kBlock, R"({"vanishAfterRequests": 5})");
    openSource();
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 5 * kBlock) + unreadable(11 * kBlock));
    EXPECT_FALSE(std::filesystem::exists(kHashFile)) << "a partial image has no hash";
    EXPECT_EQ(display_.lastStatus(), " Image Terminated -- Not Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD not completed, 11 unreadable blocks");
    testing::expectNoHandleLost([this] { expectRefused(runForensicImage, "SOURCE"); });
    expectIdle();
}

TEST_F(CopyFaults, SourceThatIsUnpluggedMidJobIsTheSame) {
    addSource(30 * kBlock);
    addDestination(30 * kBlock);
    openDrives();
    display_.onStatus = [&](std::string_view text) {
        if (text.find("%10") != std::string_view::npos) {
            bench_.unplug(1);
        }
    };
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(content(2, 0, 4 * kBlock), noise(7, 0, 4 * kBlock));
    EXPECT_EQ(source_->badReadCount, 11U);
    EXPECT_EQ(display_.lastStatus(), " User Terminated Image");
    testing::expectNoHandleLost([this] { expectRefused(runForwardClone, "SOURCE"); });
    expectIdle();
}

TEST_F(CopyFaults, DestinationVanishesInAReverseClone) {
    addSource(8 * kBlock);
    addDestination(8 * kBlock, R"({"vanishAfterRequests": 5})");
    openDrives();
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_EQ(content(2, 3 * kBlock, 5 * kBlock), noise(7, 3 * kBlock, 5 * kBlock));
    EXPECT_EQ(content(2, 0, 3 * kBlock), std::string(3 * kBlock, '\0'));
    EXPECT_EQ(destination_->writeErrorCount, 3U);
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(display_.lastStatus(), " Clone SUCCESSFULLY Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 3 failed writes");
    testing::expectNoHandleLost([this] { expectRefused(runReverseClone, "DESTINATION"); });
    expectIdle();
}

TEST_F(CopyFaults, DestinationThatIsUnpluggedMidJobIsCountedToTheEnd) {
    addSource(10 * kBlock);
    addDestination(10 * kBlock);
    openDrives();
    display_.onStatus = [&](std::string_view text) {
        if (text.find("%30") != std::string_view::npos) {
            bench_.unplug(2);
        }
    };
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(content(2, 0, 4 * kBlock), noise(7, 0, 4 * kBlock));
    EXPECT_EQ(destination_->writeErrorCount, 6U);
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 6 failed writes");
    testing::expectNoHandleLost([this] { expectRefused(runForwardClone, "DESTINATION"); });
    expectIdle();
}

TEST_F(CopyFaults, DestinationVanishesInAnImageToDrive) {
    addDestination(6 * kBlock, R"({"vanishAfterRequests": 2})");
    openImageAndDestination(6 * kBlock);
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(content(2, 0, 2 * kBlock), noise(3, 0, 2 * kBlock));
    EXPECT_THAT(events(), IsEmpty());
    EXPECT_EQ(display_.lastStatus(), " Image To Drive SUCCESSFULLY Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 4 failed writes");
    keptImages().clear();
    testing::expectNoHandleLost([this] {
        expectRefused(runImageToDrive, "DESTINATION");
        keptImages().clear(); // kept on purpose until the program ends
    });
    expectIdle();
}

TEST_F(CopyFaults, ImageCannotBeDeletedWhileItIsRead) {
    addDestination(6 * kBlock);
    openImageAndDestination(6 * kBlock);
    int tried = 0;
    display_.onStatus = [&](std::string_view) {
        EXPECT_FALSE(DeleteFileA("disk.img"));
        ++tried;
    };
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_GT(tried, 3);
    EXPECT_EQ(content(2, 0, 6 * kBlock), noise(3, 0, 6 * kBlock));
    EXPECT_THAT(keptImages(), SizeIs(1)) << "kept on purpose until the program ends";
    keptImages().clear();
    testing::expectNoHandleLost([this] {
        EXPECT_EQ(run(runImageToDrive), 1U);
        keptImages().clear(); // kept on purpose until the program ends
    });
    expectIdle();
}

TEST_F(CopyFaults, LargerImageIsCutToTheDriveAfterYes) {
    addDestination(3 * kBlock + 512);
    openImageAndDestination(6 * kBlock);
    user_.expectAskDefaultNo("***** Image File Too Large *****",
                             "Image File is LARGER than DESTINATION drive. Do you want to truncate file and continue?",
                             true);
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_EQ(content(2, 0, 3 * kBlock + 512), noise(3, 0, 3 * kBlock + 512));
    EXPECT_EQ(destination_->writeErrorCount, 0U) << "nothing is written past the end";
    EXPECT_EQ(lastDriveStatus(*destination_), "COMPLETED") << "cut because the user wanted it";
    EXPECT_EQ(display_.losses(), "red: 191.5 KB of the source not copied");
    keptImages().clear();
    testing::expectNoHandleLost([this] {
        user_.expectAskDefaultNo(
            "***** Image File Too Large *****",
            "Image File is LARGER than DESTINATION drive. Do you want to truncate file and continue?", true);
        EXPECT_EQ(run(runImageToDrive), 1U);
        keptImages().clear(); // kept on purpose until the program ends
    });
    expectIdle();
}

TEST_F(CopyFaults, LargerImageTouchesNothingAfterNo) {
    addDestination(3 * kBlock);
    openImageAndDestination(6 * kBlock);
    user_.expectAskDefaultNo("***** Image File Too Large *****",
                             "Image File is LARGER than DESTINATION drive. Do you want to truncate file and continue?",
                             false);
    EXPECT_EQ(run(runImageToDrive), 0U);
    EXPECT_THAT(keptImages(), SizeIs(1)) << "kept on purpose until the program ends";
    keptImages().clear();
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty()) << "the disk is not even cleaned";
    EXPECT_THAT(events(), IsEmpty());
    testing::expectNoHandleLost([this] {
        user_.expectAskDefaultNo(
            "***** Image File Too Large *****",
            "Image File is LARGER than DESTINATION drive. Do you want to truncate file and continue?", false);
        EXPECT_EQ(run(runImageToDrive), 0U);
        keptImages().clear();
    });
    expectIdle();
}

TEST_F(CopyFaults, DriveOfNoBytesMakesAnEmptyImage) {
    addSource(0);
    openSource();
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(std::filesystem::exists(kImage));
    EXPECT_EQ(readFile(kImage), "");
    EXPECT_THAT(bench_.log("target=drive:1 request=read"), IsEmpty());
    EXPECT_EQ(display_.lastStatus(), " Image  SUCCESSFULLY Completed");
    testing::expectNoHandleLost([this] { EXPECT_EQ(run(runImageToFile), 1U); });
    expectIdle();
}

TEST_F(CopyFaults, DriveOfNoBytesHasTheDigestOfNothing) {
    addSource(0);
    openSource();
    expectVerification(true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_THAT(readFile(kHashFile), ::testing::EndsWith("D4 1D 8C D9 8F 00 B2 04 E9 80 09 98 EC F8 42 7E "));
    EXPECT_EQ(readFile(kImage), "");
    testing::expectNoHandleLost([this] {
        expectVerification(true);
        user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
        EXPECT_EQ(run(runForensicImage), 1U);
    });
    expectIdle();
}

TEST_F(CopyFaults, SourceOfNoBytesLeavesTheDestinationAsItIs) {
    addSource(0);
    addDestination(3 * kBlock);
    openDrives();
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty());
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
    expectIdle();
}

TEST_F(CopyFaults, DestinationOfNoBytesTakesNothing) {
    addSource(3 * kBlock);
    addDestination(0);
    openDrives();
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_THAT(bench_.log("target=drive:2 request=write"), IsEmpty());
    EXPECT_THAT(bench_.log("request=diskpart"), IsEmpty()) << "a disk that gets nothing is not wiped";
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 192 KB of the source not copied");
    testing::expectNoHandleLost([this] { EXPECT_EQ(run(runForwardClone), 1U); });
    expectIdle();
}

TEST_F(CopyFaults, DriveOfOneSectorIsImaged) {
    addSource(512);
    openSource();
    expectVerification(true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 512));
    testing::expectNoHandleLost([this] {
        expectVerification(true);
        user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
        EXPECT_EQ(run(runForensicImage), 1U);
    });
    expectIdle();
}

TEST_F(CopyFaults, LargeSectorsAreImagedAndNamedAsTheDriveCountsThem) {
    addSource(3 * kBlock + 4096, R"({"reads": [{"firstSector": 20}]})", 4096);
    openSource();
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBlock) + unreadable(kBlock) + noise(7, 2 * kBlock, kBlock + 4096));
    EXPECT_THAT(events(), ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [16]"));
    testing::expectNoHandleLost([this] { EXPECT_EQ(run(runImageToFile), 1U); });
    expectIdle();
}

TEST_F(CopyFaults, CloneOfARangeThatEndsInsideALargeSectorArrivesWhole) {
    expectOddRangeArrives(runForwardClone);
}

TEST_F(CopyFaults, ReverseCloneOfARangeThatEndsInsideALargeSectorArrivesWhole) {
    expectOddRangeArrives(runReverseClone);
}

TEST_F(CopyFaults, CloneFromLargeSectorsOntoAnEndInsideOneArrivesWhole) {
    expectEndInsideASectorIsReached(runForwardClone);
}

TEST_F(CopyFaults, ReverseCloneFromLargeSectorsOntoAnEndInsideOneArrivesWhole) {
    expectEndInsideASectorIsReached(runReverseClone);
}

TEST_F(CopyFaults, TenUnreadableBlocksLetAForensicImageFinish) {
    addSource(12 * kBlock, badBlocks(1, 10));
    openSource();
    expectVerification(true);
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBlock) + unreadable(10 * kBlock) + noise(7, 11 * kBlock, kBlock));
    EXPECT_EQ(lastDriveStatus(*source_), "BAD 10 unreadable blocks, verified");
    testing::expectNoHandleLost([this] {
        expectVerification(true);
        user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
        EXPECT_EQ(run(runForensicImage), 1U);
    });
    expectIdle();
}

TEST_F(CopyFaults, TheEleventhUnreadableBlockEndsAForensicImageWithoutAHash) {
    addSource(14 * kBlock + 512, badBlocks(1, 11));
    openSource();
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, kBlock) + unreadable(11 * kBlock));
    EXPECT_FALSE(std::filesystem::exists(kHashFile));
    EXPECT_EQ(state().raceTrack.failed, 1);
    testing::expectNoHandleLost([this] { EXPECT_EQ(run(runForensicImage), 1U); });
    expectIdle();
}

TEST_F(CopyFaults, UnreadableRemainderOfAnImageIsMarked) {
    addSource(2 * kBlock + 1024, badBlocks(2, 1));
    openSource();
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_TRUE(readFile(kImage) == noise(7, 0, 2 * kBlock) + unreadable(1024));
    EXPECT_EQ(display_.lastStatus(), " Image  SUCCESSFULLY Completed");
    EXPECT_EQ(lastDriveStatus(*source_), "BAD 1 unreadable block");
    testing::expectNoHandleLost([this] { EXPECT_EQ(run(runImageToFile), 1U); });
    expectIdle();
}

TEST_F(CopyFaults, UnreadableRemainderOfAReverseCloneIsTheRangesBeginning) {
    addSource(2 * kBlock + 1024, R"({"reads": [{"firstSector": 1}]})");
    addDestination(2 * kBlock + 1024);
    openDrives();
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_EQ(content(2, 0, 1024), unreadable(1024));
    EXPECT_EQ(content(2, 1024, 2 * kBlock), noise(7, 1024, 2 * kBlock));
    EXPECT_THAT(events(), ElementsAre("ERROR: BAD READ BLOCK AT SECTOR: [0]"));
    testing::expectNoHandleLost([this] { EXPECT_EQ(run(runReverseClone), 1U); });
    expectIdle();
}

TEST_F(CopyFaults, DestinationThatRefusesEveryWriteGetsItsCloneToTheEnd) {
    addSource(13 * kBlock + 512);
    addDestination(13 * kBlock + 512, R"({"writes": [{"firstSector": 0, "sectors": 1665}]})");
    openDrives();
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(destination_->writeErrorCount, 14U) << "there is no limit of failed writes";
    EXPECT_EQ(display_.lastStatus(), " Image Completed");
    EXPECT_EQ(lastDriveStatus(*destination_), "BAD 14 failed writes");
    EXPECT_EQ(state().raceTrack.failed, 0);
    testing::expectNoHandleLost([this] { EXPECT_EQ(run(runForwardClone), 1U); });
    expectIdle();
}

TEST_F(CopyFaults, TheSystemMaySleepAgainHoweverAJobFails) {
    addSource(512, R"({"reads": [{"firstSector": 0}]})");
    addDestination(512, R"({"writes": [{"firstSector": 0}]})");
    openDrives();
    order_.source = source_;
    writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4));
    const auto expectSleepy = [](const char* job) {
        EXPECT_EQ(SetThreadExecutionState(ES_SYSTEM_REQUIRED), static_cast<EXECUTION_STATE>(ES_CONTINUOUS)) << job;
    };
    EXPECT_EQ(run(ForwardClone), 1U);
    expectSleepy("a clone that can neither read nor write");
    EXPECT_EQ(run(ReverseClone), 1U);
    expectSleepy("a reverse clone that can neither read nor write");
    std::filesystem::create_directory(kImage);
    EXPECT_EQ(run(ImageToFileWorker), 0U);
    expectSleepy("an image that cannot be created");
    std::filesystem::create_directory("Model X.42.img");
    EXPECT_EQ(run(ForensicImageWorker), 0U);
    expectSleepy("a forensic image that cannot be created");
    order_.path = "no.img";
    user_.expectStop("***** FATAL SYSTEM ERROR *****", "ImageToDrive: [no.img] OPEN_EXISTING FAILED");
    EXPECT_EQ(run(ImageToDriveWorker), 0U);
    expectSleepy("an image that cannot be opened");
}

} // namespace
} // namespace torvane
