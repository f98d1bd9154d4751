#pragma once

#include "discovery/disk_place.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace torvane::testing {

/// A machine's volumes as a test describes them. Without a word, a path leads where it says, a volume is mounted at its
/// letter alone, and a device does not exist.
class ScriptedVolumes : public VolumeSystem {
  public:
    std::map<std::wstring, std::wstring> finalPaths;
    std::map<wchar_t, std::wstring> substitutes;
    std::map<std::wstring, std::wstring> mountedFolders; ///< a folder with a backslash at its end, and its volume
    std::map<std::pair<std::wstring, std::wstring>, std::wstring> shares; ///< of this computer, by server and share
    std::vector<LetterlessVolume> letterless;
    std::map<std::wstring, FileIdentity> files;          ///< by path
    std::map<std::wstring, FileIdentity> filesOfVolumes; ///< one for each root
    std::map<std::wstring, DiskPlace> devices;

    void putLetter(wchar_t letter, std::vector<std::uint32_t> disks) {
        devices[volumeDevice(letter)] = {.kind = DiskPlace::Kind::kOnDisks, .disks = std::move(disks)};
    }
    void refuseLetter(wchar_t letter) { devices[volumeDevice(letter)] = {}; }

    std::wstring finalPath(const std::wstring& path) override {
        const auto found = finalPaths.find(path);
        return found == finalPaths.end() ? std::wstring() : found->second;
    }
    std::wstring substitutedFolder(wchar_t letter) override {
        const auto found = substitutes.find(letter);
        return found == substitutes.end() ? std::wstring() : found->second;
    }
    std::wstring mountPointOf(const std::wstring& path) override {
        for (const auto& [folder, volume] : mountedFolders) {
            if (path.starts_with(folder)) {
                return folder;
            }
        }
        return path.substr(0, 2) + L"\\";
    }
    std::wstring volumeAt(const std::wstring& mountPoint) override { return mountedFolders.at(mountPoint); }
    std::optional<std::wstring> sharedFolder(const std::wstring& server, const std::wstring& share) override {
        const auto found = shares.find({server, share});
        return found == shares.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<FileIdentity> identityOf(const std::wstring& path) override {
        const auto found = files.find(path);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    }
    bool holdsFile(const std::wstring& root, const FileIdentity& file) override {
        const auto found = filesOfVolumes.find(root);
        return found != filesOfVolumes.end() && found->second == file;
    }
    std::vector<LetterlessVolume> letterlessVolumes() override { return letterless; }
    DiskPlace placeOfDevice(const std::wstring& device) override {
        const auto found = devices.find(device);
        return found == devices.end() ? DiskPlace{.kind = DiskPlace::Kind::kOnNoDisk, .disks = {}} : found->second;
    }
};

} // namespace torvane::testing
