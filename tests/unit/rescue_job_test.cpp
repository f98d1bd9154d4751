#include "copy/evidence/map_file.h"
#include "copy/jobs/copy_job.h"
#include "copy/jobs/image_names.h"
#include "copy/jobs/rescue_words.h"
#include "copy/rescue/rescue_owner.h"
#include "copy/rescue/rescue_system.h"
#include "records/drive_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace torvane {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr std::size_t kSector = 512;
constexpr std::size_t kBytes = 300 * kSector + 100; // an odd end
constexpr const char* kNotBegun = "***** RESCUE NOT STARTED *****";

std::byte patternAt(std::size_t place) {
    return static_cast<std::byte>(place * 31 + place / 253);
}

/// A machine with a drive to rescue, a destination, files and a user, in memory.
class Machine : public CopySystem, public DriveIo, public JobDisplay, public RescueSystem {
  public:
    Machine() {
        source.model.assign("Model X");
        source.serialNumber.assign("S1");
        source.driveNumber = 3;
        source.bytesPerSector = kSector;
        source.sizeBytes = kBytes;
        destination.model.assign("Model Y");
        destination.serialNumber.assign("S9");
        destination.driveNumber = 4;
        destination.bytesPerSector = kSector;
        destination.sizeBytes = 400 * kSector;
        destinationBytes.resize(400 * kSector);
    }

    std::uint32_t run() {
        const CopyOrder mine = order;
        JobClaim claim = jobs.begin(jobKindOf(mine.kind)).value();
        return runRescueJob({.order = mine,
                             .claim = claim,
                             .track = track_,
                             .drives = *this,
                             .system = *this,
                             .display = *this,
                             .keptImages = kept_,
                             .rescue = this});
    }

    // --- RescueSystem ---

    class Drive : public RescueDrive {
      public:
        explicit Drive(Machine& machine) : machine_(machine) {}
        SourceAnswer read(std::uint64_t offset, std::span<std::byte> bytes,
                          const std::function<bool()>& mayWait) override {
            return machine_.readSource(offset, bytes, mayWait);
        }
        bool findAgain(const std::function<bool()>& mayWait) override {
            EXPECT_TRUE(mayWait());
            if (--machine_.looksUntilStop == 0) {
                machine_.jobs.askToStop();
            }
            return machine_.looksUntilFound-- <= 0;
        }

      private:
        Machine& machine_;
    };
    class Image : public RescueImage {
      public:
        Image(Machine& machine, std::string& file) : machine_(machine), file_(file) {}
        bool write(std::uint64_t offset, std::span<const std::byte> bytes) override {
            if (machine_.writesFail) {
                return false;
            }
            file_.resize(std::max(file_.size(), static_cast<std::size_t>(offset) + bytes.size()));
            std::memcpy(file_.data() + offset, bytes.data(), bytes.size());
            return true;
        }
        bool flush() override { return true; }
        bool read(std::uint64_t offset, std::span<std::byte> bytes) override {
            if (offset + bytes.size() > file_.size()) {
                return false;
            }
            std::memcpy(bytes.data(), file_.data() + offset, bytes.size());
            return true;
        }
        std::uint64_t size() override { return file_.size(); }
        bool keepsHoles() override { return machine_.holesAreKept; }

      private:
        Machine& machine_;
        std::string& file_;
    };

    std::unique_ptr<RescueDrive> openDrive(const DriveRecord&, const DriveRecord*) override {
        return driveIsThere ? std::make_unique<Drive>(*this) : nullptr;
    }
    std::unique_ptr<RescueImage> openImage(const std::string& path) override {
        return imageOpens ? std::make_unique<Image>(*this, files[path]) : nullptr;
    }
    std::optional<std::string> readText(const std::string& path) override {
        const auto found = files.find(path);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    }
    void pause() override { now_ += 1000; }

    SourceAnswer readSource(std::uint64_t offset, std::span<std::byte> bytes, const std::function<bool()>& mayWait) {
        ++reads;
        now_ += 100;
        if (reads == stopAtRead) {
            jobs.askToStop();
        }
        if (reads == goneAtRead) {
            return SourceAnswer::kGone;
        }
        if (reads == hangsAtRead) {
            EXPECT_TRUE(mayWait());
            jobs.askToStop();
            while (mayWait()) {
                now_ += 1000;
            }
            return SourceAnswer::kLeft;
        }
        for (std::uint64_t sector = offset / kSector; sector * kSector < offset + bytes.size(); ++sector) {
            if (bad.contains(sector)) {
                return SourceAnswer::kFailed;
            }
        }
        const std::size_t shift = changesAtRead != 0 && reads >= changesAtRead ? 7 : 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = patternAt(offset + i + shift);
        }
        return SourceAnswer::kWhole;
    }

    // --- DriveIo: the destination ---

    bool canReach(const DriveRecord&, std::uint64_t) override { return true; }
    TransferOutcome read(const DriveRecord&, std::uint64_t offset, std::span<std::byte> bytes) override {
        std::memcpy(bytes.data(), destinationBytes.data() + offset, bytes.size());
        return TransferOutcome::kWhole;
    }
    TransferOutcome write(const DriveRecord&, std::uint64_t offset, std::span<const std::byte> bytes) override {
        if (writesFail) {
            volumes = {"K:\\"};
            return TransferOutcome::kRefused;
        }
        std::memcpy(destinationBytes.data() + offset, bytes.data(), bytes.size());
        return TransferOutcome::kWhole;
    }
    TransferOutcome flush(const DriveRecord&) override { return TransferOutcome::kWhole; }

    // --- CopySystem ---

    bool isStillTheSource(const DriveRecord&) override { return sourceIsTheSame && looksUntilOtherSource-- > 0; }
    bool isStillTheDestination(const DriveRecord&) override { return destinationIsTheSame; }
    void rememberPartitionTable(DriveRecord&) override { ++tablesRemembered; }
    std::optional<std::string> readTableAnew(const DriveRecord&) override {
        ++tablesRead;
        return tableCannotBeRead ? std::optional<std::string>("it would not") : std::nullopt;
    }
    DiskChange cleanDisk(DriveRecord&) override {
        ++cleans;
        if (stopsAtClean) {
            jobs.askToStop();
        }
        return DiskChange::kMade;
    }
    std::vector<std::string> volumesOn(const DriveRecord&) override { return volumes; }
    std::optional<bool> isReadOnly(const DriveRecord&) override { return false; }
    void setDriveStatus(const DriveRecord& drive, const std::string& text) override {
        statuses[std::string(drive.model.view())] = text;
    }
    ImageFileName nextImageName(std::string_view folder, const DriveRecord& drive) override {
        ++number;
        return {imageFileName(folder, drive.model.view(), number), number};
    }
    bool fileExists(const std::string& path) override { return files.contains(path); }
    std::unique_ptr<ImageFile> openImage(const std::string& path, ImageUse) override {
        if (!imageIsMade) {
            return nullptr;
        }
        files[path];
        return std::make_unique<MadeFile>();
    }
    bool writeTextFile(const std::string& path, std::string_view text) override {
        return saveText(path, text, TextUse::kNew);
    }
    bool saveText(const std::string& path, std::string_view text, TextUse use) override {
        if (oldMapsFail && path.ends_with(".old")) {
            return false;
        }
        const bool isMap = path.ends_with(".map");
        mapsUntilFailure -= isMap ? 1 : 0;
        if ((use == TextUse::kNew && files.contains(path)) || (isMap && mapsUntilFailure < 0)) {
            return false;
        }
        files[path] = text;
        return true;
    }
    std::unique_ptr<BlockHasher> makeHasher(DigestKind, HasherFailure&) override { return nullptr; }
    std::int64_t tick() override { return now_; }
    LocalMoment now() override { return {.year = 2026, .month = 11, .day = 22, .hour = 20, .minute = 15, .second = 3}; }
    MachineNames machineNames() override { return {}; }
    void logError(const std::string& text) override { errors.push_back(text); }
    void logJob(const std::string& text) override { rows.push_back(text); }
    void print(const std::string&) override {}
    void stop(const char* caption, const char* text) override { boxes.push_back(std::string(caption) + " " + text); }
    void inform(const char*, const char*) override {}
    bool ask(const char* caption, const char* text) override {
        stop(caption, text);
        return yes;
    }
    bool askDefaultNo(const char* caption, const char* text) override { return ask(caption, text); }

    // --- JobDisplay ---

    void setStatus(std::string_view text) override { status = text; }
    void setLosses(std::string_view text, bool) override { losses = text; }
    void showRun(const RunFigures&) override {}
    void endRun() override {}
    void setImagePlace(std::string_view path) override { place = path; }
    void callUser(bool good) override { calledWell = good; }
    void showDigests(const Digests&, const Digests&) override {}
    void showRescue(const RescueShown& shown) override { shownLast = shown; }
    void repaint() override {}
    void repaintTrack(const TrackArea&) override {}
    void startExplosionTimer(int) override {}

    DriveRecord source;
    DriveRecord destination;
    CopyOrder order{.kind = CopyKind::kRescue, .source = &source, .destination = nullptr, .path = "E:\\Images"};
    std::set<std::uint64_t> bad;
    int stopAtRead = 0;
    int goneAtRead = 0;
    int hangsAtRead = 0;
    int looksUntilFound = 0;
    int changesAtRead = 0; ///< another drive from then on
    int looksUntilStop = 1000;
    bool driveIsThere = true;
    bool imageIsMade = true;
    bool imageOpens = true;
    bool holesAreKept = true;
    int mapsUntilFailure = 1000;
    bool oldMapsFail = false;
    bool stopsAtClean = false;
    bool writesFail = false;
    bool sourceIsTheSame = true;
    int looksUntilOtherSource = 1000;
    bool destinationIsTheSame = true;
    bool tableCannotBeRead = false;
    bool yes = false;
    std::vector<std::string> volumes;

    int reads = 0;
    int number = 40;
    int cleans = 0;
    int tablesRead = 0;
    int tablesRemembered = 0;
    std::map<std::string, std::string> files;
    std::string destinationBytes;
    std::vector<std::string> errors;
    std::vector<std::string> rows;
    std::vector<std::string> boxes;
    std::map<std::string, std::string> statuses;
    std::string status;
    std::string losses;
    std::string place;
    std::optional<bool> calledWell;
    std::optional<RescueShown> shownLast;
    Jobs jobs;

  private:
    class MadeFile : public ImageFile {
      public:
        TransferOutcome read(std::span<std::byte>) override { return TransferOutcome::kFailed; }
        TransferOutcome write(std::span<const std::byte>) override { return TransferOutcome::kFailed; }
        TransferOutcome flush() override { return TransferOutcome::kFailed; }
        bool rewind() override { return false; }
        std::uint64_t size() override { return 0; }
    };

    RaceTrackState track_;
    OpenImages kept_;
    std::int64_t now_ = 5000;
};

class RescueJobTest : public ::testing::Test {
  protected:
    static constexpr const char* kImage = "E:\\Images\\Model X.41.img";
    static constexpr const char* kDriveMap = "RESCUE--Model X.S1--Model Y.S9.map";

    [[nodiscard]] static std::string expected(const std::set<std::uint64_t>& bad) {
        std::string bytes(kBytes, '\0');
        for (std::size_t i = 0; i < kBytes; ++i) {
            bytes[i] = static_cast<char>(patternAt(i));
        }
        for (const std::uint64_t sector : bad) {
            fillWithUnreadableMarker(std::as_writable_bytes(std::span(bytes).subspan(sector * kSector, kSector)));
        }
        return bytes;
    }
    [[nodiscard]] SourceMap mapAt(const std::string& path) const {
        const auto read = readMapFile(machine_.files.at(path), kBytes);
        return std::get<MapFile>(read).map;
    }
    [[nodiscard]] SourceMap map() const { return mapAt(std::string(kImage) + ".map"); }
    void goOn() {
        machine_.order.path = kImage;
        machine_.order.rescue.goOn = true;
    }

    Machine machine_;
};

TEST_F(RescueJobTest, BringsWhatCanBeReadIntoANewImage) {
    machine_.bad = {7, 200};
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.files.at(kImage), expected({7, 200}));
    EXPECT_EQ(map().bytes(RangeStatus::kBad), 2 * kSector);
    EXPECT_EQ(map().bytes(RangeStatus::kFinished), kBytes - 2 * kSector);
    EXPECT_THAT(machine_.files.at("E:\\Images\\ACQUISITION--Model X.41.txt"),
                AllOf(HasSubstr("Job: Rescue\r\n"), HasSubstr("Ending: completed\r\n"),
                      HasSubstr("Unreadable ranges: 2\r\n"), HasSubstr("sectors 200 to 200")));
    EXPECT_EQ(machine_.status, " Rescue Completed, not everything could be read");
    EXPECT_EQ(machine_.losses, "1 KB of the source not copied");
    EXPECT_EQ(machine_.statuses.at("Model X"), "BAD 1 KB of the source not copied");
    EXPECT_EQ(machine_.place, kImage);
    EXPECT_EQ(machine_.calledWell, false);
    EXPECT_THAT(machine_.rows, ElementsAre("Rescue of drive 3 [Model X] [S1] into [E:\\Images] begins",
                                           HasSubstr("completed. 1 KB of the source not copied")));
    ASSERT_TRUE(machine_.shownLast);
    EXPECT_FALSE(machine_.shownLast->picture.bars.empty());
    EXPECT_FALSE(machine_.shownLast->picture.now) << "nothing is read any more";
}

TEST_F(RescueJobTest, OfAHealthyDriveIsCompleted) {
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.files.at(kImage), expected({}));
    EXPECT_EQ(machine_.status, " Rescue SUCCESSFULLY Completed");
    EXPECT_EQ(machine_.statuses.at("Model X"), "COMPLETED");
    EXPECT_EQ(machine_.calledWell, true);
}

TEST_F(RescueJobTest, GoesOnWithWhatIsMissing) {
    machine_.bad = {7};
    machine_.stopAtRead = 2;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.status, " Rescue stopped. It can go on later");
    EXPECT_THAT(machine_.files.at("E:\\Images\\ACQUISITION--Model X.41.txt"), HasSubstr("Stopped by: the user"));
    goOn();
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.files.at(kImage), expected({7}));
    EXPECT_THAT(machine_.files.at("E:\\Images\\RESCUE--Model X.41.img.20261122-201503.txt"),
                HasSubstr("Ending: completed"));
}

TEST_F(RescueJobTest, WaitsForADriveThatHasGone) {
    machine_.goneAtRead = 2;
    machine_.looksUntilFound = 3;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.files.at(kImage), expected({}));
    EXPECT_THAT(machine_.errors, ElementsAre(HasSubstr("does not answer any more"), HasSubstr("is back")));
}

TEST_F(RescueJobTest, EndsWhenNobodyWaitsForTheDriveAnyLonger) {
    machine_.hangsAtRead = 2;
    machine_.looksUntilFound = 1000;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.status, " Rescue stopped. It can go on later");
    EXPECT_EQ(map().bytes(RangeStatus::kFinished), kRescueRead);
}

TEST_F(RescueJobTest, LeavesASectorThatNobodyWaitedForToItsNextTurn) {
    machine_.bad = {7};
    machine_.hangsAtRead = 5; // the second of those by sector
    machine_.looksUntilFound = 1000;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(map().bytes(RangeStatus::kBad), 0U);
    machine_.looksUntilFound = 0;
    goOn();
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.files.at(kImage), expected({7}));
}

TEST_F(RescueJobTest, EndsWhenAWriteFails) {
    machine_.writesFail = true;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.status, " Could not WRITE. Rescue stopped");
    EXPECT_THAT(machine_.statuses.at("Model X"), HasSubstr("1 failed write"));
}

TEST_F(RescueJobTest, EndsWhenItsMapCannotBeSavedAnyMore) {
    machine_.bad = {7};
    machine_.mapsUntilFailure = 3;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.status, " The MAP could not be saved. Rescue stopped");
    EXPECT_THAT(machine_.statuses.at("Model X"), HasSubstr("not completed"));
    EXPECT_EQ(machine_.calledWell, false);
}

TEST_F(RescueJobTest, IsNotBegunWithACopyThatIsNotWhatItsMapTells) {
    EXPECT_EQ(machine_.run(), 1U);
    goOn();
    machine_.files[kImage][440] ^= 1;
    EXPECT_EQ(machine_.run(), 1U) << "the system may have changed a disk's signature";
    std::string& image = machine_.files[kImage];
    for (const std::size_t place : std::initializer_list<std::size_t>{kRescueRead, 2 * kRescueRead}) {
        image[place] = static_cast<char>(image[place] ^ 1);
    }
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("Most of what the map calls finished is what the drive holds"));
    EXPECT_THAT(machine_.errors, ElementsAre(HasSubstr("sector 128 of"), HasSubstr("sector 256 of")));
    machine_.yes = true;
    EXPECT_EQ(machine_.run(), 1U);
    std::string cleaned = image;
    std::swap(cleaned, image);
    image[0] = static_cast<char>(image[0] ^ 1);
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("is not what the drive holds")) << "what a clean changes";
    std::swap(cleaned, image);
    for (char& each : image) {
        each = static_cast<char>(each ^ 1);
    }
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("is not what the drive holds"));
    machine_.files[kImage].resize(100);
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("has not the size that its map tells"));
}

TEST_F(RescueJobTest, AsksBeforeItGoesOnWithACopyThatCouldNotBeCompared) {
    EXPECT_EQ(machine_.run(), 1U);
    goOn();
    for (std::uint64_t sector = 0; sector <= kBytes / kSector; ++sector) {
        machine_.bad.insert(sector);
    }
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("could be compared with the drive"));
    machine_.goneAtRead = machine_.reads + 1;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("The drive does not answer any more"));
}

TEST_F(RescueJobTest, AsksWhereTheMapCallsNoWholeSectorFinished) {
    goOn();
    machine_.files[kImage].resize(256);
    machine_.files[std::string(kImage) + ".map"] =
        "# Image of drive 3 [Model X] [S1] into [x]\n0x0 ? 1\n0x0 0x100 +\n0x100 0x100 ?\n";
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("could be compared with the drive"));
}

TEST_F(RescueJobTest, OfACopyThatWasWrittenToInAPlaceGoesOnWhenTheDriveIsBack) {
    machine_.stopAtRead = 2;
    EXPECT_EQ(machine_.run(), 1U);
    goOn();
    machine_.stopAtRead = 0;
    machine_.yes = true;
    std::string& image = machine_.files[kImage];
    image[kRescueRead] = static_cast<char>(image[kRescueRead] ^ 1);
    machine_.goneAtRead = machine_.reads + 16; // the first after the samples
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_THAT(machine_.errors,
                ElementsAre(HasSubstr("sector 128 of"), HasSubstr("does not answer any more"), HasSubstr("is back")));
    EXPECT_EQ(map().bytes(RangeStatus::kFinished), kBytes);
}

TEST_F(RescueJobTest, DoesNotTakeAnotherDriveForTheOneThatIsBack) {
    machine_.goneAtRead = 2;
    machine_.changesAtRead = 3;
    machine_.looksUntilStop = 3;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.status, " Rescue stopped. It can go on later");
    EXPECT_EQ(map().bytes(RangeStatus::kFinished), kRescueRead);
    EXPECT_THAT(machine_.errors, ElementsAre(HasSubstr("does not answer"), HasSubstr("is not what was copied")));
}

TEST_F(RescueJobTest, OntoADriveBeginsAnewAndKeepsTheEarlierMap) {
    machine_.order.destination = &machine_.destination;
    machine_.bad = {7};
    EXPECT_EQ(machine_.run(), 1U);
    const std::string earlier = machine_.files.at(kDriveMap);
    machine_.bad = {};
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.cleans, 2);
    EXPECT_EQ(machine_.files.at(std::string(kDriveMap) + ".old"), earlier);
    EXPECT_EQ(mapAt(kDriveMap).bytes(RangeStatus::kFinished), kBytes);

    machine_.mapsUntilFailure = 0;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("could not be written"));
    machine_.oldMapsFail = true;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("could not be kept"));
    EXPECT_EQ(machine_.cleans, 2) << "before the clean";
}

TEST_F(RescueJobTest, OntoADriveThatWasStoppedWhileItWasCleanedKnowsOfNothingFinished) {
    machine_.order.destination = &machine_.destination;
    EXPECT_EQ(machine_.run(), 1U);
    machine_.stopsAtClean = true;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_EQ(mapAt(kDriveMap).bytes(RangeStatus::kFinished), 0U);
}

TEST_F(RescueJobTest, IsNotGoneOnWithADriveThatHasChangedWhileABoxWasOpen) {
    EXPECT_EQ(machine_.run(), 1U);
    goOn();
    machine_.looksUntilOtherSource = 1;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("SOURCE is not the drive that was loaded"));
}

TEST_F(RescueJobTest, OntoADriveIsNotGoneOnWithACopyThatIsNotWhatItsMapTells) {
    machine_.order.destination = &machine_.destination;
    EXPECT_EQ(machine_.run(), 1U);
    machine_.destinationBytes[0] = static_cast<char>(machine_.destinationBytes[0] ^ 1); // as a clean leaves it
    machine_.order.rescue.goOn = true;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("is not what the drive holds"));
}

TEST_F(RescueJobTest, OntoADriveTellsOfAVolumeThatWasMounted) {
    machine_.order.destination = &machine_.destination;
    machine_.writesFail = true;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("***** MOUNTED DURING THE COPY *****"));
}

TEST_F(RescueJobTest, IsNotBegunWithoutItsDriveOrItsImage) {
    machine_.driveIsThere = false;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("could not be opened"));
    machine_.driveIsThere = true;
    machine_.sourceIsTheSame = false;
    EXPECT_EQ(machine_.run(), 0U);
    machine_.sourceIsTheSame = true;
    machine_.imageIsMade = false;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("No image could be created in"));
    machine_.imageIsMade = true;
    machine_.imageOpens = false;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("could not be opened for writing"));
    machine_.imageOpens = true;
    machine_.holesAreKept = false;
    machine_.order.rescue.fromEnd = true;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("would fill the whole image with zeros"));
    machine_.order.rescue.fromEnd = false;
    machine_.mapsUntilFailure = 0;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("Without it the rescue could never go on"));
    machine_.mapsUntilFailure = 1000;
    machine_.source.bytesPerSector = 520;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("has sectors of 520 bytes"));
    EXPECT_EQ(machine_.reads, 0);
    EXPECT_FALSE(machine_.jobs.active());
}

TEST_F(RescueJobTest, IsNotBegunWithAnImageThatIsNotThisDrives) {
    goOn();
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes, ElementsAre(AllOf(HasSubstr(kNotBegun), HasSubstr("There is no map"))));
    const std::string map = std::string(kImage) + ".map";
    machine_.files[map] = "0x0 ? 1\nnonsense\n";
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("is no map of this drive: line 2: "));
    machine_.files[map] = "# Image of drive 1 [Other] [S7] into [x]\n0x0 ? 1\n0x0 0x200 ?\n";
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("is of another drive than"));
    machine_.files[map] = "0x0 ? 1\n0x0 0x200 ?\n";
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("does not tell which drive it is of"));
    machine_.files["E:\\Images\\MD5-HASH--Model X.41.txt"] = "HASH";
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("A hash file lies beside"));
    EXPECT_EQ(machine_.reads, 0);
    machine_.yes = true;
    machine_.imageOpens = false;
    EXPECT_EQ(machine_.run(), 0U);
    machine_.imageOpens = true;
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.files.at(kImage), expected({}));
}

TEST_F(RescueJobTest, OntoADriveCleansItOnceAndGoesOnLater) {
    machine_.order.destination = &machine_.destination;
    machine_.bad = {7};
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.destinationBytes.substr(0, 300 * kSector), expected({7}).substr(0, 300 * kSector));
    EXPECT_EQ(machine_.cleans, 1);
    EXPECT_EQ(machine_.tablesRead, 0) << "what lacks something is kept from the system";
    EXPECT_EQ(mapAt(kDriveMap).bytes(RangeStatus::kBad), kSector);
    machine_.bad = {};
    machine_.order.rescue = {.goOn = true, .retryPasses = 1};
    EXPECT_EQ(machine_.run(), 1U);
    EXPECT_EQ(machine_.cleans, 1);
    EXPECT_EQ(machine_.tablesRead, 1);
    EXPECT_EQ(machine_.statuses.at("Model Y"), "COMPLETED");
    EXPECT_EQ(mapAt(kDriveMap).bytes(RangeStatus::kFinished), kBytes);
}

TEST_F(RescueJobTest, OntoADriveIsNotBegunWhereItCannotBe) {
    machine_.order.destination = &machine_.destination;
    machine_.destination.sizeBytes = 100 * kSector;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("smaller than the SOURCE"));
    machine_.destination.sizeBytes = 400 * kSector;
    machine_.destination.bytesPerSector = 4096;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("are larger than those of the SOURCE"));
    machine_.destination.bytesPerSector = kSector;
    machine_.destinationIsTheSame = false;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("DESTINATION is not the drive that was loaded"));
    machine_.destinationIsTheSame = true;
    machine_.order.rescue.goOn = true;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("There is no map"));
    machine_.files[kDriveMap] = "# Rescue of drive 3 [Model X] [S1] onto it\n0x0 ? 1\n0x0 0x100 ?\n0x100 0x100 *\n";
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("end within a sector"));
    machine_.files[kDriveMap] = "# Rescue of drive 3 [Model X] [S1] onto it\n0x0 ? 1\n0x0 0x200 ?\n";
    machine_.volumes = {"K:\\"};
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_THAT(machine_.boxes.back(), HasSubstr("Windows has mounted volumes"));
    machine_.order.rescue.goOn = false;
    machine_.sourceIsTheSame = false;
    EXPECT_EQ(machine_.run(), 0U);
    EXPECT_EQ(machine_.reads, 0);
    EXPECT_EQ(machine_.cleans, 0);
}

TEST(RescueWords, TellWhatARescueIsAt) {
    EXPECT_EQ(rescueStepInWords({.phase = RangeStatus::kNonTried, .pass = 2}), "Copying, pass 2");
    EXPECT_EQ(rescueStepInWords({.phase = RangeStatus::kNonTrimmed}), "Trimming");
    EXPECT_EQ(rescueStepInWords({.phase = RangeStatus::kNonScraped}), "Scraping");
    EXPECT_EQ(rescueStepInWords({.phase = RangeStatus::kBad, .pass = 1}), "Retrying, pass 1");
    EXPECT_EQ(rescueStepInWords({.phase = RangeStatus::kFinished}), "Finished");
}

TEST(RescueWords, TellWhatThereIs) {
    RescueFigures figures;
    figures.rescued = 3 << 20;
    EXPECT_EQ(rescueAmountsInWords(figures), "Rescued 3 MB");
    figures.missing = 1536;
    figures.bad = 512;
    figures.badAreas = 1;
    figures.untried = 1 << 30;
    EXPECT_EQ(rescueAmountsInWords(figures), "Rescued 3 MB, missing 1.5 KB, bad 512 bytes in 1 area, untried 1 GB");
    figures.badAreas = 2;
    figures.untried = 0;
    EXPECT_EQ(rescueAmountsInWords(figures), "Rescued 3 MB, missing 1.5 KB, bad 512 bytes in 2 areas");
    figures.bytesPerSecond = 5 << 20;
    figures.reads = 48;
    figures.failedReads = 3;
    figures.slowestRead = 2100;
    figures.sinceGoodRead = 3662000;
    EXPECT_EQ(rescueReadsInWords(figures),
              "5 MB/s, 3 of 48 reads failed, slowest read 2.1 s, last good read 1:01:02 ago");
}

class RescueOwnerTest : public ::testing::Test {
  protected:
    RescueOwnerTest() {
        drive_.model.assign(" Model X ");
        drive_.serialNumber.assign("S1");
        drive_.sizeBytes = 1024;
    }
    static constexpr const char* kRecord =
        "Job: Image\r\nModel: Model X\r\nSerial number: S1\r\nSize in bytes: 1024\r\n";

    DriveRecord drive_;
};

TEST_F(RescueOwnerTest, IsTheDriveThatTheMapNames) {
    EXPECT_EQ(rescueOwner({"Mapfile", "Image of drive 3 [ Model X ] [S1] into [x]"}, {}, drive_),
              RescueOwner::kThisDrive);
    EXPECT_EQ(rescueOwner({"Image of drive 3 [ Model X ] [S2] into [x]"}, {}, drive_), RescueOwner::kOtherDrive);
    EXPECT_EQ(rescueOwner({"Clone of drive 3 [Other] [S2] onto drive 4 [ Model X ] [S1]"}, {}, drive_),
              RescueOwner::kOtherDrive)
        << "it is the destination";
    EXPECT_EQ(rescueOwner({"Mapfile. Created by another"}, {}, drive_), RescueOwner::kNotTold);
}

TEST_F(RescueOwnerTest, IsPerhapsTheDriveOfAnotherNameThatSharesASerialNumber) {
    drive_.printed.serialNumber = "P7";
    EXPECT_EQ(rescueOwner({"Image of drive 3 [Bridge] [P7] into [x]"}, {}, drive_), RescueOwner::kPerhapsThis);
    EXPECT_EQ(rescueOwner({"Clone of drive 3 [Bridge] [B0] onto drive 4 [Model Y] [P7]"}, {}, drive_),
              RescueOwner::kOtherDrive)
        << "it is the destination's";
    const std::string bridge = "Model: Bridge\nSerial number: B0\nSerial number told by the device: B0\n"
                               "Serial number printed on the device: P7\n";
    EXPECT_EQ(rescueOwner({}, bridge + "Size in bytes: 1024", drive_), RescueOwner::kPerhapsThis);
    EXPECT_EQ(rescueOwner({}, bridge + "Size in bytes: 512", drive_), RescueOwner::kOtherDrive);
    const std::string comment = "Image of drive 3 [Bridge] [B0] into [x]";
    EXPECT_EQ(rescueOwner({comment}, {}, drive_), RescueOwner::kOtherDrive);
    EXPECT_EQ(rescueOwner({comment}, bridge + "Size in bytes: 1024", drive_), RescueOwner::kPerhapsThis);
    EXPECT_EQ(rescueOwner({comment}, kRecord, drive_), RescueOwner::kPerhapsThis) << "continued behind a bridge";
    for (const char* const more : {")", ", model M)"}) {
        const std::string printed = "Image of drive 3 [Bridge] [B0] (printed: serial number P7" + std::string(more);
        EXPECT_EQ(rescueOwner({printed + " into [x]"}, {}, drive_), RescueOwner::kPerhapsThis);
    }
    drive_.printed.serialNumber = "not told";
    EXPECT_EQ(rescueOwner({}, "Model: B\nSerial number: not told\nSize in bytes: 1024", drive_),
              RescueOwner::kOtherDrive);
}

TEST_F(RescueOwnerTest, IsTheDriveThatTheRecordNames) {
    EXPECT_EQ(rescueOwner({}, kRecord, drive_), RescueOwner::kThisDrive);
    EXPECT_EQ(rescueOwner({}, "Model: Model X\nSerial number: S2\nSize in bytes: 1024", drive_),
              RescueOwner::kOtherDrive);
    EXPECT_EQ(rescueOwner({}, "Model: Model X\n", drive_), RescueOwner::kNotTold);
    EXPECT_EQ(rescueOwner({"Image of drive 3 [ Model X ] [S1] into [x]"},
                          "Model: Model X\nSerial number: S1\nSize in bytes: 2048", drive_),
              RescueOwner::kOtherDrive)
        << "both have to agree";
    drive_.serialNumber.assign("");
    EXPECT_EQ(rescueOwner({}, "Model: Model X\nSerial number: not told\nSize in bytes: 1024", drive_),
              RescueOwner::kNotTold)
        << "others of the model tell none either";
    EXPECT_EQ(rescueOwner({"Image of drive 3 [ Model X ] [] into [x]"}, {}, drive_), RescueOwner::kNotTold);
}

} // namespace
} // namespace torvane
