#include "tests/component/copy_bench.h"
#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"

#include <filesystem>
#include <regex>
#include <string>

// The copies, maps and sources that tests/evidence/read_back.py gives to the program whose maps these are lie in
// TORVANE_EVIDENCE_FOLDER.

// The import slot of the function that a test replaces. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" decltype(&WriteFile) __imp_WriteFile;

namespace torvane {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::noise;
using testing::readFile;
using testing::writeFile;

constexpr const char* kImage = "Model X.41.img";
constexpr const char* kMap = "Model X.41.img.map";
constexpr const char* kRecord = "ACQUISITION--Model X.41.txt";
constexpr const char* kVerify = "****** VERIFY HASH ******";
constexpr const char* kVerifyQuestion = "Would you like to Verify the Image HASH?";

class Evidence : public testing::CopyBench {
  protected:
    static constexpr std::uint64_t kSeed = 7;

    void openSource(std::size_t bytes, const std::string& faults = "{}") {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "backing": {"pattern": "noise", "seed": 7},
                            "identity": {"product": "Model X", "revision": "A1", "serial": "S1"}, "size": )" +
                        std::to_string(bytes) + R"(, "faults": )" + faults + "}");
        size_ = bytes;
        if (alsoDestination_ != 0) {
            bench_.addDrive(R"({"number": 2, "bus": "nvme", "size": )" + std::to_string(alsoDestination_) +
                            R"(, "identity": {"product": "Destination", "serial": "D1"}})");
        }
        source_ = &drive(1);
        order_.source = source_;
        order_.kind = CopyKind::kForensicImage;
        order_.caseInformation = {.caseNumber = "2026/117", .examiner = "K. Ito", .note = "from the safe"};
        writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4));
    }

    /// Asks to stop once that part of the status line is shown.
    void stopAt(
        const std::string& status, const std::function<void()>& before = [] {}) {
        display_.onStatus = [this, status, before](std::string_view text) {
            if (text.find(status) != std::string_view::npos) {
                before();
                terminate();
                display_.onStatus = {}; // and with it this function
            }
        };
    }

    /// The map's ranges: "0x00000000  0x00010000  +\n...".
    static std::string rangesOf(const std::string& map) {
        constexpr std::string_view kHeading = "#      pos        size  status\n";
        const std::size_t at = map.find(kHeading);
        return at == std::string::npos ? "no map: " + map : map.substr(at + kHeading.size());
    }

    /// Leaves copy, map and source for the other program. `copy` may go on behind the source.
    void keep(const std::string& name, const std::string& copy, const std::string& map) const {
        const fs::path folder(TORVANE_EVIDENCE_FOLDER);
        fs::create_directories(folder);
        writeFile((folder / (name + ".source")).string(), noise(kSeed, 0, size_));
        writeFile((folder / (name + ".copy")).string(), copy);
        writeFile((folder / (name + ".map")).string(), map);
        if (fs::exists(kRecord)) {
            writeFile((folder / (name + ".record.txt")).string(), readFile(kRecord));
        }
    }

    /// The digest of the image's own hash file, as the record writes it.
    static std::string md5InRecord() {
        const std::string file = readFile("MD5-HASH--Model X.41.txt");
        std::string digits = file.substr(file.rfind('\t') + 1);
        std::erase(digits, ' ');
        std::transform(digits.begin(), digits.end(), digits.begin(),
                       [](char digit) { return digit >= 'A' ? static_cast<char>(digit - 'A' + 'a') : digit; });
        return digits;
    }

    static void expectRecord(const std::vector<std::string>& lines) {
        const std::string record = readFile(kRecord);
        for (const std::string& line : lines) {
            EXPECT_THAT("\r\n" + record, HasSubstr("\r\n" + line + "\r\n"));
        }
    }

    std::size_t alsoDestination_ = 0; ///< bytes of a second drive
    std::size_t size_ = 0;
    DriveRecord* source_ = nullptr;
};

/// The record as it is kept, with its times and what the machine tells replaced.
std::string withoutMachine(const std::string& record) {
    std::string text = record;
    const auto replace = [&text](const char* what, const char* by) {
        text = std::regex_replace(text, std::regex(what), by);
    };
    replace("Build: [0-9a-f]{12}(-modified)?|Build: unknown", "Build: #");
    replace("\r\nMachine: [^\r]+", "\r\nMachine: #");
    replace("\r\nUser: [^\r]+", "\r\nUser: #");
    replace(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d [+-]\d\d:\d\d)", "<moment>");
    replace(R"(: [^\r\n]*[\\/](Model X.41.img))", ": <folder>\\$1");
    replace("\r", "");
    return text;
}

TEST_F(Evidence, OfAForensicImageWithBadPlacesTellsThemAndItsVerification) {
    openSource(5 * kBlock + 512, R"({"reads": [{"firstSector": 200}, {"firstSector": 260}, {"firstSector": 640}]})");
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] {
        // What lies there while the question waits for its answer.
        EXPECT_THAT(readFile(kRecord), HasSubstr("\r\nEnding: completed\r\n"));
        EXPECT_THAT(readFile(kRecord), EndsWith("\r\nVerification: not made\r\n"));
        EXPECT_NE(readFile(kMap), "");
    });
    user_.expectInform("****** VERIFY SUCCEEDED ******", "CREATED File has been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    EXPECT_EQ(withoutMachine(readFile(kRecord)),
              "Program: Torvane\nVersion: 1.2.0\nBuild: #\nMachine: #\nUser: #\nJob: Forensic image\n"
              "Case number: 2026/117\nExaminer: K. Ito\nNote: from the safe\n"
              "Drive number: 1\nTransport: NVM Express\nModel: Model X\nSerial number: S1\n"
              "Serial number told by the device: S1\nSerial number printed on the device: not told\nFirmware: A1\n"
              "Size in bytes: 328192\nSectors: 641\nSector size in bytes: 512\n"
              "Read-only before: no\nRead-only after: no\n"
              "Image: <folder>\\Model X.41.img\nMap: <folder>\\Model X.41.img.map\n"
              "Start: <moment>\nEnd: <moment>\nEnding: completed\nLost: 3 unreadable blocks\nStopped by: nobody\n"
              "MD5: " +
                  md5InRecord() +
                  "\nSHA-256: not made\nBytes missing from the image: 131584\n"
                  "Unreadable ranges: 2\n"
                  "Unreadable range 1: sectors 128 to 383, offset 65536 bytes, length 131072 bytes\n"
                  "Unreadable range 2: sectors 640 to 640, offset 327680 bytes, length 512 bytes\n"
                  "Write failures: 0\nVerification: verified\nVerification start: <moment>\n"
                  "Verification end: <moment>\n");
    EXPECT_EQ(rangesOf(readFile(kMap)), "0x00000000  0x00010000  +\n"
                                        "0x00010000  0x00020000  *\n"
                                        "0x00030000  0x00020000  +\n"
                                        "0x00050000  0x00000200  *\n");
    keep("forensic", readFile(kImage), readFile(kMap));
    EXPECT_FALSE(fs::exists(std::string(kMap) + ".new"));
    EXPECT_FALSE(fs::exists(std::string(kRecord) + ".new"));
}

TEST_F(Evidence, OfAnImageThatWasStoppedTellsWhoDidItAndWhatWasNotReached) {
    openSource(8 * kBlock, R"({"reads": [{"firstSector": 3}]})");
    stopAt("%25", [] {
        EXPECT_THAT(readFile(kRecord), HasSubstr("\r\nEnd: not yet\r\nEnding: under way\r\n"));
        EXPECT_EQ(rangesOf(readFile(kMap)), "0x00000000  0x00080000  ?\n") << "what a crash would leave";
    });
    order_.kind = CopyKind::kImageToFile;
    EXPECT_EQ(run(runImageToFile), 1U);
    expectRecord({"Job: Image", "Ending: not completed", "Stopped by: the user", "MD5: not made",
                  "Unreadable range 1: sectors 0 to 127, offset 0 bytes, length 65536 bytes"});
    const std::size_t written = fs::file_size(kImage);
    EXPECT_THAT(rangesOf(readFile(kMap)), ::testing::MatchesRegex("0x00000000  0x00010000  .\n"
                                                                  "0x00010000  0x000.0000  .\n"
                                                                  "0x000.0000  0x000.0000  .\n"));
    EXPECT_LT(written, 8 * kBlock);
    keep("stopped", readFile(kImage), readFile(kMap));
}

TEST_F(Evidence, OfAnImageThatWasStoppedBeforeItsFirstBlockIsThere) {
    openSource(2 * kBlock);
    EXPECT_EQ(runAskedToStop(runForensicImage), 1U);
    expectRecord({"Ending: not completed", "Stopped by: the user", "Bytes missing from the image: 131072"});
    EXPECT_EQ(rangesOf(readFile(kMap)), "0x00000000  0x00020000  ?\n");
    keep("not-begun", readFile(kImage), readFile(kMap));
}

TEST_F(Evidence, OfAnImageWithoutMemoryIsThere) {
    openSource(kBlock);
    EXPECT_EQ(run(runForensicImage, kTooMuchMemory), 0U);
    expectRecord({"Ending: not started", "Stopped by: too little memory"});
    EXPECT_EQ(rangesOf(readFile(kMap)), "0x00000000  0x00010000  ?\n");
}

TEST_F(Evidence, OfAnImageWithoutAPlainJobsMemoryIsThereToo) {
    openSource(kBlock);
    order_.kind = CopyKind::kImageToFile;
    EXPECT_EQ(run(runImageToFile, kTooMuchMemory), 0U);
    expectRecord({"Job: Image", "Ending: not started", "Stopped by: too little memory"});
}

TEST_F(Evidence, OfAnImageThatCouldNotBeWrittenTellsTheLostBlock) {
    openSource(8 * kBlock);
    static decltype(&WriteFile) original = nullptr;
    static int blocks = 0;
    blocks = 0;
    {
        const testing::ImportPatched patched(
            __imp_WriteFile,
            +[](HANDLE file, LPCVOID bytes, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) -> BOOL {
                return size == kBlock && ++blocks == 3 ? FALSE : original(file, bytes, size, count, overlapped);
            });
        original = patched.original();
        EXPECT_EQ(run(runForensicImage), 1U);
    }
    expectRecord({"Ending: not completed", "Stopped by: a failed write", "Write failures: 1"});
    EXPECT_EQ(rangesOf(readFile(kMap)), "0x00000000  0x00020000  +\n"
                                        "0x00020000  0x00060000  ?\n");
    keep("not-written", readFile(kImage), readFile(kMap));
}

TEST_F(Evidence, OfTooManyBadBlocksNamesTheLimit) {
    openSource(14 * kBlock, R"({"reads": [{"firstSector": 0, "sectors": 1792}]})");
    order_.kind = CopyKind::kImageToFile;
    EXPECT_EQ(run(runImageToFile), 1U);
    expectRecord({"Ending: not completed", "Stopped by: the limit of 11 unreadable blocks", "Unreadable ranges: 1",
                  "Unreadable range 1: sectors 0 to 1407, offset 0 bytes, length 720896 bytes"});
}

TEST_F(Evidence, OfAVerificationThatWasStoppedSaysSo) {
    openSource(4 * kBlock);
    user_.expectAsk(kVerify, kVerifyQuestion, true, [&] { stopAt(" Beginning Verification"); });
    user_.expectInform("****** VERIFY FAILED ******", "CREATED File has NOT been verified");
    EXPECT_EQ(run(runForensicImage), 1U);
    expectRecord({"Ending: completed", "Verification: not verified, stopped by the user"});
}

TEST_F(Evidence, OfAVerificationThatCouldNotBeMadeSaysSo) {
    openSource(4 * kBlock);
    user_.expectAsk(kVerify, kVerifyQuestion, true, [] { fs::remove(kImage); });
    EXPECT_EQ(run(runForensicImage), 1U);
    expectRecord({"Ending: completed", "Verification: could not be made"});
}

TEST_F(Evidence, LiesInFoldersOfAnyLengthAndLettersInUtf8) {
    openSource(2 * kBlock);
    const testing::TextsAreUtf8 utf8;
    for (const bool isLong : {true, false}) {
        const testing::HardFolder folder =
            isLong ? testing::HardFolder::withLongPath() : testing::HardFolder::withForeignName();
        order_.path = folder.path();
        writeFile("FileCounter.txt", std::string("\x28\0\0\0", 4));
        order_.kind = CopyKind::kImageToFile;
        EXPECT_EQ(run(runImageToFile), 1U);
        EXPECT_THAT(folder.content(L"ACQUISITION--Model X.41.txt"),
                    HasSubstr("\r\nImage: " + folder.path() + "\\Model X.41.img\r\n"));
        EXPECT_THAT(rangesOf(folder.content(L"Model X.41.img.map")), "0x00000000  0x00020000  +\n");
        EXPECT_EQ(folder.files().size(), 3U);
    }
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Evidence, ANumberWhoseRecordOrMapExistsIsTaken) {
    openSource(kBlock);
    writeFile(kRecord, "an old record");
    writeFile("Model X.42.img.map", "an old map");
    order_.kind = CopyKind::kImageToFile;
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_EQ(readFile(kRecord), "an old record");
    EXPECT_EQ(readFile("Model X.42.img.map"), "an old map");
    EXPECT_FALSE(fs::exists("Model X.42.img"));
    EXPECT_TRUE(fs::exists("Model X.43.img.map"));
}

TEST_F(Evidence, ThatCannotBeWrittenIsToldOnceAndTheImageIsCompleted) {
    openSource(kBlock);
    fs::create_directory(kRecord);
    fs::create_directory(kMap);
    order_.kind = CopyKind::kImageToFile;
    EXPECT_EQ(run(runImageToFile), 1U);
    EXPECT_THAT(events(), ElementsAre("ERROR: Could not WRITE [" + order_.path + "\\" + kRecord + "]",
                                      "ERROR: Could not WRITE [" + order_.path + "\\" + kMap + "]"));
    EXPECT_EQ(lastDriveStatus(*source_), "COMPLETED");
}

class DriveEvidence : public Evidence {
  protected:
    void openDrives(std::size_t source, std::size_t destination, const std::string& faults) {
        alsoDestination_ = destination;
        openSource(source, faults);
        order_.destination = &drive(2);
        order_.path.clear();
    }
    /// The one map of the current folder.
    static std::string mapName() {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(".")) {
            if (entry.path().extension() == ".map") {
                names.push_back(entry.path().filename().string());
            }
        }
        EXPECT_EQ(names.size(), 1U);
        return names.empty() ? "" : names.front();
    }
};

TEST_F(DriveEvidence, OfAReverseCloneIsAMapBesideTheLog) {
    openDrives(6 * kBlock + 512, 7 * kBlock, R"({"reads": [{"firstSector": 500}, {"firstSector": 0}]})");
    order_.kind = CopyKind::kReverseClone;
    EXPECT_EQ(run(runReverseClone), 1U);
    EXPECT_THAT(mapName(),
                ::testing::MatchesRegex("CLONE--Model X.S1.\\d\\d\\d\\d\\d\\d\\d\\d-\\d\\d\\d\\d\\d\\d.map"));
    EXPECT_EQ(rangesOf(readFile(mapName())), "0x00000000  0x00000200  *\n"
                                             "0x00000200  0x00030000  +\n"
                                             "0x00030200  0x00010000  *\n"
                                             "0x00040200  0x00020000  +\n");
    keep("reverse-clone", content(2, 0, 7 * kBlock), readFile(mapName()));
}

TEST_F(DriveEvidence, OfACloneOntoASmallerDriveTellsWhatHadNoRoom) {
    openDrives(6 * kBlock, 4 * kBlock, "{}");
    order_.kind = CopyKind::kForwardClone;
    EXPECT_EQ(run(runForwardClone), 1U);
    EXPECT_EQ(rangesOf(readFile(mapName())), "0x00000000  0x00040000  +\n"
                                             "0x00040000  0x00020000  ?\n");
}

TEST_F(DriveEvidence, OfAnImageToDriveHasTheImagesName) {
    openDrives(kBlock, 4 * kBlock, "{}");
    order_.source = nullptr;
    writeFile("some.img", noise(3, 0, 2 * kBlock));
    order_.path = fs::absolute("some.img").string();
    order_.kind = CopyKind::kImageToDrive;
    EXPECT_EQ(run(runImageToDrive), 1U);
    EXPECT_THAT(mapName(), ::testing::StartsWith("IMAGE-TO-DRIVE--some.img."));
    EXPECT_EQ(rangesOf(readFile(mapName())), "0x00000000  0x00020000  +\n");
}

} // namespace
} // namespace torvane
