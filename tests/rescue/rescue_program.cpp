// The rescue's loop as a program of this system, to be compared with others.
//
//   torvane_rescue SOURCE TARGET MAP SECTOR_SIZE RETRY_PASSES
//
// Goes on with MAP if there is one. Ends with 0 when everything has had its turn, and with 2 after Ctrl+C.

#include "copy/rescue/rescue_map.h"
#include "copy/rescue/rescue_run.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <variant>
#include <vector>

using namespace torvane;

namespace {

volatile std::sig_atomic_t stopped = 0;

void stop(int /*signal*/) {
    stopped = 1;
}

class Files : public RescueSource, public RescueTarget, public RescueWatch {
  public:
    Files(const char* source, const char* target, std::string map)
        : source_(open64(source, O_RDONLY)), target_(open64(target, O_RDWR | O_CREAT, 0644)), map_(std::move(map)),
          milliseconds_(reinterpret_cast<std::int64_t (*)()>(dlsym(RTLD_DEFAULT, "failingDriveMilliseconds"))) {}

    ~Files() override {
        close(source_);
        close(target_);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    [[nodiscard]] bool isOpen() const { return source_ >= 0 && target_ >= 0 && milliseconds_ != nullptr; }

    [[nodiscard]] std::uint64_t size() const {
        struct stat64 file {};
        return fstat64(source_, &file) == 0 ? static_cast<std::uint64_t>(file.st_size) : 0;
    }

    SourceAnswer read(std::uint64_t offset, std::span<std::byte> bytes) override {
        lseek64(source_, static_cast<off64_t>(offset), SEEK_SET);
        const bool whole = ::read(source_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
        return whole ? SourceAnswer::kWhole : SourceAnswer::kFailed;
    }

    bool awaitReturn() override { return false; }

    bool write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return pwrite64(target_, bytes.data(), bytes.size(), static_cast<off64_t>(offset)) ==
               static_cast<ssize_t>(bytes.size());
    }

    bool flush() override { return fsync(target_) == 0; }
    bool isWanted() override { return stopped == 0; }
    std::int64_t now() override { return milliseconds_(); }

    bool saveMap(const SourceMap& map, const MapStatus& status) override {
        std::ofstream file(map_, std::ios::binary | std::ios::trunc);
        file << rescueMapText(map, status, false, {"Mapfile. Created by Torvane"}) << std::flush;
        return file.good();
    }

    void show(const RescueFigures& /*figures*/, const SourceMap& /*map*/) override {}

  private:
    int source_;
    int target_;
    std::string map_;
    std::int64_t (*milliseconds_)();
};

int rescue(const char* source, const char* target, const std::string& mapPath, const RescueOptions& options) {
    Files files(source, target, mapPath);
    if (!files.isOpen()) {
        std::fputs("source, target or the failing drive's clock is missing\n", stderr);
        return 1;
    }
    RescueOrigin origin{.fromRescue = true};
    SourceMap map(files.size());
    std::ifstream old(mapPath, std::ios::binary);
    if (old) {
        auto read = readMapFile(std::string(std::istreambuf_iterator<char>(old), {}), files.size());
        if (const auto* fault = std::get_if<MapFault>(&read)) {
            std::fprintf(stderr, "%s:%zu: %s\n", mapPath.c_str(), fault->line, fault->reason.c_str());
            return 1;
        }
        origin = rescueOriginOf(std::get<MapFile>(read), options.fromEnd);
        map = std::move(std::get<MapFile>(read).map);
    }
    std::vector<std::byte> buffer(kRescueBuffer);
    const RescueResult result = runRescue(map, options, origin, files, files, files, buffer);
    if (result.ending == RescueEnding::kFinished) {
        return result.mapSaved ? 0 : 1;
    }
    return result.ending == RescueEnding::kStopped ? 2 : 1;
}

} // namespace

int main(int count, char** words) {
    if (count != 6) {
        std::fputs("torvane_rescue SOURCE TARGET MAP SECTOR_SIZE RETRY_PASSES\n", stderr);
        return 1;
    }
    std::signal(SIGINT, stop);
    return rescue(words[1], words[2], words[3],
                  {.sectorSize = static_cast<std::uint32_t>(std::strtoul(words[4], nullptr, 10)),
                   .retryPasses = static_cast<unsigned>(std::strtoul(words[5], nullptr, 10))});
}
