#include "settings/portable_drive.h"

#include "base/program_folder.h"
#include "base/whole_file.h"
#include "base/worker_thread.h"
#include "settings/portable_files.h"
#include "state/event_log.h"
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

std::optional<LoadedFile> load(const std::string& path) {
    const UniqueFile file{CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    if (!file) {
        LogEvent("ERROR", "Could not find [%s] file. Disk Creation Terminated.", path.c_str());
        return std::nullopt;
    }
    const auto size = static_cast<std::int64_t>(sizeOfFile(file.get()).value_or(0));
    const auto lowSize = static_cast<DWORD>(size & MAXDWORD);
    // One more byte, because asking for none would look like a failure for an empty file.
    LoadedText bytes = allocateZeroed(std::uint64_t{lowSize} + 1);
    if (!bytes) {
        LogEvent("ERROR", "Could not allocate %" PRId64 " bytes to copy  [%s]. Disk Creation Terminated.", size,
                 path.c_str());
        return std::nullopt;
    }
    if (!readWholeFile(file.get(), static_cast<std::uint64_t>(size), bytes.get())) {
        LogEvent("ERROR", "Could not read [%s] for [%" PRId64 "] bytes", path.c_str(), size);
        return std::nullopt;
    }
    return LoadedFile{std::move(bytes), lowSize};
}

bool save(const LoadedFile& content, const std::string& path) {
    const UniqueFile file{CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)};
    if (!file) {
        LogEvent("ERROR", "Could not create [%s] file. Disk Creation Terminated.", path.c_str());
        return false;
    }
    DWORD written = 0;
    if (WriteFile(file.get(), content.bytes.get(), content.size, &written, nullptr) == FALSE ||
        written != content.size) {
        LogEvent("ERROR", "Could not Write [%s] for [%" PRId64 "] bytes", path.c_str(), std::int64_t{content.size});
        return false;
    }
    return true;
}

bool copyFile(const std::string& source, const std::string& destination) {
    const std::optional<LoadedFile> content = load(source);
    if (!content || !save(*content, destination)) {
        return false;
    }
    LogEvent("SUCCESS", "File [%s] copied", destination.c_str());
    return true;
}

} // namespace

bool startPortableCopy(std::string destinationFolder) {
    if (!startThread([folder = std::move(destinationFolder)] { return CopyPortableFiles(folder); })) {
        LogEvent("ERROR", "Could not start the copy of the portable drive's files");
        return false;
    }
    return true;
}

DWORD CopyPortableFiles(const std::string& destinationFolder) {
    const std::string sourceFolder = folderOfProgram();
    for (const char* const name : kPortableFileList) {
        if (!copyFile(sourceFolder + "\\" + name, destinationFolder + "\\" + name)) {
            return 0;
        }
    }
    prompts::inform("DISK CREATED", "Technicians Disk Created");
    return 1;
}

} // namespace torvane
