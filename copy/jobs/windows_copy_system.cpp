#include "copy/jobs/windows_copy_system.h"

#include "admin/disk_part.h"
#include "base/stdio_file.h"
#include "copy/engine/md5_hasher.h"
#include "copy/engine/windows_image_file.h"
#include "discovery/disk_identity.h"
#include "discovery/drive_volumes.h"
#include "discovery/volume_map.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "ui/prompts.h"

#include <windows.h>

#include <cstdio>
#include <memory>

namespace torvane {

bool WindowsCopySystem::isStillTheSource(const DriveRecord& drive) {
    return isStillTheProbedSource(drive);
}

bool WindowsCopySystem::isStillTheDestination(const DriveRecord& drive) {
    return isStillTheProbedDisk(drive);
}

void WindowsCopySystem::rememberPartitionTable(DriveRecord& drive) {
    torvane::rememberPartitionTable(drive);
}

bool WindowsCopySystem::cleanDisk(DriveRecord& drive) {
    return DP_CleanDisk(drive) == 1;
}

std::vector<char> WindowsCopySystem::lettersOn(const DriveRecord& drive) {
    // A table of its own: the scan's belongs to the window's thread meanwhile.
    const auto scan = std::make_unique<ScanState>();
    refreshVolumes(*scan);
    return volumeLettersOn(drive, scan->volumes);
}

void WindowsCopySystem::setDriveStatus(const DriveRecord& drive, const std::string& text) {
    if (state_.view != nullptr) {
        state_.view->setDriveStatus(drive, text);
    }
}

ImageFileName WindowsCopySystem::nextImageName(std::string_view folder, const DriveRecord& source) {
    return MakeImageFileName(folder, source);
}

std::unique_ptr<ImageFile> WindowsCopySystem::openImage(const std::string& path, ImageUse use) {
    return openWindowsImage(path, use);
}

bool WindowsCopySystem::writeTextFile(const std::string& path, std::string_view text) {
    return writeWholeFile(path.c_str(), text);
}

std::unique_ptr<BlockHasher> WindowsCopySystem::makeHasher(HasherFailure& failure) {
    return makeMd5Hasher(failure);
}

std::int64_t WindowsCopySystem::tick() {
    return static_cast<std::int64_t>(GetTickCount64());
}

LocalMoment WindowsCopySystem::now() {
    return localNow();
}

void WindowsCopySystem::logError(const std::string& text) {
    LogEvent("ERROR", "%s", text.c_str());
}

void WindowsCopySystem::print(const std::string& line) {
    std::fputs(line.c_str(), stdout);
}

void WindowsCopySystem::stop(const char* caption, const char* text) {
    prompts::stop(caption, text);
}

void WindowsCopySystem::inform(const char* caption, const char* text) {
    prompts::inform(caption, text);
}

bool WindowsCopySystem::ask(const char* caption, const char* text) {
    return prompts::ask(caption, text);
}

bool WindowsCopySystem::askDefaultNo(const char* caption, const char* text) {
    return prompts::askDefaultNo(caption, text);
}

} // namespace torvane
