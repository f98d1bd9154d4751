#include "discovery/image_file_drive.h"

#include "base/owned_handle.h"
#include "discovery/owned_drive_record.h"

#include <cstddef>
#include <string>

namespace torvane {

namespace {

constexpr std::size_t kMaxFolderCharacters = 1023;
constexpr std::int32_t kImageBytesPerSector = 512;
constexpr double kSectorsPerGigabyte = 2097152.0;

std::string currentFolder() {
    std::string folder(GetCurrentDirectoryA(0, nullptr), '\0');
    folder.resize(GetCurrentDirectoryA(static_cast<DWORD>(folder.size()), folder.data()));
    return folder.substr(0, kMaxFolderCharacters);
}

std::int64_t fileSize(HANDLE file) {
    LARGE_INTEGER size{};
    return GetFileSizeEx(file, &size) != 0 ? size.QuadPart : 0;
}

} // namespace

DriveRecordPtr openImageFileAsDrive(std::string_view fileName) {
    const std::string name(fileName);
    UniqueFile file(CreateFileA(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        return nullptr;
    }
    DriveRecordPtr record = makeOwnedDriveRecord();
    record->imageFilePath.assign(currentFolder() + "\\" + name);
    record->serialNumber.assign("FILE: S/N");
    record->model.assign(name);
    record->bytesPerSector = kImageBytesPerSector;
    record->recordKind = kRecordKindImageFile;
    record->busCode = kBusCodeFile;
    // Kept: of an image file's counters the hours alone are told as not reported.
    record->disk.fill(0);
    record->ssd.fill(0);
    record->disk[Counter::kPowerOnHours] = kNotReported;
    record->sizeBytes = fileSize(file.get());
    record->sizeSectors = record->sizeBytes / kImageBytesPerSector;
    record->sizeGigabytes = static_cast<double>(record->sizeSectors) / kSectorsPerGigabyte;
    record->handle = file.release();
    return record;
}

} // namespace torvane
