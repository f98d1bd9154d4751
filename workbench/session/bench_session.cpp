#include "workbench/session/bench_session.h"

#include "workbench/description/bench_files.h"
#include "workbench/description/error_names.h"
#include "workbench/session/win32_text.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace torvane::bench {
namespace {

std::string accessText(const OpenDevice& device) {
    return std::string(device.mayRead() ? "r" : "") + (device.mayWrite() ? "w" : "");
}

} // namespace

std::string OpenDevice::target() const {
    switch (kind) {
    case PathKind::kVolume:
        return "volume:" + volume->name();
    case PathKind::kMountManager:
        return "bench";
    case PathKind::kScsiPort:
        return "scsi:" + std::to_string(drive->description().scsiPort);
    default:
        return "drive:" + std::to_string(drive->description().number);
    }
}

std::shared_ptr<BenchSession> BenchSession::open(const std::filesystem::path& folder, std::string& error) {
    std::error_code failure;
    const std::filesystem::path whole = std::filesystem::weakly_canonical(folder, failure);
    BenchReading reading = readBenchFolder(failure ? folder : whole);
    if (!reading.error.empty()) {
        error = reading.error;
        return nullptr;
    }
    std::shared_ptr<BenchSession> session(new BenchSession);
    session->description_ = std::move(reading.bench);
    session->folder_ = std::make_unique<BenchFolder>(failure ? folder : whole, session->description_);
    if (!session->folder_->usable()) {
        error = "bench.log: cannot be written";
        return nullptr;
    }
    for (const DriveDescription& drive : session->description_.drives) {
        session->drives_.try_emplace(drive.number, session->folder_->path(), drive);
        const auto other = session->swappedDescriptions_.try_emplace(drive.number, swappedDrive(drive)).first;
        session->swappedDrives_.try_emplace(drive.number, session->folder_->path(), other->second);
    }
    return session;
}

BenchDrive* BenchSession::drive(std::uint32_t number) {
    auto& inPlace = folder_->state().isSwapped(number) ? swappedDrives_ : drives_;
    const auto found = inPlace.find(number);
    return found == inPlace.end() ? nullptr : &found->second;
}

BenchDrive& BenchSession::reached(const OpenDevice& device) {
    const DriveDescription& opened = device.drive->description();
    BenchDrive* const inPlace = opened.swap.keepsHandles ? drive(opened.number) : nullptr;
    return inPlace == nullptr ? *device.drive : *inPlace;
}

bool BenchSession::isPresent(const BenchDrive& drive) {
    const std::uint32_t number = drive.description().number;
    return this->drive(number) == &drive && !drive.hasVanished() && !folder_->state().isUnplugged(number);
}

bool BenchSession::isMounted(const VolumeDescription& volume) {
    return folder_->state().isMounted(volume) &&
           std::all_of(volume.extents.begin(), volume.extents.end(),
                       [&](const VolumeExtent& extent) { return isPresent(*drive(extent.disk)); });
}

// Fills in what the path names. Returns a Win32 error, 0 for success.
DWORD BenchSession::resolve(const DevicePath& device, const OpenRequest& request, OpenDevice& opened) {
    opened.kind = device.kind;
    opened.access = request.access;
    if (device.kind == PathKind::kVolume) {
        const VolumeDescription* const volume =
            device.letter != 0 ? description_.volume(device.letter) : description_.volumeNamed(device.guid);
        if (volume == nullptr || !isMounted(*volume)) {
            return kErrorFileNotFound;
        }
        opened.volume = volume;
        if (volume->openError) {
            return *volume->openError;
        }
        const bool locked = volume->bitLocker.state == BitLockerState::kLocked;
        return locked && (opened.mayRead() || opened.mayWrite()) ? kErrorAccessDenied : 0;
    }
    if (device.kind == PathKind::kMountManager && description_.tellsAutomount) {
        return 0;
    }
    if (device.kind == PathKind::kMountManager || device.kind == PathKind::kForeignDevice) {
        return kErrorFileNotFound;
    }
    const auto found = std::find_if(drives_.begin(), drives_.end(), [&](const auto& entry) {
        const DriveDescription& drive = entry.second.description();
        return (device.kind == PathKind::kDrive ? drive.number : drive.scsiPort) == device.number;
    });
    BenchDrive* const inPlace = found == drives_.end() ? nullptr : drive(found->first);
    if (inPlace == nullptr || !isPresent(*inPlace)) {
        return kErrorFileNotFound;
    }
    opened.drive = inPlace;
    return device.kind == PathKind::kDrive ? opened.drive->openFault().value_or(0) : 0;
}

UniqueHandle BenchSession::kernelHandle(const OpenDevice& opened, const OpenRequest& request) {
    if (opened.kind == PathKind::kDrive) {
        return opened.drive->content().open(request.access, request.security);
    }
    // Transfers of a volume go to its drives; a port and the mount manager have none. Any file's handle serves.
    const std::string& name = opened.drive != nullptr    ? opened.drive->description().fileName
                              : opened.volume != nullptr ? opened.volume->fileName
                                                         : std::string("bench.json");
    return UniqueHandle(CreateFileW((folder_->path() / name).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, request.security,
                                    OPEN_EXISTING, 0, nullptr));
}

HANDLE BenchSession::openDevice(const DevicePath& device, const OpenRequest& request) {
    const auto opened = std::make_shared<OpenDevice>();
    DWORD error = resolve(device, request, *opened);
    if (error == 0 && request.disposition != OPEN_EXISTING) {
        error = kErrorInvalidParameter;
    }
    UniqueHandle handle;
    if (error == 0) {
        handle = kernelHandle(*opened, request);
        error = handle ? 0 : GetLastError();
    }
    const bool named = opened->drive != nullptr || opened->volume != nullptr;
    LogLine line(named ? opened->target() : "bench", "open");
    line.quoted("path", utf8FromWide(request.path)).word("access", accessText(*opened)).result(error);
    folder_->log(line);
    if (error != 0) {
        SetLastError(error);
        return INVALID_HANDLE_VALUE;
    }
    addDuplicate(handle.get(), opened);
    return handle.release();
}

std::shared_ptr<OpenDevice> BenchSession::find(HANDLE handle) {
    const std::shared_lock lock(handlesMutex_);
    const auto found = handles_.find(handle);
    return found == handles_.end() ? nullptr : found->second;
}

void BenchSession::addDuplicate(HANDLE handle, std::shared_ptr<OpenDevice> device) {
    const std::unique_lock lock(handlesMutex_);
    handles_[handle] = std::move(device);
}

void BenchSession::addFile(HANDLE handle, const VolumeDescription& volume) {
    const std::unique_lock lock(handlesMutex_);
    files_[handle] = &volume;
}

const VolumeDescription* BenchSession::volumeOfFile(HANDLE handle) {
    const std::shared_lock lock(handlesMutex_);
    const auto found = files_.find(handle);
    return found == files_.end() ? nullptr : found->second;
}

void BenchSession::forget(HANDLE handle) {
    const std::unique_lock lock(handlesMutex_);
    handles_.erase(handle);
    files_.erase(handle);
}

} // namespace torvane::bench
