#include "base/positioned_io.h"

#include <windows.h>

namespace torvane {

namespace {

// A synchronous handle takes the place from here and still returns when the transfer is done (ReadFile, WriteFile).
OVERLAPPED placeAt(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

constexpr DWORD kNoSuchDevice = 433; // ERROR_NO_SUCH_DEVICE, which not every winerror.h has

/// What the system answers for a device that was unplugged or removed (Win32 system error codes).
bool tellsThatDeviceIsGone(DWORD error) {
    switch (error) {
    case ERROR_DEV_NOT_EXIST:
    case kNoSuchDevice:
    case ERROR_DEVICE_NOT_CONNECTED:
    case ERROR_DEVICE_REMOVED:
        return true;
    default:
        return false;
    }
}

/// What is answered where nobody knows a request to flush.
bool tellsThatFlushIsUnknown(DWORD error) {
    switch (error) {
    case ERROR_INVALID_FUNCTION:
    case ERROR_NOT_SUPPORTED:
    case ERROR_CALL_NOT_IMPLEMENTED:
        return true;
    default:
        return false;
    }
}

/// What a drive's handle answers besides that cannot be flushed at all.
bool tellsThatDriveIsNotFlushed(DWORD error) {
    switch (error) {
    case ERROR_INVALID_HANDLE: // whatever has no buffers (FlushFileBuffers)
    case ERROR_ACCESS_DENIED:  // the handle has no GENERIC_WRITE: nothing was written through it
        return true;
    default:
        return tellsThatFlushIsUnknown(error);
    }
}

/// Leaves the thread's last error as it is.
TransferOutcome outcomeOf(BOOL done, bool whole) {
    if (done != FALSE) {
        return whole ? TransferOutcome::kWhole : TransferOutcome::kFailed;
    }
    return tellsThatDeviceIsGone(GetLastError()) ? TransferOutcome::kGone : TransferOutcome::kFailed;
}

TransferOutcome flush(HANDLE handle, bool (*tellsThatItIsNotFlushed)(DWORD error)) {
    const BOOL done = FlushFileBuffers(handle);
    if (done == FALSE && tellsThatItIsNotFlushed(GetLastError())) {
        return TransferOutcome::kWhole;
    }
    return outcomeOf(done, true);
}

/// `place` null: at the file pointer.
TransferOutcome read(HANDLE handle, std::span<std::byte> bytes, OVERLAPPED* place) {
    const auto length = static_cast<DWORD>(bytes.size());
    DWORD count = 0;
    const BOOL done = ReadFile(handle, bytes.data(), length, &count, place);
    return outcomeOf(done, count == length);
}

TransferOutcome write(HANDLE handle, std::span<const std::byte> bytes, OVERLAPPED* place) {
    const auto length = static_cast<DWORD>(bytes.size());
    DWORD count = 0;
    const BOOL done = WriteFile(handle, bytes.data(), length, &count, place);
    return done == FALSE && GetLastError() == ERROR_ACCESS_DENIED ? TransferOutcome::kRefused
                                                                  : outcomeOf(done, count == length);
}

} // namespace

bool canReach(void* handle, std::uint64_t offset) {
    auto high = static_cast<LONG>(offset >> 32);
    const DWORD low = SetFilePointer(handle, static_cast<LONG>(offset & 0xFFFFFFFF), &high, FILE_BEGIN);
    // The low part alone decides, whatever GetLastError says: no block begins at such a position.
    return low != INVALID_SET_FILE_POINTER;
}

TransferOutcome readAt(void* handle, std::uint64_t offset, std::span<std::byte> bytes) {
    OVERLAPPED place = placeAt(offset);
    return read(handle, bytes, &place);
}

TransferOutcome writeAt(void* handle, std::uint64_t offset, std::span<const std::byte> bytes) {
    OVERLAPPED place = placeAt(offset);
    return write(handle, bytes, &place);
}

TransferOutcome readNext(void* handle, std::span<std::byte> bytes) {
    return read(handle, bytes, nullptr);
}

TransferOutcome writeNext(void* handle, std::span<const std::byte> bytes) {
    return write(handle, bytes, nullptr);
}

TransferOutcome flushFile(void* handle) {
    return flush(handle, &tellsThatFlushIsUnknown);
}

TransferOutcome flushDrive(void* handle) {
    return flush(handle, &tellsThatDriveIsNotFlushed);
}

} // namespace torvane
