#include "discovery/disk_place.h"

#include "base/ascii.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace torvane {

namespace {

// A substituted letter or a share may stand for a folder on another one; more of them than this go round in a circle.
constexpr int kMaximumHops = 8;

constexpr std::wstring_view kLongPath = L"\\\\?\\";
constexpr std::wstring_view kLongShare = L"\\\\?\\UNC\\";
constexpr std::wstring_view kVolume = L"\\\\?\\Volume{";

/// "C:\..." for "\\?\C:\...", "\\server\..." for "\\?\UNC\server\...".
std::wstring plainPath(const std::wstring& path) {
    if (path.starts_with(kLongShare)) {
        return L"\\\\" + path.substr(kLongShare.size());
    }
    return path.starts_with(kLongPath) && !path.starts_with(kVolume) ? path.substr(kLongPath.size()) : path;
}

bool isOnShare(const std::wstring& path) {
    return path.starts_with(L"\\\\") && path.size() > 2 && path[2] != L'?' && path[2] != L'.';
}

/// The text up to the next backslash from `begin` on.
std::wstring partAt(const std::wstring& path, std::size_t begin) {
    return begin >= path.size() ? std::wstring() : path.substr(begin, path.find(L'\\', begin) - begin);
}

std::wstring join(std::wstring folder, std::wstring_view rest) {
    while (!folder.empty() && folder.back() == L'\\') {
        folder.pop_back();
    }
    while (!rest.empty() && rest.front() == L'\\') {
        rest.remove_prefix(1);
    }
    return folder + L"\\" + std::wstring(rest);
}

DiskPlace placeAfter(const std::wstring& path, VolumeSystem& system, int hops);

/// True for two files that are one, as far as size and last write tell: a file that is reached through a share of FAT
/// or exFAT has no index that the volume knows.
bool lookAlike(const std::wstring& one, const std::wstring& other, VolumeSystem& system) {
    const auto first = system.identityOf(one);
    const auto second = first ? system.identityOf(other) : std::nullopt;
    return second && first->size == second->size && first->lastWrite == second->lastWrite;
}

DiskPlace placeOnShare(const std::wstring& path, VolumeSystem& system, int hops) {
    constexpr std::size_t kServerAt = 2;
    const std::wstring server = partAt(path, kServerAt);
    const std::wstring share = partAt(path, kServerAt + server.size() + 1);
    const auto folder = system.sharedFolder(server, share);
    if (!folder) {
        // The server may be this computer under an alias or its address in the network.
        const std::wstring here = L"\\\\localhost" + path.substr(kServerAt + server.size());
        if (hops < kMaximumHops && system.sharedFolder(L"localhost", share) && lookAlike(path, here, system)) {
            return placeOnShare(here, system, hops + 1);
        }
        return {.kind = DiskPlace::Kind::kOnNoDisk, .disks = {}};
    }
    if (folder->empty()) {
        return {};
    }
    const std::size_t restAt = std::min(path.size(), kServerAt + server.size() + 1 + share.size());
    return placeAfter(join(*folder, std::wstring_view(path).substr(restAt)), system, hops);
}

DiskPlace placeByLetter(const std::wstring& path, VolumeSystem& system, int hops) {
    constexpr std::size_t kRootLength = 3; // "C:\"
    const auto letter = static_cast<wchar_t>(driveLetterOf(path));
    if (const std::wstring folder = system.substitutedFolder(letter); !folder.empty()) {
        return placeAfter(join(folder, std::wstring_view(path).substr(2)), system, hops);
    }
    const std::wstring mountPoint = system.mountPointOf(path);
    if (mountPoint.size() <= kRootLength) {
        return system.placeOfDevice(volumeDevice(letter));
    }
    const std::wstring volume = system.volumeAt(mountPoint);
    return volume.empty() ? DiskPlace() : system.placeOfDevice(volumeDeviceOf(volume));
}

DiskPlace placeAfter(const std::wstring& path, VolumeSystem& system, int hops) {
    if (hops == kMaximumHops) {
        return {};
    }
    const std::wstring final = system.finalPath(path);
    const std::wstring plain = plainPath(final.empty() ? path : final);
    if (driveLetterOf(plain) != 0) {
        return placeByLetter(plain, system, hops + 1);
    }
    if (isOnShare(plain)) {
        return placeOnShare(plain, system, hops + 1);
    }
    return plain.starts_with(kVolume) ? system.placeOfDevice(volumeDeviceOf(plain)) : DiskPlace();
}

} // namespace

bool DiskPlace::isOn(std::int32_t diskNumber) const {
    return kind == Kind::kOnDisks && diskNumber >= 0 &&
           std::find(disks.begin(), disks.end(), static_cast<std::uint32_t>(diskNumber)) != disks.end();
}

DiskPlace diskPlaceOf(const std::wstring& path, VolumeSystem& system) {
    return placeAfter(path, system, 0);
}

bool leadsToShare(const std::wstring& path, VolumeSystem& system) {
    const std::wstring final = system.finalPath(path);
    return isOnShare(plainPath(final.empty() ? path : final));
}

std::wstring volumeDeviceOf(const std::wstring& name) {
    return name.substr(0, name.find(L'\\', kVolume.size()));
}

char driveLetterOf(std::wstring_view path) {
    const bool lettered = path.size() >= 2 && path[1] == L':' && isAsciiLetter(path[0]);
    return lettered ? static_cast<char>(upperAscii(path[0])) : '\0';
}

std::wstring volumeDevice(wchar_t letter) {
    return {L'\\', L'\\', L'.', L'\\', letter, L':'};
}

} // namespace torvane
