#pragma once

#include "base/local_moment.h"
#include "copy/engine/block_hasher.h"
#include "copy/engine/image_file.h"
#include "copy/jobs/image_number.h"
#include "records/drive_record.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace torvane {

/// How the fetching of one block ended.
enum class FetchOutcome {
    kWhole,      ///< the whole block was read
    kSeekFailed, ///< nothing was read: the position could not be reached
    kReadFailed, ///< the read failed or came back short; what of the buffer changed is unknown
};

/// Why there is no hasher.
enum class HasherFailure { kNone, kNoProvider, kNoHash };

/// The world around the copy jobs: drives, files, hashing, time, boxes and the log. Jobs are written against it, so
/// that they run in a test as they run in the program.
class CopySystem {
  public:
    virtual ~CopySystem() = default;

    /// Reads `bytes.size()` bytes at `offset` and does nothing else: no count, no log row, no marker. The only function
    /// that a job's reader thread calls.
    [[nodiscard]] virtual FetchOutcome fetch(const DriveRecord& drive, std::uint64_t offset,
                                             std::span<std::byte> bytes) = 0;
    /// True when the whole span was written; counts a failed write on the record.
    [[nodiscard]] virtual bool write(DriveRecord& drive, std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    /// Wipes the partition table of the state's destination drive. A failure leaves a log row.
    virtual void cleanDestination() = 0;

    /// Moves the image counter on.
    [[nodiscard]] virtual ImageFileName nextImageName(std::string_view folder, const DriveRecord& source) = 0;
    /// For reading and writing: a new file in any old one's place, or an existing one. Null when it cannot be opened.
    [[nodiscard]] virtual std::unique_ptr<ImageFile> createImage(const std::string& path) = 0;
    [[nodiscard]] virtual std::unique_ptr<ImageFile> reopenImage(const std::string& path) = 0;
    /// For reading alone; nobody may write to it meanwhile. Null when it cannot be opened.
    [[nodiscard]] virtual std::unique_ptr<ImageFile> openImage(const std::string& path) = 0;
    /// False when the file cannot be created.
    [[nodiscard]] virtual bool writeTextFile(const std::string& path, std::string_view text) = 0;

    /// Null, with the reason in `failure`, when the system has none.
    [[nodiscard]] virtual std::unique_ptr<BlockHasher> makeHasher(HasherFailure& failure) = 0;

    [[nodiscard]] virtual std::int64_t tick() = 0; ///< milliseconds
    [[nodiscard]] virtual LocalMoment now() = 0;

    virtual void log(const char* category, const std::string& text) = 0;
    virtual void print(const std::string& line) = 0; ///< to the standard output
    virtual void stop(const char* caption, const char* text) = 0;
    virtual void inform(const char* caption, const char* text) = 0;
    [[nodiscard]] virtual bool ask(const char* caption, const char* text) = 0;

    /// Replaces the drive's "Status" cell in the main window.
    virtual void setDriveStatus(const DriveRecord& drive, const std::string& text) = 0;
};

} // namespace torvane
