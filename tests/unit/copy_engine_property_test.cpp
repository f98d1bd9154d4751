// Random fault scripts through the jobs, with their threads, and through a plain sequential model: nobody may be able
// to tell the two apart. TORVANE_COPY_SCRIPTS sets how many scripts, TORVANE_COPY_FIRST_SCRIPT the first one's seed.

#include "copy/engine/block_pipeline.h"
#include "tests/unit/copy_model/scripted_system.h"
#include "tests/unit/copy_model/sequential_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>

namespace torvane {
namespace {

using testing::Script;
using testing::ScriptedJob;
using testing::ScriptedSystem;
using testing::ScriptMaker;
using testing::SequentialModel;
using testing::StopAt;
using testing::World;

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* const value = std::getenv(name);
    return value == nullptr ? otherwise : std::strtoull(value, nullptr, 10);
}

std::uint64_t scriptCount() {
    return fromEnvironment("TORVANE_COPY_SCRIPTS", 2000);
}

std::uint64_t firstSeed() {
    return fromEnvironment("TORVANE_COPY_FIRST_SCRIPT", 1);
}

std::string asText(const std::map<std::string, int>& openFiles) {
    std::string text;
    for (const auto& [name, count] : openFiles) {
        text += count == 0 ? "" : name + " " + std::to_string(count) + ", ";
    }
    return text;
}

std::string asText(const std::vector<std::int64_t>& numbers) {
    std::string text;
    for (const std::int64_t number : numbers) {
        text += std::to_string(number) + ", ";
    }
    return text;
}

/// What the job left behind that differs from what the model left; empty when nothing does.
std::string differences(const World& world, const World& model) {
    std::string found;
    const auto compare = [&](const char* what, const std::string& value, const std::string& expected) {
        if (value != expected) {
            found += std::string(what) + ": " + value + "\n    expected: " + expected + "\n";
        }
    };
    const auto compareNumbers = [&](const char* what, std::int64_t value, std::int64_t expected) {
        compare(what, std::to_string(value), std::to_string(expected));
    };
    const std::size_t events = std::max(world.seen.size(), model.seen.size());
    for (std::size_t i = 0; i < events && found.empty(); ++i) {
        compare("event", i < world.seen.size() ? world.seen[i] : "nothing",
                i < model.seen.size() ? model.seen[i] : "nothing");
    }
    compareNumbers("right bytes on the destination", world.destinationBytes == model.destinationBytes ? 1 : 0, 1);
    compareNumbers("right bytes on the source", world.sourceBytes == model.sourceBytes ? 1 : 0, 1);
    compareNumbers("right files", world.files == model.files ? 1 : 0, 1);
    compare("open files", asText(world.openFiles), asText(model.openFiles));
    compare("chase points", asText(world.chasePoints), asText(model.chasePoints));
    compareNumbers("bad reads", static_cast<std::int64_t>(world.source.badReadCount),
                   static_cast<std::int64_t>(model.source.badReadCount));
    compareNumbers("write errors", static_cast<std::int64_t>(world.destination.writeErrorCount),
                   static_cast<std::int64_t>(model.destination.writeErrorCount));
    compareNumbers("writes", static_cast<std::int64_t>(world.writesBegun),
                   static_cast<std::int64_t>(model.writesBegun));
    compareNumbers("flushes", static_cast<std::int64_t>(world.flushes), static_cast<std::int64_t>(model.flushes));
    compareNumbers("what was completed is on the medium", world.completedOnMedium ? 1 : 0, 1);
    // Hashing may have run ahead of a job that was left early.
    const auto compareAhead = [&](const char* what, std::uint64_t ahead) {
        compareNumbers(what, ahead <= BlockPipeline::kBlocksAhead ? 0 : static_cast<std::int64_t>(ahead), 0);
    };
    compareAhead("hashes ahead", world.hashCalls - model.hashCalls);
    compareAhead("SHA-256 hashes ahead", world.sha256Calls - model.sha256Calls);
    compareNumbers("image counter", world.imageNumber, model.imageNumber);
    compareNumbers("running", world.flags.running, model.flags.running);
    compareNumbers("failed", world.flags.failed, model.flags.failed);
    compareNumbers("succeeded", world.flags.succeeded, model.flags.succeeded);
    compareNumbers("explosion frame", world.flags.explosionFrame, model.flags.explosionFrame);
    compareNumbers("car x", world.flags.carX, model.flags.carX);
    compareNumbers("car y", world.flags.carY, model.flags.carY);
    compareNumbers("animation blocks", world.flags.animationBlocks, model.flags.animationBlocks);
    return found;
}

/// Runs the script's job in `world`. The images that it leaves open stay so as long as the result lives.
std::unique_ptr<ScriptedSystem> runJob(World& world, std::uint32_t& exitCode) {
    auto system = std::make_unique<ScriptedSystem>(world);
    exitCode = system->run();
    return system;
}

TEST(CopyEngine, CannotBeToldFromOneThreadInTurn) {
    for (std::uint64_t seed = firstSeed(); seed < firstSeed() + scriptCount(); ++seed) {
        const Script script = ScriptMaker(seed).make();
        SCOPED_TRACE(::testing::Message() << script);
        World world(script);
        World model(script);
        std::uint32_t exitCode = 0;
        const auto system = runJob(world, exitCode);
        EXPECT_EQ(exitCode, SequentialModel(model).run());
        EXPECT_EQ(differences(world, model), "");
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

/// The map that the job left, a status for each byte of the source; empty where it left none.
std::string mapOf(const World& world) {
    std::string statuses;
    for (const std::string& path : world.evidence) {
        if (!path.ends_with(".map")) {
            continue;
        }
        std::istringstream lines(std::string(testing::textOf(world.files.at(path))));
        bool statusLineRead = false;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with('#') || !std::exchange(statusLineRead, true)) {
                continue;
            }
            std::istringstream fields(line);
            std::uint64_t offset = 0;
            std::uint64_t length = 0;
            char status = ' ';
            fields >> std::hex >> offset >> length >> status;
            EXPECT_EQ(offset, statuses.size()) << "ranges follow each other";
            statuses.append(length, status);
        }
    }
    return statuses;
}

// Whatever went wrong: what the map calls finished is the source's, on the medium where the job went through to its
// end, and what could not be read is not called finished.
TEST(CopyEngine, TheMapTellsWhatTheCopyHolds) {
    int maps = 0;
    int holes = 0;
    for (std::uint64_t seed = firstSeed(); seed < firstSeed() + scriptCount(); ++seed) {
        Script script = ScriptMaker(seed).make();
        script.imageChangesMeanwhile = false;
        script.decayedBytes = 0; // the copy knows nothing of it
        SCOPED_TRACE(::testing::Message() << script);
        World world(script);
        std::uint32_t exitCode = 0;
        const auto system = runJob(world, exitCode);
        const std::string statuses = mapOf(world);
        if (statuses.empty()) {
            continue;
        }
        const bool image = script.job == ScriptedJob::kImageToFile || script.job == ScriptedJob::kForensicImage;
        const testing::Bytes& copy = image ? world.imageMade() : world.destinationBytes;
        const testing::Bytes& medium = world.mediumOf(image ? world.imagePath() : World::kDestination);
        const bool flushed = world.flags.succeeded != 0;
        ASSERT_EQ(statuses.size(), world.sourceBytes.size());
        for (std::size_t i = 0; i < statuses.size(); ++i) {
            if (statuses[i] == '+') {
                ASSERT_LT(i, copy.size());
                ASSERT_EQ(copy[i], world.sourceBytes[i]) << "byte " << i;
                ASSERT_TRUE(!flushed || (i < medium.size() && medium[i] == copy[i]))
                    << "byte " << i << " is not on the medium";
            }
        }
        ++maps;
        holes += statuses.find_first_not_of('+') == std::string::npos ? 0 : 1;
    }
    EXPECT_GT(maps, static_cast<int>(scriptCount() / 2));
    EXPECT_GT(holes, static_cast<int>(scriptCount() / 4));
}

/// True when one thread in turn could have shown what `world` saw, had it been stopped at some moment.
bool couldBeOneThreadInTurn(const World& world) {
    for (const StopAt when :
         {StopAt::kRead, StopAt::kWrite, StopAt::kHash, StopAt::kTick, StopAt::kEvent, StopAt::kFirstBlock}) {
        for (std::uint64_t number = 0; number <= world.seen.size(); ++number) {
            Script script = world.script;
            script.stopAt = when;
            script.stopNumber = number;
            World model(script);
            SequentialModel(model).run();
            if (differences(world, model).empty()) {
                return true;
            }
        }
    }
    return false;
}

/// Stops a tenth of the scripts' jobs that are `wanted` at some read or hash.
void stopWhileRunningAhead(StopAt when, const std::function<bool(ScriptedJob)>& wanted) {
    for (std::uint64_t seed = firstSeed(); seed < firstSeed() + scriptCount() / 10; ++seed) {
        Script script = ScriptMaker(seed).make();
        if (!wanted(script.job)) {
            continue;
        }
        script.stopAt = when;
        script.stopNumber %= 12;
        script.noProvider = {};
        script.noSha256Provider = {};
        SCOPED_TRACE(::testing::Message() << script);
        World world(script);
        std::uint32_t exitCode = 0;
        const auto system = runJob(world, exitCode);
        EXPECT_TRUE(couldBeOneThreadInTurn(world));
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

// What runs ahead belongs to a later block than the one in the job's hands, so the stop takes effect at whatever block
// the job has reached; but it does so cleanly.
TEST(CopyEngine, StopsCleanlyWhileItReadsAhead) {
    stopWhileRunningAhead(StopAt::kRead, [](ScriptedJob job) {
        return job != ScriptedJob::kImageToDrive && job != ScriptedJob::kVerifyImage; // which read no drive
    });
}

TEST(CopyEngine, StopsCleanlyWhileItHashesAhead) {
    stopWhileRunningAhead(StopAt::kHash, [](ScriptedJob job) { return job == ScriptedJob::kForensicImage; });
}

/// What a drive's "Status" cell was set to; empty for other events and for cells that tell a percentage or a count.
std::string driveCellWithoutNumber(const std::string& event) {
    const std::size_t begin = event.find('[');
    const bool told = event.starts_with("drive ") && event.find_first_of("0123456789", begin) > event.rfind(']');
    return told ? event.substr(begin, event.rfind(']') - begin + 1) : "";
}

/// The text of a box without an image's number and without counts of bytes.
std::string withoutNumbers(const std::string& text) {
    const std::string withoutBytes = std::regex_replace(
        std::regex_replace(text, std::regex("\\.[0-9]+\\.img"), ".#.img"), std::regex("[0-9]+ bytes"), "# bytes");
    const std::string withoutWrites =
        std::regex_replace(withoutBytes, std::regex("[0-9]+ writes? failed"), "# writes failed");
    // Of a comparison the first clause: the others come in every company.
    const std::string firstClause =
        std::regex_replace(withoutWrites, std::regex("((?:NOT been verified|was copied): [^,.:\\]]*)[^\\]]*"), "$1");
    return std::regex_replace(firstClause, std::regex("verified: [0-9]+ (unreadable )?blocks?"),
                              "verified: # $1blocks");
}

/// The script without anything that keeps a job from its end, for drives of whole sectors; none where it has no such
/// drives or no destination drive.
std::optional<Script> withoutTrouble(Script script) {
    const auto isWhole = [&](std::int64_t bytes, std::int32_t sector) {
        return bytes % sector == 0 && script.blockSize % static_cast<std::size_t>(sector) == 0;
    };
    const bool writesNoDrive = script.job == ScriptedJob::kImageToFile || script.job == ScriptedJob::kForensicImage ||
                               script.job == ScriptedJob::kVerifyImage;
    const bool readsImage = script.job == ScriptedJob::kImageToDrive;
    if (writesNoDrive || !isWhole(script.destinationBytes, script.destinationSector) ||
        (!readsImage && !script.sourceIsImageFile && !isWhole(script.sourceBytes, script.sourceSector))) {
        return std::nullopt;
    }
    script.reads.clear();
    script.writes.clear();
    script.flushes.clear();
    script.sourceChangesAt = 1000;
    script.destinationChangesAt = 1000;
    script.clean = DiskChange::kMade;
    script.imageCannotBeOpened = false;
    script.yes = true;
    script.decayedBytes = 0;
    script.stopAt = StopAt::kNever;
    return script;
}

// Whatever the sectors of the two drives and the end of the range.
TEST(CopyEngine, BringsEveryByteOntoTheDestination) {
    int odd = 0;
    for (std::uint64_t seed = firstSeed(); seed < firstSeed() + scriptCount(); ++seed) {
        const std::optional<Script> script = withoutTrouble(ScriptMaker(seed).make());
        if (!script) {
            continue;
        }
        SCOPED_TRACE(::testing::Message() << *script);
        World world(*script);
        std::uint32_t exitCode = 0;
        const auto system = runJob(world, exitCode);
        EXPECT_EQ(exitCode, 1U);
        const std::size_t bytes = std::min(world.sourceBytes.size(), world.destinationBytes.size());
        EXPECT_TRUE(std::equal(world.sourceBytes.begin(),
                               world.sourceBytes.begin() + static_cast<std::ptrdiff_t>(bytes),
                               world.destinationBytes.begin()));
        EXPECT_EQ(world.destination.writeErrorCount, 5U) << "a write has failed";
        odd += bytes % static_cast<std::size_t>(script->destinationSector) != 0 ? 1 : 0;
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
    EXPECT_GT(odd, static_cast<int>(scriptCount() / 200)) << "ranges that do not fill the destination's last sector";
}

// Whoever stops a job does not want it to go on over a disk that could not be cleaned.
TEST(CopyEngine, StoppedDuringACleanThatFailsItDoesNotAskWhetherToContinue) {
    Script script;
    script.sourceBytes = script.destinationBytes = 32;
    script.sourceSector = script.destinationSector = 16;
    script.clean = DiskChange::kNotMade;
    const auto eventsOf = [](const World& world, const std::string& what) {
        return std::find_if(world.seen.begin(), world.seen.end(),
                            [&](const std::string& event) { return event.starts_with(what); });
    };
    World unstopped(script);
    std::uint32_t exitCode = 0;
    runJob(unstopped, exitCode);
    ASSERT_NE(eventsOf(unstopped, "ask default no"), unstopped.seen.end());

    script.stopAt = StopAt::kEvent;
    script.stopNumber = static_cast<std::uint64_t>(eventsOf(unstopped, "clean") - unstopped.seen.begin());
    World stopped(script);
    runJob(stopped, exitCode);
    EXPECT_EQ(eventsOf(stopped, "ask default no"), stopped.seen.end());
    EXPECT_EQ(stopped.writesBegun, 0U);
}

std::string mountedBox(const std::string& volumes) {
    return "stop [***** MOUNTED DURING THE COPY *****] [Windows has mounted " + volumes +
           " on the DESTINATION during the copy, and refuses writes inside mounted volumes. # writes failed: the copy "
           "is not whole. Press 'Disable Drive Mounting', and copy again: the DESTINATION is cleaned first]";
}

// The scripts must reach what they are meant to test.
TEST(CopyEngine, TheScriptsCoverEveryEnding) {
    std::set<std::string> endings;
    for (std::uint64_t seed = 1; seed <= 2000; ++seed) {
        World model(ScriptMaker(seed).make());
        SequentialModel(model).run();
        for (const std::string& event : model.seen) {
            if (const std::size_t end = event.rfind(']');
                event.starts_with("status [") && event.find('%') == std::string::npos) {
                endings.insert(event.substr(0, end + 1));
            } else if (event.starts_with("stop") || event.starts_with("inform") || event.starts_with("ask")) {
                endings.insert(withoutNumbers(event.substr(0, end + 1)));
            } else if (event.starts_with("timer ")) {
                endings.insert(event.substr(0, 9));
            } else if (const std::string cell = driveCellWithoutNumber(event); !cell.empty()) {
                endings.insert("drive " + cell);
            }
        }
    }
    EXPECT_EQ(
        endings,
        (std::set<std::string>{
            "ask [****** VERIFY HASH ******] [Would you like to Verify the Image HASH?]",
            "ask [***** LAST SECTOR NOT FILLED *****] [The SOURCE is # bytes longer than whole sectors of the "
            "DESTINATION, which have # bytes. The last sector will be filled up with zeros. Do you want to "
            "continue?]",
            "ask [***** LAST SECTOR NOT FILLED *****] [The image is # bytes longer than whole sectors of the "
            "DESTINATION, which have # bytes. The last sector will be filled up with zeros. Do you want to "
            "continue?]",
            "ask default no [***** DESTINATION NOT CLEANED *****] [The DESTINATION could not be cleaned. Still "
            "mounted on it: K:, C:\\mnt\\, a volume without a letter. Windows refuses writes inside mounted "
            "volumes, so parts of the copy may not "
            "arrive. Nothing was written yet. Continue anyway?]",
            "ask default no [***** DESTINATION NOT CLEANED *****] [The DESTINATION could not be cleaned. Still "
            "mounted on it: K:, C:\\mnt\\. Windows refuses writes inside mounted volumes, so parts of the copy "
            "may not arrive. Nothing was written yet. Continue anyway?]",
            "ask default no [***** DESTINATION NOT CLEANED *****] [The DESTINATION could not be cleaned. Still "
            "mounted on it: K:. Windows refuses writes inside mounted volumes, so parts of the copy may not "
            "arrive. Nothing was written yet. Continue anyway?]",
            "ask default no [***** DESTINATION NOT CLEANED *****] [The DESTINATION could not be cleaned. Still "
            "mounted on it: nothing with a letter. Windows refuses writes inside mounted volumes, so parts of "
            "the copy may not arrive. Nothing was written yet. Continue anyway?]",
            "ask default no [***** Image File Too Large *****] [Image File is LARGER than DESTINATION drive. Do "
            "you want to truncate file and continue?]",
            "drive [BAD not completed, not verified]",
            "drive [BAD not completed, verification failed]",
            "drive [BAD not completed, verified]",
            "drive [BAD not completed]",
            "drive [BAD not hashed]",
            "drive [BAD not started]",
            "drive [BAD not verified]",
            "drive [BAD verification failed]",
            "drive [COMPLETED, verified]",
            "drive [COMPLETED]",
            "drive [Cleaning disk]",
            "drive [Idle]",
            "inform [****** VERIFY FAILED ******] [The DESTINATION has NOT been verified: # blocks could not be "
            "read again]",
            "inform [****** VERIFY FAILED ******] [The DESTINATION has NOT been verified: # blocks differ]",
            "inform [****** VERIFY FAILED ******] [The DESTINATION has NOT been verified: # blocks differs]",
            "inform [****** VERIFY FAILED ******] [The DESTINATION has NOT been verified: # unreadable blocks left "
            "out]",
            "inform [****** VERIFY FAILED ******] [The DESTINATION has NOT been verified: verification failed]",
            "inform [****** VERIFY FAILED ******] [The DESTINATION has NOT been verified: verification stopped]",
            "inform [****** VERIFY SUCCEEDED ******] [The DESTINATION holds what was copied: verified]",
            "status [ Copy NOT verified]",
            "inform [****** VERIFY FAILED ******] [CREATED File has NOT been verified]",
            "inform [****** VERIFY SUCCEEDED ******] [CREATED File has been verified]",
            "status [ Beginning Verification]",
            "status [ Clone SUCCESSFULLY Completed]",
            "status [ Image  SUCCESSFULLY Completed]",
            "status [ Image Completed]",
            "status [ Image SUCCESSFULLY Completed]",
            "status [ Image Terminated -- Not Completed]",
            "status [ Image To Drive SUCCESSFULLY Completed]",
            "status [ Image To Drive Terminated -- Not Completed]",
            "status [ Status: Cleaning the destination]",
            "status [ Status: Idle]",
            "status [ Status: Not started]",
            "status [ User Terminated Clone]",
            "status [ User Terminated Image]",
            "status [Could not CREATE DESTINATION image]",
            "status [Could not READ FROM SOURCE image. TERMINATING]",
            "status [Could not READ image for VERIFICATION]",
            "status [Could not WRITE to DESTINATION image]",
            "status [Could not open image for VERIFICATION]",
            "stop [****** HASH ERROR ******] [Could not get HANDLE to CRYPTO provider. Exiting]",
            "stop [****** HASH ERROR ******] [Could not get HASH PARAM. Exiting]",
            "stop [****** HASH ERROR ******] [Could not get HASH data. Exiting]",
            "stop [****** HASH ERROR ******] [Could not get MD5 HASH for Crypto Provider. Exiting]",
            "stop [****** HASH ERROR ******] [Could not open the system's provider of SHA-256. Nothing was "
            "read. Start again without SHA-256]",
            "stop [****** HASH ERROR ******] [Could not begin a SHA-256 HASH. Nothing was read. Start again "
            "without SHA-256]",
            "stop [****** HASH ERROR ******] [Could not add a block to the SHA-256 HASH. Nothing more is read. "
            "Start again]",
            "stop [****** HASH ERROR ******] [Could not get the SHA-256 HASH at its end. Nothing was compared. "
            "Start again]",
            "stop [****** HASH ERROR ******] [The SHA-256 HASH of [E:\\Images\\Model 100%s.#.img] could not be "
            "read. The image has no hash files, and it cannot be verified. Make it anew]",
            "stop [***** DRIVE HAS CHANGED *****] [The DESTINATION is not the drive that was loaded any more, "
            "or it does not answer. It was cleaned before, nothing else was written. Load the drives again]",
            "stop [***** DRIVE HAS CHANGED *****] [The DESTINATION is not the drive that was loaded any more, "
            "or it does not answer. Nothing was written. Load the drives again]",
            "stop [***** DRIVE HAS CHANGED *****] [The DESTINATION is not the drive that was loaded any more, "
            "or it does not answer. Nothing was changed. Load the drives again]",
            "stop [***** DRIVE HAS CHANGED *****] [The DESTINATION is not the drive that was loaded any more, "
            "or it does not answer. What diskpart has changed is not known. Load the drives again]",
            "stop [***** DRIVE HAS CHANGED *****] [The SOURCE is not the drive that was loaded any more, or it "
            "does not answer. The DESTINATION was cleaned before, nothing was written to it. Load the drives "
            "again]",
            "stop [***** DRIVE HAS CHANGED *****] [The SOURCE is not the drive that was loaded any more, or it "
            "does not answer. Nothing was written. Load the drives again]",
            "stop [***** IMAGE NOT COMPLETE *****] [The last block of [E:\\Images\\Model 100%s.#.img] could not "
            "be hashed. The image is not whole, and it has no hash file. Make it anew]",
            "stop [***** IMAGE NOT COMPLETE *****] [The last block of [E:\\Images\\Model 100%s.#.img] could not "
            "be written. The image is not whole, and it has no hash file. Make it anew]",
            "stop [***** IMAGE NOT COMPLETE *****] [Not everything of [E:\\Images\\Model 100%s.#.img] could be "
            "brought onto the medium. The image is not whole, and it has no hash file. Make it anew]",
            "stop [***** IMAGE NOT COMPLETE *****] [The HASH of [E:\\Images\\Model 100%s.#.img] could not be "
            "read. The image has no hash file, and it cannot be verified. Make it anew]",
            mountedBox("K:"),
            mountedBox("K:, C:\\mnt\\"),
            mountedBox("K:, C:\\mnt\\, a volume without a letter"),
            "stop [***** FATAL SYSTEM ERROR *****] [ImageToDrive: [E:\\Images\\source.img] OPEN_EXISTING "
            "FAILED]",
            "timer 500",
            "timer 750",
        }));
}

} // namespace
} // namespace torvane
