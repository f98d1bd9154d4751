#include "workbench/description/error_names.h"
#include "workbench/hooks/hook_functions.h"
#include "workbench/hooks/hooks.h"
#include "workbench/hooks/path_hooks.h"
#include "workbench/session/win32_text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <string_view>

namespace torvane::bench {
namespace {

constexpr DWORD kClusterBytes = 4096;
constexpr DWORD kSectorBytes = 512;
constexpr DWORD kLongestName = 255; // of a file in a volume

// A root path that names a letter of the bench. `mounted` is null when the volume is gone.
struct FoundVolume {
    std::shared_ptr<BenchSession> session;
    const VolumeDescription* described = nullptr;
    const VolumeDescription* mounted = nullptr;
};

FoundVolume findVolume(LPCWSTR root) {
    FoundVolume found;
    found.session = currentSession();
    if (found.session && root != nullptr) {
        const char letter = rootLetter(root);
        found.described = found.session->description().volume(letter);
        found.mounted = found.session->mountedVolume(letter);
    }
    return found;
}

FoundVolume findVolume(LPCSTR root) {
    return root == nullptr ? FoundVolume() : findVolume(wideFromAnsi(root).c_str());
}

void logVolume(const FoundVolume& found, std::string_view request, DWORD error) {
    LogLine line(std::string("volume:") + found.described->letter, request);
    found.session->folder().log(line.result(error));
}

BOOL fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

// Copies a text with its terminator; false when it does not fit. A null buffer is nobody's wish.
template <typename Character>
bool give(Character* buffer, DWORD capacity, const std::basic_string<Character>& text) {
    if (buffer == nullptr) {
        return true;
    }
    if (text.size() + 1 > capacity) {
        return false;
    }
    std::copy_n(text.c_str(), text.size() + 1, buffer);
    return true;
}

struct InformationOut {
    LPDWORD serial;
    LPDWORD longestName;
    LPDWORD flags;
};

template <typename Character>
BOOL giveInformation(const FoundVolume& found, Character* name, DWORD nameCapacity, Character* system,
                     DWORD systemCapacity, const InformationOut& out,
                     std::basic_string<Character> (*convert)(const std::string&)) {
    DWORD error = found.mounted == nullptr ? kErrorPathNotFound : 0;
    if (error == 0 && (!give(name, nameCapacity, convert(found.mounted->label)) ||
                       !give(system, systemCapacity, convert(found.mounted->fileSystem)))) {
        error = ERROR_BAD_LENGTH;
    }
    logVolume(found, "volume-information", error);
    if (error != 0) {
        return fail(error);
    }
    if (out.serial != nullptr) {
        *out.serial = found.mounted->serial;
    }
    if (out.longestName != nullptr) {
        *out.longestName = kLongestName;
    }
    if (out.flags != nullptr) {
        *out.flags = FILE_CASE_PRESERVED_NAMES | FILE_UNICODE_ON_DISK;
    }
    return TRUE;
}

// A share of the bench that holds the path, the session with it; the long form of paths counts, too.
struct FoundShare {
    std::shared_ptr<BenchSession> session;
    const ShareDescription* share = nullptr;
    std::wstring name; ///< with a backslash at its end
};

FoundShare findShare(LPCWSTR path) {
    FoundShare found;
    found.session = currentSession();
    if (!found.session || path == nullptr || *path == L'\0') {
        return found;
    }
    const std::wstring whole = absolutePath(path) + L"\\";
    for (const ShareDescription& share : found.session->description().shares) {
        const std::wstring name = wideFromBytes(share.name) + L"\\";
        if (whole.starts_with(name)) {
            found.share = &share;
            found.name = name;
        }
    }
    return found;
}

BOOL giveShareInformation(const FoundShare& found, LPCWSTR root, LPWSTR system, DWORD systemCapacity) {
    if (found.name != root) {
        return fail(ERROR_DIR_NOT_ROOT);
    }
    return give(system, systemCapacity, wideFromBytes(found.share->fileSystem)) ? TRUE : fail(ERROR_BAD_LENGTH);
}

BOOL giveShareSpace(const FoundShare& found, LPCWSTR path, PULARGE_INTEGER available) {
    // "If this parameter is a UNC name, it must include a trailing backslash".
    if (!std::wstring_view(path).ends_with(L'\\')) {
        return fail(ERROR_INVALID_NAME);
    }
    available->QuadPart = found.share->freeSpace;
    return TRUE;
}

BOOL WINAPI getVolumePathNameW(LPCWSTR path, LPWSTR root, DWORD capacity) {
    if (const FoundShare found = findShare(path); found.share != nullptr) {
        return give(root, capacity, found.name) ? TRUE : fail(ERROR_FILENAME_EXCED_RANGE);
    }
    const std::wstring letter = path == nullptr ? std::wstring() : absolutePath(path).substr(0, 2);
    if (findVolume(letter.c_str()).described != nullptr) {
        return give(root, capacity, letter + L"\\") ? TRUE : fail(ERROR_FILENAME_EXCED_RANGE);
    }
    return GetVolumePathNameW(path, root, capacity);
}

BOOL WINAPI getVolumeInformationW(LPCWSTR root, LPWSTR name, DWORD nameCapacity, LPDWORD serial, LPDWORD longest,
                                  LPDWORD flags, LPWSTR system, DWORD systemCapacity) {
    const FoundVolume found = findVolume(root);
    if (const FoundShare share = findShare(root); share.share != nullptr) {
        return giveShareInformation(share, root, system, systemCapacity);
    }
    if (found.described == nullptr) {
        return GetVolumeInformationW(root, name, nameCapacity, serial, longest, flags, system, systemCapacity);
    }
    return giveInformation<wchar_t>(found, name, nameCapacity, system, systemCapacity, {serial, longest, flags},
                                    [](const std::string& text) { return wideFromBytes(text); });
}

BOOL WINAPI getVolumeInformationA(LPCSTR root, LPSTR name, DWORD nameCapacity, LPDWORD serial, LPDWORD longest,
                                  LPDWORD flags, LPSTR system, DWORD systemCapacity) {
    const FoundVolume found = findVolume(root);
    if (found.described == nullptr) {
        return GetVolumeInformationA(root, name, nameCapacity, serial, longest, flags, system, systemCapacity);
    }
    return giveInformation<char>(found, name, nameCapacity, system, systemCapacity, {serial, longest, flags},
                                 [](const std::string& text) { return ansiFromWide(wideFromBytes(text)); });
}

// The bench answers only where the description says how much is free: files are written to real drives.
bool answersFreeSpace(const FoundVolume& found) {
    return found.described != nullptr && found.described->freeSpace.has_value();
}

std::uint64_t totalSpace(const VolumeDescription& volume) {
    return std::max(volume.totalSpace.value_or(volume.length()), *volume.freeSpace);
}

DWORD clusters(std::uint64_t bytes) {
    return static_cast<DWORD>(std::min<std::uint64_t>(bytes / kClusterBytes, std::numeric_limits<DWORD>::max()));
}

BOOL giveClusters(const FoundVolume& found, LPDWORD perCluster, LPDWORD perSector, LPDWORD free, LPDWORD total) {
    const DWORD error = found.mounted == nullptr ? kErrorPathNotFound : 0;
    logVolume(found, "free-space", error);
    if (error != 0) {
        return fail(error);
    }
    const auto set = [](LPDWORD out, DWORD value) {
        if (out != nullptr) {
            *out = value;
        }
    };
    set(perCluster, kClusterBytes / kSectorBytes);
    set(perSector, kSectorBytes);
    set(free, clusters(*found.mounted->freeSpace));
    set(total, clusters(totalSpace(*found.mounted)));
    return TRUE;
}

BOOL WINAPI getDiskFreeSpaceW(LPCWSTR root, LPDWORD perCluster, LPDWORD perSector, LPDWORD free, LPDWORD total) {
    const FoundVolume found = findVolume(root);
    return answersFreeSpace(found) ? giveClusters(found, perCluster, perSector, free, total)
                                   : GetDiskFreeSpaceW(root, perCluster, perSector, free, total);
}

BOOL WINAPI getDiskFreeSpaceA(LPCSTR root, LPDWORD perCluster, LPDWORD perSector, LPDWORD free, LPDWORD total) {
    const FoundVolume found = findVolume(root);
    return answersFreeSpace(found) ? giveClusters(found, perCluster, perSector, free, total)
                                   : GetDiskFreeSpaceA(root, perCluster, perSector, free, total);
}

BOOL giveBytes(const FoundVolume& found, PULARGE_INTEGER available, PULARGE_INTEGER total, PULARGE_INTEGER free) {
    const DWORD error = found.mounted == nullptr ? kErrorPathNotFound : 0;
    logVolume(found, "free-space", error);
    if (error != 0) {
        return fail(error);
    }
    for (const PULARGE_INTEGER out : {available, free}) {
        if (out != nullptr) {
            out->QuadPart = *found.mounted->freeSpace;
        }
    }
    if (total != nullptr) {
        total->QuadPart = totalSpace(*found.mounted);
    }
    return TRUE;
}

BOOL WINAPI getDiskFreeSpaceExW(LPCWSTR root, PULARGE_INTEGER available, PULARGE_INTEGER total, PULARGE_INTEGER free) {
    const FoundVolume found = findVolume(root);
    if (const FoundShare share = findShare(root); share.share != nullptr) {
        return giveShareSpace(share, root, available);
    }
    return answersFreeSpace(found) ? giveBytes(found, available, total, free)
                                   : GetDiskFreeSpaceExW(root, available, total, free);
}

BOOL WINAPI getDiskFreeSpaceExA(LPCSTR root, PULARGE_INTEGER available, PULARGE_INTEGER total, PULARGE_INTEGER free) {
    const FoundVolume found = findVolume(root);
    return answersFreeSpace(found) ? giveBytes(found, available, total, free)
                                   : GetDiskFreeSpaceExA(root, available, total, free);
}

UINT driveType(const FoundVolume& found) {
    if (found.mounted == nullptr) {
        return DRIVE_NO_ROOT_DIR;
    }
    switch (found.mounted->kind) {
    case VolumeKind::kRemovable:
        return DRIVE_REMOVABLE;
    case VolumeKind::kOptical:
        return DRIVE_CDROM;
    case VolumeKind::kNetwork:
        return DRIVE_REMOTE;
    case VolumeKind::kFixed:
        break;
    }
    return DRIVE_FIXED;
}

UINT WINAPI getDriveTypeW(LPCWSTR root) {
    const FoundVolume found = findVolume(root);
    return found.described != nullptr ? driveType(found) : GetDriveTypeW(root);
}

UINT WINAPI getDriveTypeA(LPCSTR root) {
    const FoundVolume found = findVolume(root);
    return found.described != nullptr ? driveType(found) : GetDriveTypeA(root);
}

} // namespace

std::span<const Replacement> volumeReplacements() {
    static const std::array kReplacements = {
        Replacement{"GetVolumeInformationA", hookAddress(getVolumeInformationA)},
        Replacement{"GetVolumeInformationW", hookAddress(getVolumeInformationW)},
        Replacement{"GetDiskFreeSpaceA", hookAddress(getDiskFreeSpaceA)},
        Replacement{"GetDiskFreeSpaceW", hookAddress(getDiskFreeSpaceW)},
        Replacement{"GetDiskFreeSpaceExA", hookAddress(getDiskFreeSpaceExA)},
        Replacement{"GetDiskFreeSpaceExW", hookAddress(getDiskFreeSpaceExW)},
        Replacement{"GetVolumePathNameW", hookAddress(getVolumePathNameW)},
        Replacement{"GetDriveTypeA", hookAddress(getDriveTypeA)},
        Replacement{"GetDriveTypeW", hookAddress(getDriveTypeW)},
    };
    return kReplacements;
}

} // namespace torvane::bench
