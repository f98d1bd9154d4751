#include "copy/block_io.h"

#include "app/event_log.h"
#include "copy/block_layout.h"
#include "copy/job_steps.h"

#include <windows.h>

#include <cstdarg>

namespace torvane {

namespace {

bool seek(NativeHandle handle, std::uint64_t offset) {
    auto high = static_cast<LONG>(offset >> 32);
    const DWORD low = SetFilePointer(handle, static_cast<LONG>(offset & 0xFFFFFFFF), &high, FILE_BEGIN);
    // The low part alone decides, whatever GetLastError says: no block begins at such a position.
    return low != INVALID_SET_FILE_POINTER;
}

} // namespace

FetchOutcome fetchBlock(const DriveRecord& source, std::span<std::byte> buffer, std::uint64_t offset) {
    if (!seek(source.handle, offset)) {
        return FetchOutcome::kSeekFailed;
    }
    const auto length = static_cast<DWORD>(buffer.size());
    DWORD count = 0;
    const bool whole = ReadFile(source.handle, buffer.data(), length, &count, nullptr) && count == length;
    return whole ? FetchOutcome::kWhole : FetchOutcome::kReadFailed;
}

bool ReadBlock(DriveRecord& source, std::span<std::byte> buffer, std::uint64_t offset) {
    const FetchOutcome outcome = fetchBlock(source, buffer, offset);
    if (outcome == FetchOutcome::kReadFailed) {
        LogEvent("ERROR", "%s", countBadRead(source, offset).c_str());
        fillWithUnreadableMarker(buffer);
    }
    return outcome == FetchOutcome::kWhole;
}

bool WriteBlock(DriveRecord& destination, std::span<const std::byte> buffer, std::uint64_t offset) {
    if (!seek(destination.handle, offset)) {
        return false;
    }
    const auto length = static_cast<DWORD>(buffer.size());
    DWORD count = 0;
    if (WriteFile(destination.handle, buffer.data(), length, &count, nullptr) && count == length) {
        return true;
    }
    ReportWriteError("Write Error");
    ++destination.writeErrorCount;
    return false;
}

int ReportWriteError(const char* format, ...) {
    const DWORD error = GetLastError();
    char* systemText = nullptr;
    if (FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
                       nullptr, error, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&systemText),
                       0, nullptr) == 0) {
        return 1;
    }
    va_list arguments;
    va_start(arguments, format);
    // Shown to nobody on purpose.
    static_cast<void>(formatTextV(format, arguments));
    va_end(arguments);
    LocalFree(systemText);
    return 1;
}

} // namespace torvane
