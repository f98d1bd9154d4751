#include "details/told_by_windows.h"

#include "base/owned_handle.h"
#include "base/wide_text.h"
#include "discovery/device_request.h"
#include "discovery/disk_attributes.h"

#include <windows.h>

#include <array>
#include <utility>

namespace torvane {

namespace {

std::wstring rootOf(char letter) {
    return {static_cast<wchar_t>(letter), L':', L'\\'};
}

void askForNames(const std::wstring& root, DriveVolume& volume) {
    std::array<wchar_t, MAX_PATH + 1> label{};
    std::array<wchar_t, MAX_PATH + 1> fileSystem{};
    if (GetVolumeInformationW(root.c_str(), label.data(), static_cast<DWORD>(label.size()), nullptr, nullptr, nullptr,
                              fileSystem.data(), static_cast<DWORD>(fileSystem.size())) != FALSE) {
        volume.label = ansiText(label.data());
        volume.fileSystem = ansiText(fileSystem.data());
    }
}

void askForSpace(const std::wstring& root, DriveVolume& volume) {
    ULARGE_INTEGER all{};
    ULARGE_INTEGER free{};
    if (GetDiskFreeSpaceExW(root.c_str(), nullptr, &all, &free) != FALSE) {
        volume.bytes = all.QuadPart;
        volume.freeBytes = free.QuadPart;
    }
}

std::optional<bool> askForReadOnly(const std::string& devicePath) {
    const UniqueHandle device(openDeviceForQuery(devicePath.c_str()));
    return device ? readReadOnlyAttribute(device.get()) : std::nullopt;
}

} // namespace

ToldByWindows askWindows(const std::string& devicePath, const std::vector<char>& letters) {
    ToldByWindows told = untold(letters);
    for (DriveVolume& volume : told.volumes) {
        const std::wstring root = rootOf(volume.letter);
        askForNames(root, volume);
        askForSpace(root, volume);
    }
    told.readOnly = askForReadOnly(devicePath);
    return told;
}

ToldByWindows untold(const std::vector<char>& letters) {
    ToldByWindows told;
    told.volumes.reserve(letters.size());
    for (const char letter : letters) {
        told.volumes.push_back({.letter = letter, .label = {}, .fileSystem = {}, .bytes = {}, .freeBytes = {}});
    }
    return told;
}

} // namespace torvane
