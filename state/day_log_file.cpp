#include "state/day_log_file.h"

#include "base/format.h"
#include "base/owned_handle.h"
#include "base/system_error.h"
#include "base/whole_file.h"
#include "state/event_log.h"
#include "state/log_file_line.h"
#include "state/log_row.h"

#include <windows.h>

#include <utility>

namespace torvane {

namespace {

constexpr std::int64_t kFlushPauseMilliseconds = 1000;
constexpr std::uint64_t kMostJobBytes = std::uint64_t{1} << 20; // beyond the bound of other rows

/// Keeps other writers out for a scope. They all lock the same byte, one far behind any row, which lets readers
/// through. Who holds it for longer than a row takes holds up nobody: then the system's own appending has to do, as on
/// a file system that knows no locks.
class WriterLock {
  public:
    explicit WriterLock(HANDLE file) : file_(file) {
        place_.OffsetHigh = MAXLONG;
        locked_ = tryLock();
        for (int i = 0; i < kTries && !locked_ && GetLastError() == ERROR_LOCK_VIOLATION; ++i) {
            Sleep(kPauseMilliseconds);
            locked_ = tryLock();
        }
    }
    ~WriterLock() {
        if (locked_) {
            UnlockFileEx(file_, 0, 1, 0, &place_);
        }
    }
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

  private:
    // About half a second, for a disk that is slow to flush the row of another.
    static constexpr DWORD kPauseMilliseconds = 5;
    static constexpr int kTries = 100;

    bool tryLock() {
        return LockFileEx(file_, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place_) != FALSE;
    }

    HANDLE file_;
    OVERLAPPED place_{};
    bool locked_ = false;
};

// To append and nothing else: what is there already can never be written over. A lock asks for reading besides.
UniqueFile openToAppend(const std::string& path) {
    return UniqueFile{CreateFileA(path.c_str(), FILE_APPEND_DATA | FILE_READ_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr)};
}

/// NO_ERROR, or why not all of the text is in the file.
DWORD writeText(HANDLE file, const std::string& text) {
    DWORD written = 0;
    if (WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) == FALSE) {
        return GetLastError();
    }
    return written == text.size() ? NO_ERROR : ERROR_DISK_FULL;
}

std::string lastLine(const LocalMoment& when) {
    return logFileLine(
        makeLogRow("STATUS", when, "This file is full: only JOB rows are kept on this day, 1 MiB of them at most"));
}

} // namespace

DayLogFile::DayLogFile(std::string folder, std::uint64_t mostBytes)
    : folder_(std::move(folder)), mostBytes_(mostBytes) {}

std::optional<std::string> DayLogFile::append(const LocalMoment& when, const LogRow& row) {
    const std::string path = folder_ + '\\' + logFileName(when);
    const UniqueFile file = openToAppend(path);
    const DWORD error = file ? appendLine(file.get(), when, row) : GetLastError();
    if (error == NO_ERROR || failureTold_.exchange(true)) {
        return std::nullopt;
    }
    return formatText("Could not WRITE event log file [%s]: %s Rows that it lacks stand in this list alone.",
                      path.c_str(), systemErrorText(error).c_str());
}

// NO_ERROR also when the day's file is full, which its last row has told.
DWORD DayLogFile::appendLine(HANDLE file, const LocalMoment& when, const LogRow& row) {
    const WriterLock lock(file);
    const std::uint64_t size = sizeOfFile(file).value_or(0);
    if (size >= (row.category == kJobCategory ? mostBytes_ + kMostJobBytes : mostBytes_)) {
        return NO_ERROR;
    }
    std::string line = logFileLine(row);
    if (size < mostBytes_ && size + line.size() >= mostBytes_) {
        line += lastLine(when);
    }
    if (const DWORD error = writeText(file, line); error != NO_ERROR) {
        return error;
    }
    return flushIfDue(file, row);
}

DWORD DayLogFile::flushIfDue(HANDLE file, const LogRow& row) {
    const auto now = static_cast<std::int64_t>(GetTickCount64());
    if (row.category != kJobCategory && now - lastFlush_ < kFlushPauseMilliseconds) {
        return NO_ERROR;
    }
    const DWORD error = FlushFileBuffers(file) != FALSE ? NO_ERROR : GetLastError();
    lastFlush_ = static_cast<std::int64_t>(GetTickCount64()); // however long it took
    return error;
}

} // namespace torvane
