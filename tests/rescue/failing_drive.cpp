// A failing drive for any program of this system: loaded before the C library (LD_PRELOAD), it answers the reads of one
// file as its faults say, writes each into a log, and lets a clock of its own go on by what they cost.
//
//   FAILING_DRIVE         the file that stands for the drive
//   FAILING_DRIVE_FAULTS  a text of lines "OFFSET LENGTH TRIES": bytes that fail so many times, 255 always, and
//                         "OFFSET LENGTH slow"; each of whole sectors of 512 bytes
//   FAILING_DRIVE_LOG     one line for each read: "OFFSET LENGTH GOOD MICROSECONDS", GOOD being 1 or 0
//   FAILING_DRIVE_STOP    after so many reads the program gets the signal that Ctrl+C sends
//
// A read that touches a failing sector fails as a whole and costs a second.

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <mutex>
#include <string>

namespace {

constexpr std::uint64_t kSector = 512;
constexpr std::int64_t kFailure = 1'000'000; // microseconds
constexpr std::int64_t kRequest = 100;       // microseconds
constexpr std::int64_t kBytesPerMicrosecond = 100;
constexpr std::int64_t kSlowFactor = 100;
constexpr unsigned kAlways = 255;

std::string setting(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

class Drive {
  public:
    Drive() : log_(std::fopen(setting("FAILING_DRIVE_LOG").c_str(), "w")) {
        const std::string stop = setting("FAILING_DRIVE_STOP");
        left_ = stop.empty() ? ~0ULL : std::stoull(stop);
        std::FILE* faults = std::fopen(setting("FAILING_DRIVE_FAULTS").c_str(), "r");
        if (log_ == nullptr || faults == nullptr || stat64(setting("FAILING_DRIVE").c_str(), &file_) != 0) {
            std::fputs("the failing drive is not described\n", stderr);
            std::abort();
        }
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
        char tries[8];
        while (std::fscanf(faults, "%lu %lu %7s", &offset, &length, tries) == 3) {
            for (std::uint64_t sector = offset / kSector; sector < (offset + length) / kSector; ++sector) {
                if (std::strcmp(tries, "slow") == 0) {
                    slow_[sector] = true;
                } else {
                    failures_[sector] = static_cast<unsigned>(std::stoul(tries));
                }
            }
        }
        std::fclose(faults);
    }

    [[nodiscard]] bool is(int descriptor) const {
        struct stat64 file {};
        return fstat64(descriptor, &file) == 0 && file.st_dev == file_.st_dev && file.st_ino == file_.st_ino;
    }

    /// False when the read of so many bytes fails.
    bool take(std::uint64_t offset, std::uint64_t length) {
        const std::uint64_t first = offset / kSector;
        const std::uint64_t end = (offset + length + kSector - 1) / kSector;
        bool good = true;
        for (auto failing = failures_.lower_bound(first); failing != failures_.end() && failing->first < end;
             ++failing) {
            good = good && failing->second == 0;
            failing->second -= failing->second != 0 && failing->second != kAlways ? 1 : 0;
        }
        const auto slow = slow_.lower_bound(first);
        const bool isSlow = slow != slow_.end() && slow->first < end;
        const std::int64_t moving =
            static_cast<std::int64_t>(length) / kBytesPerMicrosecond * (isSlow ? kSlowFactor : 1);
        const std::int64_t took = kRequest + (good ? moving : kFailure);
        microseconds_ += took;
        std::fprintf(log_, "%lu %lu %d %ld\n", offset, length, good ? 1 : 0, took);
        std::fflush(log_);
        if (--left_ == 0) {
            std::raise(SIGINT);
        }
        return good;
    }

    [[nodiscard]] std::int64_t microseconds() const { return microseconds_; }

  private:
    struct stat64 file_ {};
    std::FILE* log_;
    std::uint64_t left_ = 0; ///< reads until the program is stopped
    std::map<std::uint64_t, unsigned> failures_;
    std::map<std::uint64_t, bool> slow_;
    std::int64_t microseconds_ = 1'000'000'000'000'000; ///< since 1970, as programs expect a clock to be
};

std::mutex guard; // never held while the program itself runs

Drive& drive() {
    static Drive only;
    return only;
}

} // namespace

extern "C" {

// In the place of the C library's functions, by their names.
ssize_t readOfAny(int descriptor, void* buffer, size_t length) __asm__("read");
std::time_t timeOfDrive(std::time_t* told) __asm__("time");
std::int64_t failingDriveMilliseconds();

ssize_t readOfAny(int descriptor, void* buffer, size_t length) {
    bool good = true;
    // What is read for the drive's own sake goes by.
    static thread_local bool within = false;
    if (!within) {
        within = true;
        const std::lock_guard lock(guard);
        if (drive().is(descriptor)) {
            const off_t offset = lseek(descriptor, 0, SEEK_CUR);
            const off_t end = lseek(descriptor, 0, SEEK_END);
            lseek(descriptor, offset, SEEK_SET);
            const off_t there = std::max<off_t>(end - offset, 0);
            if (there != 0) { // behind the end there is nothing to read
                good = drive().take(static_cast<std::uint64_t>(offset),
                                    std::min<std::uint64_t>(length, static_cast<std::uint64_t>(there)));
            }
        }
        within = false;
    }
    if (!good) {
        errno = EIO;
        return -1;
    }
    return syscall(SYS_read, descriptor, buffer, length);
}

std::time_t timeOfDrive(std::time_t* told) {
    const std::lock_guard lock(guard);
    const std::time_t now = drive().microseconds() / 1'000'000;
    if (told != nullptr) {
        *told = now;
    }
    return now;
}

/// Milliseconds of the drive's clock, for programs that know of it.
std::int64_t failingDriveMilliseconds() {
    const std::lock_guard lock(guard);
    return drive().microseconds() / 1000;
}
}
