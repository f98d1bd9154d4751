#pragma once

#include "workbench/description/bench_description.h"
#include "workbench/devices/device_path.h"
#include "workbench/session/bench_drive.h"
#include "workbench/session/bench_folder.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace torvane::bench {

/// A device that a process has open. Duplicated handles share it, file pointer and all.
struct OpenDevice {
    PathKind kind = PathKind::kDrive; ///< of a drive, a volume or a port
    BenchDrive* drive = nullptr;      ///< of a drive or port
    const VolumeDescription* volume = nullptr;
    DWORD access = 0;
    std::mutex transferMutex;   ///< one transfer at a time, as on any synchronous handle
    std::uint64_t position = 0; ///< bytes; guarded by transferMutex

    [[nodiscard]] bool mayRead() const { return (access & (GENERIC_READ | GENERIC_ALL | FILE_READ_DATA)) != 0; }
    [[nodiscard]] bool mayWrite() const { return (access & (GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA)) != 0; }
    /// "drive:3", "volume:C" or "scsi:3".
    [[nodiscard]] std::string target() const;
};

/// What CreateFile was asked for.
struct OpenRequest {
    std::wstring_view path;
    DWORD access = 0;
    DWORD disposition = OPEN_EXISTING;
    LPSECURITY_ATTRIBUTES security = nullptr;
};

/// This process on a bench: the described drives and volumes, and the handles that the process has on them.
class BenchSession {
  public:
    /// Null when the bench is wrong; `error` then tells file, field and mistake.
    [[nodiscard]] static std::shared_ptr<BenchSession> open(const std::filesystem::path& folder, std::string& error);

    [[nodiscard]] const BenchDescription& description() const { return description_; }
    [[nodiscard]] BenchFolder& folder() { return *folder_; }
    /// The drive that has the number now; null when there is none of that number.
    [[nodiscard]] BenchDrive* drive(std::uint32_t number);
    /// The drive that an open drive or port reaches now: another medium in a device that keeps its handles.
    [[nodiscard]] BenchDrive& reached(const OpenDevice& device);

    /// Opens what `device` names. INVALID_HANDLE_VALUE on failure, with the thread's last error set.
    [[nodiscard]] HANDLE openDevice(const DevicePath& device, const OpenRequest& request);
    /// The device behind a handle; null when the handle is none of the bench's.
    [[nodiscard]] std::shared_ptr<OpenDevice> find(HANDLE handle);
    /// Registers a duplicate of a handle that `find` knows.
    void addDuplicate(HANDLE handle, std::shared_ptr<OpenDevice> device);
    /// Remembers an ordinary file that lies on a volume of the bench.
    void addFile(HANDLE handle, const VolumeDescription& volume);
    /// Null for a handle that was not remembered so.
    [[nodiscard]] const VolumeDescription* volumeOfFile(HANDLE handle);
    /// Forgets a handle that is about to be closed.
    void forget(HANDLE handle);

    /// The drive is there: in its place, neither unplugged nor vanished.
    [[nodiscard]] bool isPresent(const BenchDrive& drive);
    /// The volume of this letter, if it is mounted and all its drives are there.
    [[nodiscard]] const VolumeDescription* mountedVolume(char letter);

  private:
    BenchSession() = default;

    [[nodiscard]] DWORD resolve(const DevicePath& device, const OpenRequest& request, OpenDevice& opened);
    [[nodiscard]] UniqueHandle kernelHandle(const OpenDevice& opened, const OpenRequest& request);

    BenchDescription description_;
    std::unique_ptr<BenchFolder> folder_;
    std::map<std::uint32_t, BenchDrive> drives_;
    std::map<std::uint32_t, DriveDescription> swappedDescriptions_;
    std::map<std::uint32_t, BenchDrive> swappedDrives_; ///< those that can take their places
    std::shared_mutex handlesMutex_;
    std::unordered_map<HANDLE, std::shared_ptr<OpenDevice>> handles_;
    std::unordered_map<HANDLE, const VolumeDescription*> files_;
};

} // namespace torvane::bench
