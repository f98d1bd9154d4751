#include "workbench/session/drive_content.h"

#include "workbench/description/error_names.h"
#include "workbench/devices/pattern.h"

#include <winioctl.h>

#include <algorithm>
#include <system_error>

namespace torvane::bench {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Bytes that the backing file is given at a time. Some systems take several times as long for the same bytes in one
/// transfer of many megabytes, and a drive's own speed is none of theirs.
constexpr std::size_t kWritePiece = 0x100000;

// Where a transfer happens is said with the transfer itself, so that handles need no common file pointer.
OVERLAPPED at(std::uint64_t offset) {
    OVERLAPPED overlapped{};
    overlapped.Offset = static_cast<DWORD>(offset);
    overlapped.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return overlapped;
}

} // namespace

DriveContent::DriveContent(const std::filesystem::path& benchFolder, const DriveDescription& drive)
    : drive_(drive), file_(benchFolder / "backing" / drive.backing.file), description_(benchFolder / drive.fileName) {}

// A file that is too short grows to the drive's size; the part that was never written takes no room.
void DriveContent::makeFile() const {
    std::error_code ignored;
    std::filesystem::create_directories(file_.parent_path(), ignored);
    const UniqueHandle file(
        CreateFileW(file_.c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll, nullptr, OPEN_ALWAYS, 0, nullptr));
    LARGE_INTEGER size{};
    if (!file || GetFileSizeEx(file.get(), &size) == 0 || static_cast<std::uint64_t>(size.QuadPart) >= drive_.size) {
        return;
    }
    DWORD returned = 0;
    DeviceIoControl(file.get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
    size.QuadPart = static_cast<LONGLONG>(drive_.size);
    if (SetFilePointerEx(file.get(), size, nullptr, FILE_BEGIN) != 0) {
        SetEndOfFile(file.get());
    }
}

UniqueHandle DriveContent::open(DWORD access, LPSECURITY_ATTRIBUTES security) const {
    if (isPattern()) {
        return UniqueHandle(
            CreateFileW(description_.c_str(), GENERIC_READ, kShareAll, security, OPEN_EXISTING, 0, nullptr));
    }
    makeFile();
    return UniqueHandle(
        CreateFileW(file_.c_str(), access | SYNCHRONIZE, kShareAll, security, OPEN_EXISTING, 0, nullptr));
}

DWORD DriveContent::read(HANDLE handle, std::uint64_t offset, std::span<std::uint8_t> out) const {
    if (isPattern()) {
        fillPattern(drive_.backing, offset, out);
        return 0;
    }
    OVERLAPPED place = at(offset);
    DWORD done = 0;
    if (ReadFile(handle, out.data(), static_cast<DWORD>(out.size()), &done, &place) == 0) {
        const DWORD error = GetLastError();
        if (error != ERROR_HANDLE_EOF) {
            return error;
        }
    }
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(done), out.end(), std::uint8_t{0});
    return 0;
}

DWORD DriveContent::write(HANDLE handle, std::uint64_t offset, std::span<const std::uint8_t> data) const {
    if (isPattern()) {
        return drive_.backing.forgetsWrites ? 0 : kErrorWriteProtect;
    }
    while (!data.empty()) {
        const std::size_t length = std::min(data.size(), kWritePiece);
        OVERLAPPED place = at(offset);
        DWORD done = 0;
        if (WriteFile(handle, data.data(), static_cast<DWORD>(length), &done, &place) == 0) {
            return GetLastError();
        }
        if (done != length) {
            return static_cast<DWORD>(ERROR_DISK_FULL);
        }
        data = data.subspan(length);
        offset += length;
    }
    return 0;
}

} // namespace torvane::bench
