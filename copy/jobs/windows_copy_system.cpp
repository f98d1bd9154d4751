#include "copy/jobs/windows_copy_system.h"

#include "admin/disk_part.h"
#include "base/owned_handle.h"
#include "base/positioned_io.h"
#include "base/stdio_file.h"
#include "copy/engine/md5_hasher.h"
#include "discovery/disk_identity.h"
#include "discovery/volumes_on_drive.h"
#include "discovery/windows_volume_system.h"
#include "state/app_state.h"
#include "state/event_log.h"
#include "ui/prompts.h"

#include <windows.h>

#include <cstdio>

namespace torvane {

namespace {

class WindowsImageFile : public ImageFile {
  public:
    explicit WindowsImageFile(UniqueFile file) : file_(std::move(file)) {}

    TransferOutcome read(std::span<std::byte> bytes) override { return readNext(file_.get(), bytes); }
    TransferOutcome write(std::span<const std::byte> bytes) override { return writeNext(file_.get(), bytes); }
    bool rewind() override { return SetFilePointer(file_.get(), 0, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER; }

    std::uint64_t size() override {
        LARGE_INTEGER size{};
        return GetFileSizeEx(file_.get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
    }

  private:
    UniqueFile file_;
};

std::unique_ptr<ImageFile> openFile(const std::string& path, DWORD access, DWORD share, DWORD disposition) {
    UniqueFile file(CreateFileA(path.c_str(), access, share, nullptr, disposition, 0, nullptr));
    return file ? std::make_unique<WindowsImageFile>(std::move(file)) : nullptr;
}

std::unique_ptr<ImageFile> openOwnImage(const std::string& path, DWORD disposition) {
    return openFile(path, GENERIC_READ | GENERIC_WRITE | FILE_WRITE_ATTRIBUTES | FILE_READ_ATTRIBUTES,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, disposition);
}

} // namespace

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
    constexpr std::size_t kLetterRoot = 3; // "K:\\"
    WindowsVolumeSystem system;
    const std::vector<std::wstring> roots = volumeRootsOn(drive, VolumeTable{}, system);
    std::vector<char> letters;
    letters.reserve(roots.size());
    for (const std::wstring& root : roots) {
        if (root.size() == kLetterRoot) {
            letters.push_back(static_cast<char>(root.front()));
        }
    }
    return letters;
}

void WindowsCopySystem::setDriveStatus(const DriveRecord& drive, const std::string& text) {
    if (state_.view != nullptr) {
        state_.view->setDriveStatus(drive, text);
    }
}

ImageFileName WindowsCopySystem::nextImageName(std::string_view folder, const DriveRecord& source) {
    return MakeImageFileName(folder, source);
}

bool WindowsCopySystem::fileExists(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::unique_ptr<ImageFile> WindowsCopySystem::openImage(const std::string& path, ImageUse use) {
    switch (use) {
    case ImageUse::kNew:
        return openOwnImage(path, CREATE_NEW);
    case ImageUse::kAgain:
        return openOwnImage(path, OPEN_EXISTING);
    case ImageUse::kSource:
        return openFile(path, GENERIC_READ | FILE_READ_ATTRIBUTES, FILE_SHARE_READ, OPEN_EXISTING);
    }
    return nullptr;
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

void WindowsCopySystem::logJob(const std::string& text) {
    LogToFile("JOB", "%s", text.c_str());
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
