#include "settings/portable_drive.h"

#include "base/format.h"
#include "base/program_folder.h"
#include "base/system_path.h"
#include "base/whole_file.h"
#include "base/worker_thread.h"
#include "settings/portable_files.h"
#include "state/event_log.h"
#include "state/main_view.h"
#include "ui/prompts.h"

#include <cinttypes>
#include <optional>
#include <utility>

namespace torvane {

namespace {

/// A whole file in memory. Read with a single call, so below 4 GiB.
struct LoadedFile {
    LoadedText bytes;
    DWORD size = 0;
};

/// One copy; it ends with the first file that fails.
class PortableCopy {
  public:
    /// True when the file was copied. A failure has its log row, and `failure()` is its text.
    bool copyFile(const std::string& source, const std::string& destination) {
        const std::optional<LoadedFile> content = load(source);
        if (!content || !save(*content, destination)) {
            return false;
        }
        LogEvent("SUCCESS", "File [%s] copied", destination.c_str());
        return true;
    }

    [[nodiscard]] const std::string& failure() const { return failure_; }

  private:
    void fail(std::string text) {
        LogEvent("ERROR", "%s", text.c_str());
        failure_ = std::move(text);
    }

    std::optional<LoadedFile> load(const std::string& path) {
        const UniqueFile file{CreateFileW(systemPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
        if (!file) {
            fail(formatText("Could not find [%s] file. Disk Creation Terminated.", path.c_str()));
            return std::nullopt;
        }
        const auto size = static_cast<std::int64_t>(sizeOfFile(file.get()).value_or(0));
        const auto lowSize = static_cast<DWORD>(size & MAXDWORD);
        // One more byte, because asking for none would look like a failure for an empty file.
        LoadedText bytes = allocateZeroed(std::uint64_t{lowSize} + 1);
        if (!bytes) {
            fail(formatText("Could not allocate %" PRId64 " bytes to copy  [%s]. Disk Creation Terminated.", size,
                            path.c_str()));
            return std::nullopt;
        }
        if (!readWholeFile(file.get(), static_cast<std::uint64_t>(size), bytes.get())) {
            fail(formatText("Could not read [%s] for [%" PRId64 "] bytes", path.c_str(), size));
            return std::nullopt;
        }
        return LoadedFile{std::move(bytes), lowSize};
    }

    bool save(const LoadedFile& content, const std::string& path) {
        UniqueFile file{CreateFileW(systemPath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                    nullptr)};
        if (!file) {
            fail(formatText("Could not create [%s] file. Disk Creation Terminated.", path.c_str()));
            return false;
        }
        DWORD written = 0;
        if (WriteFile(file.get(), content.bytes.get(), content.size, &written, nullptr) == FALSE ||
            written != content.size) {
            fail(formatText("Could not Write [%s] for [%" PRId64 "] bytes", path.c_str(), std::int64_t{content.size}));
            file.reset();
            removeUnfinished(path);
            return false;
        }
        return true;
    }

    /// Half a program or half a table would be taken for a whole one.
    void removeUnfinished(const std::string& path) {
        if (!DeleteFileW(systemPath(path).c_str())) {
            LogEvent("ERROR", "Could not remove [%s], which is not whole", path.c_str());
            failure_ += "\nThis file is not whole, and could not be removed.";
        }
    }

    std::string failure_;
};

/// The place where a scan shows its progress, while none is at work.
class Progress {
  public:
    explicit Progress(const PortableCopyView& place) : place_(place) {}
    ~Progress() {
        if (shown_ && !place_.isTaken()) {
            place_.view.hideScanProgress();
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `number` counts from 1.
    void showFile(int number, const char* name) {
        shown_ = !place_.isTaken();
        if (shown_) {
            constexpr auto kFiles = static_cast<int>(kPortableFileList.size());
            place_.view.showScanProgress(kFiles);
            place_.view.setScanProgress(number);
            place_.view.setScanStatus(formatText("Portable drive: file %d of %d, %s", number, kFiles, name));
        }
    }

  private:
    const PortableCopyView& place_;
    bool shown_ = false;
};

/// True when all were copied.
bool copyAll(PortableCopy& copy, const std::string& destinationFolder, const PortableCopyView& place) {
    const std::string sourceFolder = folderOfProgram();
    Progress progress(place);
    int number = 0;
    for (const char* const name : kPortableFileList) {
        progress.showFile(++number, name);
        if (!copy.copyFile(sourceFolder + "\\" + name, destinationFolder + "\\" + name)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool startPortableCopy(std::string destinationFolder, PortableCopyView place) {
    if (!startThread([folder = std::move(destinationFolder), place = std::move(place)] {
            return CopyPortableFiles(folder, place);
        })) {
        LogEvent("ERROR", "Could not start the copy of the portable drive's files");
        return false;
    }
    return true;
}

DWORD CopyPortableFiles(const std::string& destinationFolder, const PortableCopyView& place) {
    PortableCopy copy;
    if (!copyAll(copy, destinationFolder, place)) {
        prompts::stop("***** DISK NOT CREATED *****",
                      (copy.failure() + "\nThe files that were copied before it stay.").c_str());
        return 0;
    }
    prompts::inform("DISK CREATED", "Technicians Disk Created");
    return 1;
}

} // namespace torvane
