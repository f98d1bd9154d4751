#include "copy/engine/block_io.h"

#include "base/positioned_io.h"
#include "copy/engine/block_layout.h"
#include "copy/jobs/job_steps.h"
#include "state/event_log.h"

#include <windows.h>

#include <cstdarg>

namespace torvane {

FetchOutcome fetchBlock(const DriveRecord& source, std::span<std::byte> buffer, std::uint64_t offset) {
    if (!canReach(source.handle, offset)) {
        return FetchOutcome::kSeekFailed;
    }
    return readAt(source.handle, offset, buffer) == TransferOutcome::kWhole ? FetchOutcome::kWhole
                                                                            : FetchOutcome::kReadFailed;
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
    if (!canReach(destination.handle, offset)) {
        return false;
    }
    if (writeAt(destination.handle, offset, buffer) == TransferOutcome::kWhole) {
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
