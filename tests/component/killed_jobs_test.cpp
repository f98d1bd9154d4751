#include "base/owned_handle.h"
#include "tests/component/copy_bench.h"

#include <cstdlib>
#include <map>
#include <random>

namespace torvane {
namespace {

using testing::noise;
using testing::readFile;
using testing::writeFile;

constexpr std::size_t kMebibyte = 1048576;
constexpr std::size_t kSourceBytes = 6 * kMebibyte;
constexpr std::size_t kDestinationBytes = 8 * kMebibyte;
constexpr std::size_t kSector = 512;
constexpr std::uint64_t kSourceSeed = 7;
constexpr std::uint64_t kImageSeed = 3;

/// How often each kind of job is killed; more for a longer trial.
int rounds() {
    const char* const wanted = std::getenv("TORVANE_KILLS");
    return wanted == nullptr ? 3 : std::atoi(wanted);
}

/// Programs that die in the middle of a job. The content of the drives and of the folder is looked at from outside.
class KilledJobs : public testing::CopyBench {
  protected:
    /// A source and an image of noise, and a destination full of a letter.
    KilledJobs() {
        bench_.addDrive(R"({"number": 1, "bus": "nvme", "size": )" + std::to_string(kSourceBytes) +
                        R"(, "identity": {"product": "Model X", "serial": "S1"}})");
        bench_.addDrive(R"({"number": 2, "bus": "nvme", "size": )" + std::to_string(kDestinationBytes) +
                        R"(, "identity": {"product": "Target", "serial": "T1"}})");
        std::filesystem::create_directories("bench\\backing");
        writeFile(backingFile(1), noise(kSourceSeed, 0, kSourceBytes));
        writeFile(backingFile(2), std::string(kDestinationBytes, 'o'));
        writeFile("disk.img", noise(kImageSeed, 0, kSourceBytes));
        bench_.describe("{}");
    }

    /// Ends a program that runs the job over and over, each time at another moment.
    void killOften(const std::string& task, const std::function<void()>& look) {
        std::mt19937 random(static_cast<std::uint32_t>(task.size() * 7919 + task.front()));
        for (int round = 0; round < rounds(); ++round) {
            SCOPED_TRACE(task + ", round " + std::to_string(round));
            const auto milliseconds = std::uniform_int_distribution<DWORD>(0, 600)(random);
            killAfterItBegan(task, milliseconds);
            look();
            EXPECT_TRUE(content(1, 0, kSourceBytes) == noise(kSourceSeed, 0, kSourceBytes)) << "the source was changed";
        }
    }

    /// The destination's sectors in the job's range are of the old content, of the clean or of the copy; what lies
    /// behind the range is of the old content, or of the clean where that reaches.
    static void expectNothingStrange(std::uint64_t seed) {
        const std::string wanted = noise(seed, 0, kSourceBytes);
        const std::string found = content(2, 0, kDestinationBytes);
        const std::string old(kSector, 'o');
        const std::string zero(kSector, '\0');
        for (std::size_t at = 0; at < kDestinationBytes; at += kSector) {
            const std::string sector = found.substr(at, kSector);
            const bool cleaned = at < kMebibyte || at >= kDestinationBytes - kMebibyte;
            const bool copied = at < kSourceBytes && sector == wanted.substr(at, kSector);
            ASSERT_TRUE(copied || sector == old || (cleaned && sector == zero)) << "at " << at;
        }
    }

    static std::vector<std::filesystem::path> filesOf(const std::string& beginning, const std::string& ending) {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with(beginning) && name.ends_with(ending)) {
                files.push_back(entry.path());
            }
        }
        return files;
    }

    /// Every image is a beginning of the source; what was there before stays as it was; the counter is whole.
    void expectImages() {
        const std::string wanted = noise(kSourceSeed, 0, kSourceBytes);
        for (const auto& image : filesOf("Model X.", ".img")) {
            const auto written = std::filesystem::last_write_time(image);
            if (const auto [before, isNew] = written_.try_emplace(image.string(), written); !isNew) {
                EXPECT_EQ(written, before->second) << image << " was written to again";
                continue;
            }
            const std::string bytes = readFile(image.string());
            EXPECT_EQ(wanted.compare(0, bytes.size(), bytes), 0) << image;
        }
        EXPECT_EQ(readFile("FileCounter.txt").size(), 4U);
    }

    /// A hash file is nothing but the one of a whole image.
    static void expectHashFiles() {
        for (const auto& file : filesOf("MD5-HASH--Model X.", ".txt")) {
            const std::string name = file.filename().string();
            constexpr std::size_t kPrefix = sizeof "MD5-HASH--" - 1;
            const std::string image = name.substr(kPrefix, name.size() - kPrefix - 4) + ".img";
            EXPECT_EQ(std::filesystem::file_size(image), kSourceBytes) << name;
        }
    }

  private:
    static void killAfterItBegan(const std::string& task, DWORD milliseconds) {
        std::string commandLine = "torvane_copying_program.exe " + task;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION child{};
        ASSERT_TRUE(CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE,
                                   CREATE_NO_WINDOW | CREATE_SUSPENDED, nullptr, nullptr, &startup, &child));
        const UniqueHandle process(child.hProcess);
        const UniqueHandle thread(child.hThread);
        const UniqueHandle group(CreateJobObjectA(nullptr, nullptr));
        ASSERT_TRUE(AssignProcessToJobObject(group.get(), process.get()));
        ResumeThread(thread.get());
        const std::uintmax_t before = logSize();
        const auto hasBegun = [&] { return logSize() > before || !isAlive(process.get()); };
        EXPECT_TRUE(driver::waitUntil(hasBegun));
        Sleep(milliseconds);
        EXPECT_TRUE(isAlive(process.get())) << "it should run for ever";
        TerminateProcess(process.get(), 77);
        EXPECT_EQ(WaitForSingleObject(process.get(), 60000), WAIT_OBJECT_0);
        awaitQuiet();
        // A tool that was being started when the program died never begins, and holds its output file.
        TerminateJobObject(group.get(), 77);
    }

    static bool isAlive(HANDLE process) { return WaitForSingleObject(process, 0) == WAIT_TIMEOUT; }
    static std::uintmax_t logSize() {
        std::error_code none;
        const std::uintmax_t size = std::filesystem::file_size("bench\\bench.log", none);
        return none ? 0 : size;
    }

    /// A tool that the program had started goes on to its own end.
    static void awaitQuiet() {
        std::uintmax_t size = logSize();
        for (int quiet = 0; quiet < 10;) {
            Sleep(50);
            const std::uintmax_t now = logSize();
            quiet = now == size ? quiet + 1 : 0;
            size = now;
        }
    }

    std::map<std::string, std::filesystem::file_time_type> written_; ///< of each image that was seen
};

TEST_F(KilledJobs, ForwardClonesLeaveNothingStrangeOnTheDestination) {
    killOften("forward-clone", [] { expectNothingStrange(kSourceSeed); });
}

TEST_F(KilledJobs, ReverseClonesLeaveNothingStrangeOnTheDestination) {
    killOften("reverse-clone", [] { expectNothingStrange(kSourceSeed); });
}

TEST_F(KilledJobs, ImagesToDriveLeaveNothingStrangeOnTheDestination) {
    killOften("image-to-drive", [] { expectNothingStrange(kImageSeed); });
    EXPECT_TRUE(readFile("disk.img") == noise(kImageSeed, 0, kSourceBytes));
}

TEST_F(KilledJobs, ImagesAreBeginningsOfTheSourceAndNoneIsOverwritten) {
    killOften("image", [this] { expectImages(); });
}

TEST_F(KilledJobs, ForensicImagesHaveAHashFileOnlyWhenTheyAreWhole) {
    killOften("forensic-image", [this] {
        expectImages();
        expectHashFiles();
    });
}

TEST_F(KilledJobs, CleansTouchNothingButTheEnds) {
    killOften("clean", [] {
        const std::string middle = content(2, kMebibyte, kDestinationBytes - 2 * kMebibyte);
        EXPECT_TRUE(middle == std::string(middle.size(), 'o'));
    });
}

TEST_F(KilledJobs, ReadOnlyChangesTouchNoData) {
    killOften("read-only",
              [] { EXPECT_TRUE(content(2, 0, kDestinationBytes) == std::string(kDestinationBytes, 'o')); });
}

} // namespace
} // namespace torvane
