#pragma once

#include "workbench/description/bench_state.h"
#include "workbench/devices/log_line.h"
#include "workbench/session/unique_handle.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>

namespace torvane::bench {

/// What the processes on one bench share: its state and its log. A named mutex keeps their changes and lines apart.
class BenchFolder {
  public:
    BenchFolder(std::filesystem::path folder, const BenchDescription& bench);
    ~BenchFolder();
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;

    /// The log could be opened.
    [[nodiscard]] bool usable() const { return static_cast<bool>(log_); }
    [[nodiscard]] const std::filesystem::path& path() const { return folder_; }

    /// The state as all processes see it now.
    [[nodiscard]] BenchState state();
    /// Changes the state; no other process sees it in between.
    void changeState(const std::function<void(BenchState&)>& change);

    /// The name of a system object that the processes on this bench share, and no others.
    [[nodiscard]] std::wstring objectName(const wchar_t* kind) const;

    /// Appends one line, with time and process in front.
    void log(const LogLine& line);

    /// Waits as long (milliseconds), unless the folder holds a file "hurry" or gets one meanwhile.
    void wait(std::uint32_t longest) const;

  private:
    [[nodiscard]] BenchState readState() const;
    void writeState(const BenchState& state) const;

    std::filesystem::path folder_;
    const BenchDescription& bench_;
    std::string program_;
    UniqueHandle mutex_;
    UniqueHandle log_;
    UniqueHandle revisionMapping_;
    std::atomic<LONG>* revision_ = nullptr; ///< shared: counts the changes that were made to the state file
    std::mutex cacheMutex_;
    BenchState cached_;
    LONG cachedRevision_ = -1;
};

} // namespace torvane::bench
