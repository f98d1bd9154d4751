#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// On which disks a volume lies, and with it every file in it.
struct DiskPlace {
    enum class Kind : std::uint8_t {
        kOnDisks,  ///< on those in `disks`
        kOnNoDisk, ///< on none of this computer: another computer's share, a RAM disk, a volume that does not exist
        kNotTold,  ///< it is there, and the system does not tell
    };

    Kind kind = Kind::kNotTold;
    std::vector<std::uint32_t> disks; ///< N of "\\.\PhysicalDriveN"

    [[nodiscard]] bool isOn(std::int32_t diskNumber) const;

    bool operator==(const DiskPlace&) const = default;
};

/// A volume that no letter leads to.
struct LetterlessVolume {
    std::wstring name;   ///< "\\?\Volume{...}\"
    std::wstring folder; ///< where it is mounted, with a backslash at its end; empty when it is mounted nowhere
};

/// By what the system knows a file, by whatever road it was opened (BY_HANDLE_FILE_INFORMATION).
struct FileIdentity {
    std::uint32_t volumeSerialNumber = 0;
    std::uint64_t fileIndex = 0;
    std::uint64_t size = 0;      ///< bytes
    std::uint64_t lastWrite = 0; ///< FILETIME

    bool operator==(const FileIdentity&) const = default;
};

/// What the system tells of paths and volumes. A seam: tests answer in its stead. Empty texts stand for "none".
class VolumeSystem {
  public:
    virtual ~VolumeSystem() = default;

    /// What a path leads to, links, junctions and substituted letters followed (GetFinalPathNameByHandle): by a letter
    /// or a share ("\\?\C:\...", "\\?\UNC\server\share\..."), or, for a volume without either, by the volume's own
    /// name ("\\?\Volume{...}\..."). Empty when it cannot be opened.
    virtual std::wstring finalPath(const std::wstring& path) = 0;

    /// The folder that a letter made by SUBST stands for (QueryDosDevice).
    virtual std::wstring substitutedFolder(wchar_t letter) = 0;

    /// The folder at which the path's volume is mounted, with a backslash at its end (GetVolumePathName).
    virtual std::wstring mountPointOf(const std::wstring& path) = 0;

    /// "\\?\Volume{...}\" of what is mounted there (GetVolumeNameForVolumeMountPoint).
    virtual std::wstring volumeAt(const std::wstring& mountPoint) = 0;

    /// The folder behind a share of this computer, empty when it does not tell (NetShareGetInfo). None when the server
    /// is another computer.
    virtual std::optional<std::wstring> sharedFolder(const std::wstring& server, const std::wstring& share) = 0;

    /// None when the file cannot be opened.
    virtual std::optional<FileIdentity> identityOf(const std::wstring& path) = 0;

    /// Whether that very file is on the volume with that root (OpenFileById).
    virtual bool holdsFile(const std::wstring& root, const FileIdentity& file) = 0;

    /// Every volume without a letter (FindFirstVolume, GetVolumePathNamesForVolumeName).
    virtual std::vector<LetterlessVolume> letterlessVolumes() = 0;

    /// Where the volume behind the device lies, "\\.\C:" or "\\?\Volume{...}".
    virtual DiskPlace placeOfDevice(const std::wstring& device) = 0;
};

/// Where the file or folder lies that the path leads to, by whatever road: substituted letters, mounted folders,
/// junctions, shares of this computer.
[[nodiscard]] DiskPlace diskPlaceOf(const std::wstring& path, VolumeSystem& system);

/// True for "\\server\share\..." and what leads there.
[[nodiscard]] bool leadsToShare(const std::wstring& path, VolumeSystem& system);

/// The letter with which a path begins, "C:...", in upper case; 0 for a path without one, as on a share.
[[nodiscard]] char driveLetterOf(std::wstring_view path);

/// "\\.\C:" for 'C'.
[[nodiscard]] std::wstring volumeDevice(wchar_t letter);

/// "\\?\Volume{...}" of "\\?\Volume{...}\...": without the backslash it is the volume's device, with it a folder.
[[nodiscard]] std::wstring volumeDeviceOf(const std::wstring& name);

} // namespace torvane
