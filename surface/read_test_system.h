#pragma once

#include "records/drive_record.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace torvane {

/// Memory to read into, zero-filled; null when there is none.
struct FreeReadBuffer {
    void operator()(std::byte* memory) const { std::free(memory); }
};
using ReadBuffer = std::unique_ptr<std::byte[], FreeReadBuffer>;

/// The world around the read tests but for the drive: memory, time, chance, the log and the main window. Tests are
/// written against it, so that they run under test as they run in the program.
class ReadTestSystem {
  public:
    virtual ~ReadTestSystem() = default;

    [[nodiscard]] virtual ReadBuffer allocate(std::size_t size) = 0;

    /// The millisecond clock, which wraps after 49.7 days; it ticks once a millisecond between the two calls.
    [[nodiscard]] virtual std::uint32_t milliseconds() = 0;
    virtual void beginFineClock() = 0;
    virtual void endFineClock() = 0;

    /// The next number of the calling thread's generator, 0 to 32767. Never seeded: a new thread starts where every
    /// thread starts.
    [[nodiscard]] virtual int random() = 0;

    virtual void log(const char* category, const std::string& text) = 0;
    /// One row of a job in the day's log file alone.
    virtual void logJob(const std::string& text) = 0;
    /// Replaces the drive's "Status" cell in the main window.
    virtual void setDriveStatus(const DriveRecord& drive, const std::string& text) = 0;
    /// Moves the main window's wide progress bar, 0 to 100.
    virtual void setWideProgress(int position) = 0;
};

} // namespace torvane
