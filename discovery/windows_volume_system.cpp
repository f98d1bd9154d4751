#include "discovery/windows_volume_system.h"

#include "base/ascii.h"
#include "base/long_path.h"
#include "base/owned_handle.h"
#include "base/system_path.h"
#include "discovery/local_share.h"
#include "discovery/volume_query.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace torvane {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kRootLength = 3; // "C:\"

std::wstring finalPathName(HANDLE file, DWORD volumeName) {
    std::wstring name(kLongestPath, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, name.data(), kLongestPath, FILE_NAME_OPENED | volumeName);
    name.resize(length < kLongestPath ? length : 0);
    return name;
}

/// For its names and numbers alone: no right to read is asked for, and a folder opens likewise.
UniqueFile openForQuery(const std::wstring& path) {
    return UniqueFile(CreateFileW(systemPath(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::uint64_t joined(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32U | low;
}

std::optional<FileIdentity> identityOfOpen(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION told{};
    if (GetFileInformationByHandle(file, &told) == 0) {
        return std::nullopt;
    }
    return FileIdentity{
        .volumeSerialNumber = told.dwVolumeSerialNumber,
        .fileIndex = joined(told.nFileIndexHigh, told.nFileIndexLow),
        .size = joined(told.nFileSizeHigh, told.nFileSizeLow),
        .lastWrite = joined(told.ftLastWriteTime.dwHighDateTime, told.ftLastWriteTime.dwLowDateTime),
    };
}

struct VolumeSearchTraits {
    using Value = HANDLE;
    static Value empty() { return INVALID_HANDLE_VALUE; } // NOLINT(performance-no-int-to-ptr): the system's own value
    static void close(Value search) { FindVolumeClose(search); }
};
using UniqueVolumeSearch = Owned<VolumeSearchTraits>;

/// The folders at which a volume is mounted, letters among them; none when the system does not tell.
std::vector<std::wstring> mountPointsOf(const wchar_t* volume) {
    std::wstring list(kLongestPath, L'\0');
    DWORD length = 0;
    if (GetVolumePathNamesForVolumeNameW(volume, list.data(), kLongestPath, &length) == 0) {
        return {};
    }
    std::vector<std::wstring> points;
    for (const wchar_t* point = list.c_str(); *point != L'\0'; point += points.back().size() + 1) {
        points.emplace_back(point);
    }
    return points;
}

/// Nothing for a volume with a letter.
std::optional<LetterlessVolume> letterlessVolume(const wchar_t* name) {
    const std::vector<std::wstring> points = mountPointsOf(name);
    if (std::any_of(points.begin(), points.end(), [](const auto& point) { return point.size() <= kRootLength; })) {
        return std::nullopt;
    }
    return LetterlessVolume{name, points.empty() ? std::wstring() : points.front()};
}

} // namespace

std::wstring WindowsVolumeSystem::finalPath(const std::wstring& path) {
    const UniqueFile file = openForQuery(path);
    if (!file) {
        return {};
    }
    const std::wstring name = finalPathName(file.get(), VOLUME_NAME_DOS);
    return name.empty() ? finalPathName(file.get(), VOLUME_NAME_GUID) : name;
}

std::wstring WindowsVolumeSystem::substitutedFolder(wchar_t letter) {
    // A letter of SUBST stands for a path ("\??\C:\folder"), any other for a device ("\Device\HarddiskVolume2").
    constexpr std::wstring_view kPath = L"\\??\\";
    constexpr std::wstring_view kShare = L"\\??\\UNC\\";
    const std::array<wchar_t, 3> device{letter, L':', L'\0'};
    std::wstring target(kLongestPath, L'\0');
    if (QueryDosDeviceW(device.data(), target.data(), kLongestPath) == 0) {
        return {};
    }
    target.resize(target.find(L'\0'));
    if (target.starts_with(kShare)) {
        return L"\\\\" + target.substr(kShare.size());
    }
    return target.starts_with(kPath) ? target.substr(kPath.size()) : std::wstring();
}

std::wstring WindowsVolumeSystem::mountPointOf(const std::wstring& path) {
    std::wstring mountPoint(kLongestPath, L'\0');
    if (GetVolumePathNameW(systemPath(path).c_str(), mountPoint.data(), kLongestPath) == 0) {
        return {};
    }
    mountPoint.resize(mountPoint.find(L'\0'));
    return mountPoint;
}

std::wstring WindowsVolumeSystem::volumeAt(const std::wstring& mountPoint) {
    std::array<wchar_t, MAX_PATH> name{};
    if (GetVolumeNameForVolumeMountPointW(mountPoint.c_str(), name.data(), static_cast<DWORD>(name.size())) == 0) {
        return {};
    }
    return name.data();
}

std::optional<std::wstring> WindowsVolumeSystem::sharedFolder(const std::wstring& server, const std::wstring& share) {
    return localShareFolder(server, share);
}

std::optional<FileIdentity> WindowsVolumeSystem::identityOf(const std::wstring& path) {
    const UniqueFile file = openForQuery(path);
    return file ? identityOfOpen(file.get()) : std::nullopt;
}

bool WindowsVolumeSystem::holdsFile(const std::wstring& root, const FileIdentity& file) {
    const UniqueFile volume = openForQuery(root);
    if (!volume) {
        return false;
    }
    FILE_ID_DESCRIPTOR wanted{};
    wanted.dwSize = sizeof(wanted);
    wanted.Type = FileIdType;
    wanted.FileId.QuadPart = static_cast<LONGLONG>(file.fileIndex);
    const UniqueFile found(OpenFileById(volume.get(), &wanted, FILE_READ_ATTRIBUTES, kShareAll, nullptr, 0));
    return found && identityOfOpen(found.get()) == file;
}

std::vector<LetterlessVolume> WindowsVolumeSystem::letterlessVolumes() {
    std::vector<LetterlessVolume> volumes;
    std::array<wchar_t, MAX_PATH> name{};
    const UniqueVolumeSearch search(FindFirstVolumeW(name.data(), static_cast<DWORD>(name.size())));
    if (!search) {
        return volumes;
    }
    do {
        if (auto volume = letterlessVolume(name.data())) {
            volumes.push_back(std::move(*volume));
        }
    } while (FindNextVolumeW(search.get(), name.data(), static_cast<DWORD>(name.size())) != 0);
    return volumes;
}

DiskPlace WindowsVolumeSystem::placeOfDevice(const std::wstring& device) {
    // Device names are ASCII; what is not does not exist.
    return placeOf(askForExtents(asciiText(device).c_str()));
}

} // namespace torvane
