#include "copy/jobs/windows_copy_system.h"

#include "admin/disk_part.h"
#include "base/machine_names.h"
#include "base/replace_file.h"
#include "base/whole_file.h"
#include "base/wide_text.h"
#include "copy/engine/md5_hasher.h"
#include "copy/engine/sha256_hasher.h"
#include "copy/engine/windows_image_file.h"
#include "discovery/disk_attributes.h"
#include "discovery/disk_identity.h"
#include "discovery/table_reading.h"
#include "discovery/volumes_on_drive.h"
#include "discovery/windows_volume_system.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "state/folder_turn.h"
#include "ui/prompts.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <span>

namespace torvane {

bool WindowsCopySystem::isStillTheSource(const DriveRecord& drive) {
    return isStillTheProbedSource(drive);
}

bool WindowsCopySystem::isStillTheDestination(const DriveRecord& drive) {
    return isStillTheProbedDisk(drive);
}

void WindowsCopySystem::rememberPartitionTable(DriveRecord& drive) {
    rememberToldPartitionTable(drive);
}

std::optional<std::string> WindowsCopySystem::readTableAnew(const DriveRecord& drive) {
    return makeSystemReadTable(drive);
}

DiskChange WindowsCopySystem::cleanDisk(DriveRecord& drive) {
    return cleanDrive(drive);
}

std::vector<std::string> WindowsCopySystem::volumesOn(const DriveRecord& drive) {
    WindowsVolumeSystem system;
    const std::vector<std::wstring> roots = volumeRootsOn(drive, VolumeTable{}, system);
    std::vector<std::string> texts(roots.size());
    std::transform(roots.begin(), roots.end(), texts.begin(), [](const std::wstring& root) { return ansiText(root); });
    return texts;
}

std::optional<bool> WindowsCopySystem::isReadOnly(const DriveRecord& drive) {
    return readReadOnlyAttribute(drive.handle);
}

void WindowsCopySystem::setDriveStatus(const DriveRecord& drive, const std::string& text) {
    if (state_.view != nullptr) {
        state_.view->setDriveStatus(drive, text);
    }
}

ImageFileName WindowsCopySystem::nextImageName(std::string_view folder, const DriveRecord& source) {
    // After a long wait without it: the number's only use is to tell images apart, and an image never replaces a file.
    const std::optional<MachineClaim> turn = awaitFolderTurn();
    return MakeImageFileName(folder, source);
}

bool WindowsCopySystem::fileExists(const std::string& path) {
    return isFile(path);
}

std::unique_ptr<ImageFile> WindowsCopySystem::openImage(const std::string& path, ImageUse use) {
    return openWindowsImage(path, use);
}

bool WindowsCopySystem::writeTextFile(const std::string& path, std::string_view text) {
    return writeWholeFile(path, text);
}

bool WindowsCopySystem::saveText(const std::string& path, std::string_view text, TextUse use) {
    const std::string utf8 = utf8Text(wideText(text));
    const auto bytes = std::as_bytes(std::span(utf8));
    return (use == TextUse::kNew ? makeWholeFile(path.c_str(), bytes) : replaceFile(path.c_str(), bytes)) ==
           FileSaving::kDone;
}

std::unique_ptr<BlockHasher> WindowsCopySystem::makeHasher(DigestKind kind, HasherFailure& failure) {
    return kind == DigestKind::kMd5 ? makeMd5Hasher(failure) : makeSha256Hasher(failure);
}

std::int64_t WindowsCopySystem::tick() {
    return static_cast<std::int64_t>(GetTickCount64());
}

LocalMoment WindowsCopySystem::now() {
    return localNow();
}

MachineNames WindowsCopySystem::machineNames() {
    return {.machine = ansiText(machineName()), .user = ansiText(userName())};
}

void WindowsCopySystem::logError(const std::string& text) {
    LogEvent("ERROR", "%s", text.c_str());
}

void WindowsCopySystem::logJob(const std::string& text) {
    LogToFile(kJobCategory, "%s", text.c_str());
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
