#pragma once

#include "discovery/disk_place.h"

namespace torvane {

/// Asks Windows itself.
class WindowsVolumeSystem : public VolumeSystem {
  public:
    std::wstring finalPath(const std::wstring& path) override;
    std::wstring substitutedFolder(wchar_t letter) override;
    std::wstring mountPointOf(const std::wstring& path) override;
    std::wstring volumeAt(const std::wstring& mountPoint) override;
    std::optional<std::wstring> sharedFolder(const std::wstring& server, const std::wstring& share) override;
    std::optional<FileIdentity> identityOf(const std::wstring& path) override;
    bool holdsFile(const std::wstring& root, const FileIdentity& file) override;
    std::vector<LetterlessVolume> letterlessVolumes() override;
    DiskPlace placeOfDevice(const std::wstring& device) override;
};

} // namespace torvane
