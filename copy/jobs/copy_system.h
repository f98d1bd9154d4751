#pragma once

#include "admin/changed_drive.h"
#include "base/local_moment.h"
#include "copy/engine/block_hasher.h"
#include "copy/engine/image_file.h"
#include "copy/jobs/image_number.h"
#include "records/drive_record.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// How the system knows the machine and who is logged on. Empty: it does not tell.
struct MachineNames {
    std::string machine;
    std::string user;
};

enum class TextUse : std::uint8_t {
    kNew,      ///< a new file, never in an old one's place
    kReplaced, ///< in the old one's place
};

/// The world around the copy jobs but for the transfers (`DriveIo`) and the dialog (`JobDisplay`). Jobs are written
/// against it, so that they run in a test as they run in the program.
class CopySystem {
  public:
    virtual ~CopySystem() = default;

    // Whether a drive's handle still reaches the disk that was loaded.

    [[nodiscard]] virtual bool isStillTheSource(const DriveRecord& drive) = 0;
    [[nodiscard]] virtual bool isStillTheDestination(const DriveRecord& drive) = 0;
    /// From now on the drive is known by the partition table that it holds: after each change that is a job's own.
    virtual void rememberPartitionTable(DriveRecord& drive) = 0;

    /// Makes the system read the drive's partition table from its medium, and mount or forget volumes accordingly. None
    /// when it did, or when nobody knows such a request; else why it failed, in the system's words.
    [[nodiscard]] virtual std::optional<std::string> readTableAnew(const DriveRecord& drive) = 0;

    /// Wipes the drive's partition table. Not made only after a log row.
    [[nodiscard]] virtual DiskChange cleanDisk(DriveRecord& drive) = 0;
    /// The roots of the volumes that lie on the drive now: "K:\", "C:\mnt\", "\\?\Volume{...}\".
    [[nodiscard]] virtual std::vector<std::string> volumesOn(const DriveRecord& drive) = 0;
    /// Whether the system lets nobody write to the drive. None when it does not tell.
    [[nodiscard]] virtual std::optional<bool> isReadOnly(const DriveRecord& drive) = 0;
    /// Replaces the drive's "Status" cell in the main window.
    virtual void setDriveStatus(const DriveRecord& drive, const std::string& text) = 0;

    // Files.

    /// Moves the image counter on.
    [[nodiscard]] virtual ImageFileName nextImageName(std::string_view folder, const DriveRecord& source) = 0;
    /// False for a folder of that name.
    [[nodiscard]] virtual bool fileExists(const std::string& path) = 0;
    /// Null when it cannot be opened, and for a new one when something of that name exists.
    [[nodiscard]] virtual std::unique_ptr<ImageFile> openImage(const std::string& path, ImageUse use) = 0;
    /// False when the file cannot be created.
    [[nodiscard]] virtual bool writeTextFile(const std::string& path, std::string_view text) = 0;
    /// Writes the file whole or not at all, in UTF-8. False when it is not there, and what was there before still is.
    [[nodiscard]] virtual bool saveText(const std::string& path, std::string_view text, TextUse use) = 0;

    /// Null, with the reason in `failure`, when the system has none.
    [[nodiscard]] virtual std::unique_ptr<BlockHasher> makeHasher(DigestKind kind, HasherFailure& failure) = 0;

    // Time.

    [[nodiscard]] virtual std::int64_t tick() = 0; ///< milliseconds
    [[nodiscard]] virtual LocalMoment now() = 0;

    [[nodiscard]] virtual MachineNames machineNames() = 0;

    // What the user is told beside the dialog.

    virtual void logError(const std::string& text) = 0; ///< one "ERROR" row of the event log
    virtual void logJob(const std::string& text) = 0;   ///< one "JOB" row of the log file alone
    virtual void print(const std::string& line) = 0;    ///< to the standard output
    virtual void stop(const char* caption, const char* text) = 0;
    virtual void inform(const char* caption, const char* text) = 0;
    [[nodiscard]] virtual bool ask(const char* caption, const char* text) = 0;
    [[nodiscard]] virtual bool askDefaultNo(const char* caption, const char* text) = 0;
};

} // namespace torvane
