#include "copy/rescue/windows_rescue_system.h"

#include "base/owned_handle.h"
#include "base/positioned_io.h"
#include "base/system_path.h"
#include "base/whole_file.h"
#include "copy/rescue/leavable_reader.h"
#include "discovery/disk_identity.h"
#include "discovery/find_drive.h"
#include "discovery/physical_drive_probe.h"
#include "records/drive_record.h"
#include "state/scan_tables.h"

#include <windows.h>

#include <winioctl.h>

#include <utility>

namespace torvane {

namespace {

constexpr DWORD kBetweenLooks = 1000; // milliseconds

SourceAnswer answerOf(const std::optional<TransferOutcome>& outcome) {
    if (!outcome) {
        return SourceAnswer::kLeft;
    }
    switch (*outcome) {
    case TransferOutcome::kWhole:
        return SourceAnswer::kWhole;
    case TransferOutcome::kGone:
        return SourceAnswer::kGone;
    default:
        return SourceAnswer::kFailed;
    }
}

/// Reads by a handle of its own. A slot or a bridge may answer at once and for ever that it has no disk any more, in
/// many words: when a read has failed, the drive is asked whether it is there, which costs next to nothing beside it.
class DriveReader {
  public:
    DriveReader(NativeHandle handle, std::int64_t bytes) : handle_(handle), bytes_(bytes) {}

    TransferOutcome read(std::uint64_t offset, std::span<std::byte> bytes) {
        const TransferOutcome outcome = readAt(handle_.get(), offset, bytes);
        return outcome != TransferOutcome::kWhole && !isThere() ? TransferOutcome::kGone : outcome;
    }

  private:
    [[nodiscard]] bool isThere() const {
        const std::optional<DiskGeometry> geometry = readDiskGeometry(handle_.get());
        return geometry && geometry->sizeBytes == bytes_;
    }

    UniqueHandle handle_;
    std::int64_t bytes_;
};

class WindowsRescueDrive : public RescueDrive {
  public:
    WindowsRescueDrive(const DriveRecord& drive, const DriveRecord* destination)
        : drive_(drive), destination_(destination != nullptr ? std::optional(destination->driveNumber) : std::nullopt) {
    }

    /// True when it could be opened by its number.
    bool open() { return readBy(openDriveByNumber(drive_.driveNumber)); }

    SourceAnswer read(std::uint64_t offset, std::span<std::byte> bytes, const std::function<bool()>& mayWait) override {
        return reader_ ? answerOf(reader_->read(offset, bytes, mayWait)) : SourceAnswer::kGone;
    }

    bool findAgain(const std::function<bool()>& mayWait) override {
        reader_.reset(); // and its handle, once a read that was left has ended
        const auto search = std::make_shared<Search>(drive_, destination_);
        LeavableReader searching([search](std::uint64_t, std::span<std::byte>) { return search->run(); });
        return searching.read(0, {}, mayWait) == TransferOutcome::kWhole && readBy(search->found.release());
    }

  private:
    /// A look for the drive. It may be left, and so owns what it uses.
    struct Search {
        Search(const DriveRecord& sought, std::optional<int> notThis) : drive(sought), except(notThis) {}

        TransferOutcome run() {
            const std::optional<FoundDrive> again = findDriveAgain(drive, kMaxDrives, except);
            found.reset(again ? again->handle : nullptr);
            return again ? TransferOutcome::kWhole : TransferOutcome::kGone;
        }

        DriveRecord drive;
        std::optional<int> except; ///< a drive's number
        UniqueHandle found;
    };

    bool readBy(NativeHandle handle) {
        if (handle == nullptr) {
            return false;
        }
        reader_ = std::make_unique<LeavableReader>(
            [reader = std::make_shared<DriveReader>(handle, drive_.sizeBytes)](
                std::uint64_t offset, std::span<std::byte> bytes) { return reader->read(offset, bytes); });
        return true;
    }

    const DriveRecord& drive_;
    std::optional<int> destination_;         ///< its number
    std::unique_ptr<LeavableReader> reader_; ///< null: the drive is not there
};

class WindowsRescueImage : public RescueImage {
  public:
    explicit WindowsRescueImage(UniqueFile file) : file_(std::move(file)) {
        DWORD returned = 0;
        keepsHoles_ =
            DeviceIoControl(file_.get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr) != FALSE;
    }

    bool write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return writeAt(file_.get(), offset, bytes) == TransferOutcome::kWhole;
    }
    bool flush() override { return flushFile(file_.get()) == TransferOutcome::kWhole; }
    bool read(std::uint64_t offset, std::span<std::byte> bytes) override {
        return readAt(file_.get(), offset, bytes) == TransferOutcome::kWhole;
    }
    std::uint64_t size() override { return sizeOfFile(file_.get()).value_or(0); }
    bool keepsHoles() override { return keepsHoles_; }

  private:
    UniqueFile file_;
    bool keepsHoles_ = false;
};

} // namespace

std::unique_ptr<RescueDrive> WindowsRescueSystem::openDrive(const DriveRecord& drive, const DriveRecord* destination) {
    auto opened = std::make_unique<WindowsRescueDrive>(drive, destination);
    return opened->open() ? std::move(opened) : nullptr;
}

std::unique_ptr<RescueImage> WindowsRescueSystem::openImage(const std::string& path) {
    UniqueFile file(CreateFileW(systemPath(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file ? std::make_unique<WindowsRescueImage>(std::move(file)) : nullptr;
}

std::optional<std::string> WindowsRescueSystem::readText(const std::string& path) {
    constexpr std::uint64_t kMostBytes = 256ULL << 20; // a map of ten million ranges
    return readFileUpTo(path, kMostBytes);
}

void WindowsRescueSystem::pause() {
    Sleep(kBetweenLooks);
}

} // namespace torvane
