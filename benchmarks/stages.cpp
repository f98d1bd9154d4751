#include "benchmarks/stages.h"

#include "base/owned_handle.h"
#include "base/positioned_io.h"
#include "copy/engine/block_layout.h"
#include "copy/engine/copy_drive_io.h"
#include "copy/engine/md5_hasher.h"
#include "copy/engine/sha256_hasher.h"
#include "discovery/physical_drive_probe.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <random>
#include <span>
#include <vector>

namespace torvane {

namespace {

/// What one stage does to a block.
class Stage {
  public:
    virtual ~Stage() = default;
    [[nodiscard]] virtual bool move(std::uint64_t offset, std::span<std::byte> bytes) = 0;
};

class DriveStage : public Stage {
  public:
    explicit DriveStage(int number) : drive_(ProbePhysicalDrive(number)) {}

  protected:
    CopyDriveIo io_;
    DriveRecordPtr drive_;
};

class ReadDrive : public DriveStage {
  public:
    explicit ReadDrive(const std::string&) : DriveStage(1) {}
    bool move(std::uint64_t offset, std::span<std::byte> bytes) override {
        return reachAndRead(io_, *drive_, offset, bytes) == TransferOutcome::kWhole;
    }
};

class WriteDrive : public DriveStage {
  public:
    explicit WriteDrive(const std::string&) : DriveStage(2) {}
    bool move(std::uint64_t offset, std::span<std::byte> bytes) override {
        return reachAndWrite(io_, *drive_, offset, bytes) == TransferOutcome::kWhole;
    }
};

UniqueFile openFile(const std::string& path, DWORD access, DWORD disposition) {
    return UniqueFile(
        CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition, 0, nullptr));
}

class ReadFileStage : public Stage {
  public:
    explicit ReadFileStage(const std::string& benchFolder)
        : file_(openFile(sourceFile(benchFolder), GENERIC_READ, OPEN_EXISTING)) {}
    bool move(std::uint64_t offset, std::span<std::byte> bytes) override {
        return readAt(file_.get(), offset, bytes) == TransferOutcome::kWhole;
    }

  private:
    UniqueFile file_;
};

class WriteFileStage : public Stage {
  public:
    explicit WriteFileStage(const std::string&) : file_(openFile("stage.img", GENERIC_WRITE, CREATE_ALWAYS)) {}
    bool move(std::uint64_t offset, std::span<std::byte> bytes) override {
        return writeAt(file_.get(), offset, bytes) == TransferOutcome::kWhole;
    }

  private:
    UniqueFile file_;
};

template <std::unique_ptr<BlockHasher> (*makeHasher)(HasherFailure&)>
class Hash : public Stage {
  public:
    explicit Hash(const std::string&) : hasher_(makeHasher(failure_)) {}
    bool move(std::uint64_t, std::span<std::byte> bytes) override { return hasher_ && hasher_->add(bytes); }

  private:
    HasherFailure failure_ = HasherFailure::kNone;
    std::unique_ptr<BlockHasher> hasher_;
};

template <typename Kind>
std::unique_ptr<Stage> make(const std::string& benchFolder) {
    return std::make_unique<Kind>(benchFolder);
}

struct NamedStage {
    std::string_view name;
    std::unique_ptr<Stage> (*make)(const std::string& benchFolder);
};

constexpr NamedStage kStages[] = {
    {"read-drive", make<ReadDrive>},      {"read-file", make<ReadFileStage>},  {"write-drive", make<WriteDrive>},
    {"write-file", make<WriteFileStage>}, {"hash", make<Hash<makeMd5Hasher>>}, {"sha256", make<Hash<makeSha256Hasher>>},
};

/// Bytes of noise, so that nobody's short way with zeros is measured.
std::vector<std::byte> noise(std::size_t length) {
    std::vector<std::byte> bytes(length);
    std::mt19937_64 random(1); // the same at every run
    std::ranges::generate(bytes, [&] { return static_cast<std::byte>(random()); });
    return bytes;
}

std::optional<double> secondsOf(Stage& stage, const BlockOrder& order) {
    std::vector<std::byte> block = noise(order.blockSize());
    const auto begun = std::chrono::steady_clock::now();
    for (std::uint64_t index = 0; index < order.count(); ++index) {
        const BlockExtent extent = order.extent(index);
        if (!stage.move(extent.offset, std::span(block).first(extent.length))) {
            return std::nullopt;
        }
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
}

} // namespace

std::string sourceFile(const std::string& benchFolder) {
    return benchFolder + "\\backing\\source.img";
}

std::optional<double> secondsOfStage(std::string_view stage, const std::string& benchFolder) {
    const DriveRecordPtr drive = ProbePhysicalDrive(1);
    for (const NamedStage& named : kStages) {
        if (drive && named.name == stage) {
            return secondsOf(*named.make(benchFolder),
                             BlockOrder::forward(static_cast<std::uint64_t>(drive->sizeBytes), kCopyBlockSize));
        }
    }
    return std::nullopt;
}

} // namespace torvane
