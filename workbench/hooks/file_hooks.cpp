#include "workbench/description/error_names.h"
#include "workbench/hooks/hook_functions.h"
#include "workbench/hooks/hooks.h"
#include "workbench/hooks/monitoring_tool.h"
#include "workbench/hooks/path_hooks.h"
#include "workbench/hooks/refused_files.h"
#include "workbench/session/control.h"
#include "workbench/session/transfer.h"
#include "workbench/session/win32_text.h"

#include <array>
#include <optional>
#include <string>

namespace torvane::bench {
namespace {

// A bench device behind a handle, with the session that knows it; empty for every other handle.
struct Found {
    std::shared_ptr<BenchSession> session;
    std::shared_ptr<OpenDevice> device;
    explicit operator bool() const { return device != nullptr; }
};

Found findDevice(HANDLE handle) {
    Found found;
    found.session = currentSession();
    if (found.session) {
        found.device = found.session->find(handle);
    }
    return found;
}

std::optional<std::uint64_t> placeOf(const OVERLAPPED* overlapped) {
    if (overlapped == nullptr) {
        return std::nullopt;
    }
    return overlapped->Offset | (std::uint64_t{overlapped->OffsetHigh} << 32);
}

// Every request of the bench is complete when it returns, also one that was meant to be overlapped.
BOOL finish(DWORD error, DWORD bytes, LPDWORD bytesOut, LPOVERLAPPED overlapped) {
    if (bytesOut != nullptr) {
        *bytesOut = bytes;
    }
    if (overlapped != nullptr) {
        overlapped->Internal = 0;
        overlapped->InternalHigh = bytes;
        if (error == 0 && overlapped->hEvent != nullptr) {
            SetEvent(overlapped->hEvent);
        }
    }
    if (error != 0) {
        SetLastError(error);
        return FALSE;
    }
    return TRUE;
}

HANDLE openPath(const std::shared_ptr<BenchSession>& session, std::wstring_view path, DWORD access,
                LPSECURITY_ATTRIBUTES security, DWORD disposition) {
    delayMonitoringTool(*session);
    return session->openDevice(parseDevicePath(path), {path, access, disposition, security});
}

/// A file of a volume whose file system ends files at some size is remembered with it.
HANDLE remembered(const std::shared_ptr<BenchSession>& session, LPCWSTR path, HANDLE file) {
    if (session && file != INVALID_HANDLE_VALUE) {
        const std::wstring whole = absolutePath(path);
        const VolumeDescription* const volume = whole.size() >= 2 && whole[1] == L':'
                                                    ? session->description().volume(rootLetter(whole.substr(0, 2)))
                                                    : nullptr;
        if (volume != nullptr && volume->largestFile) {
            session->addFile(file, *volume);
        }
    }
    return file;
}

// As the system's driver for FAT: nothing of a write that reaches past the largest file is stored.
bool refusesLargeFile(HANDLE file, DWORD length, const OVERLAPPED* overlapped) {
    const auto session = currentSession();
    const VolumeDescription* const volume = session ? session->volumeOfFile(file) : nullptr;
    if (volume == nullptr) {
        return false;
    }
    LARGE_INTEGER position{};
    SetFilePointerEx(file, {}, &position, FILE_CURRENT);
    const std::uint64_t place = placeOf(overlapped).value_or(static_cast<std::uint64_t>(position.QuadPart));
    if (place + length <= *volume->largestFile) {
        return false;
    }
    LogLine line(std::string("volume:") + volume->letter, "write");
    session->folder().log(line.number("offset", place).number("length", length).result(ERROR_DISK_FULL));
    return true;
}

/// With the thread's last error set.
bool refuses(BenchSession& session, const wchar_t* path, DWORD access, DWORD disposition) {
    const DWORD error = refusalOf(session, path, access, disposition);
    if (error != NO_ERROR) {
        SetLastError(error);
    }
    return error != NO_ERROR;
}

HANDLE WINAPI createFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                          DWORD flags, HANDLE likeFile) {
    const auto session = currentSession();
    if (session && path != nullptr && parseDevicePath(path).kind != PathKind::kOrdinary) {
        return openPath(session, path, access, security, disposition);
    }
    if (refusesLongPath(path) || (session && path != nullptr && refuses(*session, path, access, disposition))) {
        return INVALID_HANDLE_VALUE;
    }
    return remembered(session, path, CreateFileW(path, access, share, security, disposition, flags, likeFile));
}

HANDLE WINAPI createFileA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                          DWORD flags, HANDLE likeFile) {
    const auto session = currentSession();
    if (!session || path == nullptr) {
        return CreateFileA(path, access, share, security, disposition, flags, likeFile);
    }
    return createFileW(wideFromAnsi(path).c_str(), access, share, security, disposition, flags, likeFile);
}

BOOL WINAPI closeHandle(HANDLE handle) {
    if (const Found found = findDevice(handle)) {
        LogLine line(found.device->target(), "close");
        found.session->folder().log(line.result(0));
    }
    if (const auto session = currentSession()) {
        session->forget(handle);
    }
    return CloseHandle(handle);
}

BOOL WINAPI duplicateHandle(HANDLE sourceProcess, HANDLE source, HANDLE targetProcess, LPHANDLE target, DWORD access,
                            BOOL inherit, DWORD options) {
    const bool within = sourceProcess == GetCurrentProcess() && targetProcess == GetCurrentProcess();
    const Found found = within ? findDevice(source) : Found();
    const BOOL done = DuplicateHandle(sourceProcess, source, targetProcess, target, access, inherit, options);
    if (done != FALSE && found) {
        if ((options & DUPLICATE_CLOSE_SOURCE) != 0) {
            found.session->forget(source);
        }
        if (target != nullptr) {
            found.session->addDuplicate(*target, found.device);
        }
    }
    return done;
}

BOOL WINAPI readFile(HANDLE handle, LPVOID buffer, DWORD length, LPDWORD bytes, LPOVERLAPPED overlapped) {
    const Found found = findDevice(handle);
    if (!found) {
        return ReadFile(handle, buffer, length, bytes, overlapped);
    }
    const TransferResult result = readDevice(*found.session, *found.device, handle, placeOf(overlapped),
                                             {static_cast<std::uint8_t*>(buffer), length});
    return finish(result.error, result.bytes, bytes, overlapped);
}

BOOL WINAPI writeFile(HANDLE handle, LPCVOID buffer, DWORD length, LPDWORD bytes, LPOVERLAPPED overlapped) {
    const Found found = findDevice(handle);
    if (!found) {
        return refusesLargeFile(handle, length, overlapped) ? finish(ERROR_DISK_FULL, 0, bytes, overlapped)
                                                            : WriteFile(handle, buffer, length, bytes, overlapped);
    }
    const TransferResult result = writeDevice(*found.session, *found.device, handle, placeOf(overlapped),
                                              {static_cast<const std::uint8_t*>(buffer), length});
    return finish(result.error, result.bytes, bytes, overlapped);
}

BOOL WINAPI flushFileBuffers(HANDLE handle) {
    const Found found = findDevice(handle);
    if (!found) {
        return FlushFileBuffers(handle);
    }
    return finish(flushDevice(*found.session, *found.device), 0, nullptr, nullptr);
}

DWORD WINAPI setFilePointer(HANDLE handle, LONG distance, PLONG distanceHigh, DWORD method) {
    const Found found = findDevice(handle);
    if (!found) {
        return SetFilePointer(handle, distance, distanceHigh, method);
    }
    std::int64_t whole = distance;
    if (distanceHigh != nullptr) {
        whole =
            static_cast<std::int64_t>((static_cast<std::uint64_t>(static_cast<std::uint32_t>(*distanceHigh)) << 32) |
                                      static_cast<std::uint32_t>(distance));
    }
    std::uint64_t position = 0;
    const DWORD error = moveDevicePointer(*found.session, *found.device, whole, method, position);
    if (error != 0) {
        SetLastError(error);
        return INVALID_SET_FILE_POINTER;
    }
    if (distanceHigh != nullptr) {
        *distanceHigh = static_cast<LONG>(position >> 32);
    }
    SetLastError(NO_ERROR); // the low half alone may look like a failure
    return static_cast<DWORD>(position);
}

BOOL WINAPI setFilePointerEx(HANDLE handle, LARGE_INTEGER distance, PLARGE_INTEGER newPosition, DWORD method) {
    const Found found = findDevice(handle);
    if (!found) {
        return SetFilePointerEx(handle, distance, newPosition, method);
    }
    std::uint64_t position = 0;
    const DWORD error = moveDevicePointer(*found.session, *found.device, distance.QuadPart, method, position);
    if (error == 0 && newPosition != nullptr) {
        newPosition->QuadPart = static_cast<LONGLONG>(position);
    }
    return finish(error, 0, nullptr, nullptr);
}

// A disk has no file size.
DWORD WINAPI getFileSize(HANDLE handle, LPDWORD high) {
    if (findDevice(handle)) {
        SetLastError(kErrorInvalidFunction);
        return INVALID_FILE_SIZE;
    }
    return GetFileSize(handle, high);
}

BOOL WINAPI getFileSizeEx(HANDLE handle, PLARGE_INTEGER size) {
    if (findDevice(handle)) {
        SetLastError(kErrorInvalidFunction);
        return FALSE;
    }
    return GetFileSizeEx(handle, size);
}

BOOL WINAPI deviceIoControl(HANDLE handle, DWORD code, LPVOID in, DWORD inLength, LPVOID out, DWORD outLength,
                            LPDWORD bytes, LPOVERLAPPED overlapped) {
    const Found found = findDevice(handle);
    if (!found) {
        return DeviceIoControl(handle, code, in, inLength, out, outLength, bytes, overlapped);
    }
    if ((in == nullptr && inLength > 0) || (out == nullptr && outLength > 0)) {
        return finish(ERROR_NOACCESS, 0, bytes, overlapped);
    }
    const auto* input = static_cast<const std::uint8_t*>(in);
    ControlRequest request;
    request.code = code;
    request.in.assign(input, input + inLength);
    request.out = {static_cast<std::uint8_t*>(out), outLength};
    const ControlResult result = controlDevice(*found.session, *found.device, request);
    return finish(result.error, result.bytes, bytes, overlapped);
}

} // namespace

std::span<const Replacement> fileReplacements() {
    static const std::array kReplacements = {
        Replacement{"CreateFileA", hookAddress(createFileA)},
        Replacement{"CreateFileW", hookAddress(createFileW)},
        Replacement{"CloseHandle", hookAddress(closeHandle)},
        Replacement{"DuplicateHandle", hookAddress(duplicateHandle)},
        Replacement{"ReadFile", hookAddress(readFile)},
        Replacement{"WriteFile", hookAddress(writeFile)},
        Replacement{"FlushFileBuffers", hookAddress(flushFileBuffers)},
        Replacement{"SetFilePointer", hookAddress(setFilePointer)},
        Replacement{"SetFilePointerEx", hookAddress(setFilePointerEx)},
        Replacement{"GetFileSize", hookAddress(getFileSize)},
        Replacement{"GetFileSizeEx", hookAddress(getFileSizeEx)},
        Replacement{"DeviceIoControl", hookAddress(deviceIoControl)},
    };
    return kReplacements;
}

} // namespace torvane::bench
