#include "admin/protected_drives.h"

#include "admin/protected_places.h"
#include "base/long_path.h"
#include "base/program_folder.h"
#include "discovery/windows_volume_system.h"
#include "records/drive_record.h"
#include "ui/prompts.h"
#include "ui/waiting.h"

#include <windows.h>

#include <optional>

namespace torvane {

namespace {

/// What `ask` writes into a buffer of that many characters; empty when it fails.
std::wstring pathFrom(DWORD (*ask)(wchar_t* buffer)) {
    std::wstring path(kLongestPath, L'\0');
    const DWORD length = ask(path.data());
    path.resize(length < kLongestPath ? length : 0);
    return path;
}

ProtectedFolders protectedFolders() {
    return {
        .windows = pathFrom([](wchar_t* buffer) -> DWORD { return GetSystemWindowsDirectoryW(buffer, kLongestPath); }),
        .program = pathFrom([](wchar_t* buffer) { return GetModuleFileNameW(nullptr, buffer, kLongestPath); }),
        .current = wideCurrentFolder(),
    };
}

} // namespace

std::optional<bool> mayBeChanged(const DriveRecord& drive) {
    if (drive.recordKind == kRecordKindImageFile) {
        return true;
    }
    const auto answer = waiting::resultOf("the volumes", [number = drive.driveNumber] {
        WindowsVolumeSystem system;
        return protectionOf(number, protectedFolders(), system);
    });
    if (!answer) {
        return std::nullopt;
    }
    const std::optional<Refusal>& refusal = *answer;
    if (refusal) {
        prompts::stop(refusal->caption.c_str(), refusal->text.c_str());
    }
    return !refusal;
}

} // namespace torvane
