#include "admin/bitlocker_scan.h"

#include "admin/bitlocker_output.h"
#include "base/format.h"
#include "base/owned_handle.h"
#include "monitoring/command_runner.h"
#include "records/drive_record.h"
#include "state/event_log.h"
#include "state/folder_turn.h"
#include "state/scan_tables.h"
#include "ui/prompts.h"
#include "ui/waiting.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>
#include <span>
#include <string>

namespace torvane {

namespace {

constexpr const char* kOutputFileName = "BITLOCKER.txt";
constexpr const char* kKeyFileName = "BITLOCKER.db";

/// What PowerShell has printed, keys among it, is not to be found by whoever looks into the folder next.
void emptyOutputFile() {
    const UniqueFile file{CreateFileA(kOutputFileName, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      TRUNCATE_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    if (!file) {
        LogEvent("ERROR", "Could not empty [%s]: it may hold recovery passwords", kOutputFileName);
    }
}

bool outputFileHoldsSomething() {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    return GetFileAttributesExA(kOutputFileName, GetFileExInfoStandard, &data) != 0 &&
           (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && (data.nFileSizeHigh | data.nFileSizeLow) != 0;
}

/// Asks for the volume's key protectors. Nothing when the command or its output failed. One check at a time: one that
/// its user has left goes on alone, and must not empty the file of the next.
std::optional<BitLockerCheck> checkVolume(char letter, const BitLockerScratch& scratch) {
    static std::mutex oneAtATime;
    const std::scoped_lock lock(oneAtATime);
    const std::optional<MachineClaim> turn = awaitFolderTurn();
    if (!turn) {
        LogEvent("ERROR", "Another Torvane uses [%s]: volume %c was not asked", kOutputFileName, letter);
        return std::nullopt;
    }
    const std::string command =
        formatText("powershell -windowstyle hidden (Get-BitLockerVolume -MountPoint %c).KeyProtector", letter);
    if (PARSE_BuildDataFile(kOutputFileName, command.c_str()) == 0) {
        // One that was ended may have printed its keys before.
        if (outputFileHoldsSomething()) {
            emptyOutputFile();
        }
        return std::nullopt;
    }
    const LoadedText output = PARSE_LoadFileIntoBuffer(kOutputFileName);
    emptyOutputFile();
    if (!output) {
        return std::nullopt;
    }
    return readKeyProtectors(output.get(), letter, scratch);
}

/// The same while the window goes on answering; none when the user has not waited for it.
std::optional<std::optional<BitLockerCheck>> awaitCheck(char letter) {
    return waiting::resultOf("PowerShell", [letter] {
        std::array<char, 8192> line{};
        std::array<char, 4096> word{};
        return checkVolume(letter, {line, word});
    });
}

/// The volumes of which Windows did not tell, for the box at a scan's end.
class Untold {
  public:
    void note(const std::string& volume, const std::optional<BitLockerCheck>& check) {
        if (!check) {
            lines_ += volume + " - powershell could not be run, or what it printed could not be read\n";
        } else if (check->finding == BitLockerFinding::kNotTold) {
            lines_ += volume + " - " + check->error + "\n";
        }
    }
    void tell() const {
        if (!lines_.empty()) {
            prompts::stop("***** BITLOCKER NOT KNOWN *****",
                          ("Windows could not tell whether these volumes are encrypted:\n" + lines_).c_str());
        }
    }

  private:
    std::string lines_;
};

/// What is beyond the record's room is dropped.
void keepEntry(DriveRecord& drive, char letter, const BitLockerCheck& check) {
    const auto position = static_cast<std::size_t>(drive.bitLockerEntryCount);
    if (position < drive.bitLockerEntries.size()) {
        drive.bitLockerEntries[position] = check.entry;
        drive.bitLockerNotes[position] = {letter, check.finding != BitLockerFinding::kNotTold};
        ++drive.bitLockerEntryCount;
    }
}

std::span<const VolumeRecord> listed(const VolumeTable& volumes) {
    return std::span(volumes.records).first(static_cast<std::size_t>(volumes.count));
}

DriveRecord* driveWithNumber(const ScanState& scan, std::int32_t number) {
    const auto drives = std::span(scan.drives).first(static_cast<std::size_t>(scan.driveCount.load()));
    const auto owner =
        std::ranges::find_if(drives, [number](const DriveRecordPtr& drive) { return drive->driveNumber == number; });
    return owner == drives.end() ? nullptr : owner->get();
}

bool writeRecord(HANDLE file, const BitLockerVolumeEntry& entry) {
    DWORD written = 0;
    return WriteFile(file, &entry, sizeof entry, &written, nullptr) != FALSE && written == sizeof entry;
}

/// The file with everybody allowed to read and write it meanwhile.
UniqueFile openKeyFile(DWORD disposition) {
    return UniqueFile{CreateFileA(kKeyFileName, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr)};
}

bool moveToEnd(HANDLE file) {
    return SetFilePointer(file, 0, nullptr, FILE_END) != INVALID_SET_FILE_POINTER || GetLastError() == NO_ERROR;
}

int appendTo(HANDLE file, const BitLockerVolumeEntry& entry) {
    // Anywhere but at the end, the record would overwrite an older one.
    if (!moveToEnd(file)) {
        LogEvent("ERROR", "SetFilePointer BITLOCKER File FAILED");
        return 0;
    }
    if (!writeRecord(file, entry)) {
        LogEvent("ERROR", "Could not WRITE BITLOCKER file. PASSWORD NOT SAVED");
        return 0;
    }
    LogEvent("SUCCESS", "BITLOCKER file SUCCESSFULLY UPDATED PASSWORD SAVED for DRIVE %c", entry.driveLetter);
    return 1;
}

// Without a "SUCCESS" row: that row speaks of an update, and this file is new.
int createWith(const BitLockerVolumeEntry& entry) {
    const UniqueFile file = openKeyFile(CREATE_ALWAYS);
    if (!file) {
        LogEvent("ERROR", "Could not WRITE BITLOCKER file");
        return 0;
    }
    if (!writeRecord(file.get(), entry)) {
        LogEvent("ERROR", "Could not SAVE BITLOCKER file");
        return 0;
    }
    return 1;
}

} // namespace

void BL_ScanActiveDrive(DriveRecord* drive, const VolumeTable& volumes, BitLockerRows& rows) {
    if (drive == nullptr) {
        return;
    }
    drive->bitLockerEntries = {};
    drive->bitLockerNotes = {};
    drive->bitLockerEntryCount = 0;
    rows.clear();

    Untold untold;
    int row = 0;
    for (const VolumeRecord& volume : listed(volumes)) {
        if (volume.diskNumber != drive->driveNumber) {
            continue;
        }
        const auto letter = static_cast<char>(volume.driveLetter);
        const std::string name = formatText("%c:\\", letter);
        rows.setRow(row, name.c_str(), "", "");
        const auto awaited = awaitCheck(letter);
        if (!awaited) {
            return;
        }
        const std::optional<BitLockerCheck>& check = *awaited;
        untold.note(name, check);
        if (!check) {
            continue;
        }
        rows.setRow(row, name.c_str(), bitLockerStatusText(check->finding), bitLockerKeyText(*check));
        // One that printed nothing has no finding to show: the next volume takes its row.
        if (check->finding != BitLockerFinding::kNoOutput) {
            keepEntry(*drive, letter, *check);
            ++row;
        }
    }
    untold.tell();
}

void BL_SaveRecoveryKeys(const ScanState& scan) {
    std::array<char, 4096> line{};
    std::array<char, 1024> word{};
    for (const VolumeRecord& volume : listed(scan.volumes)) {
        DriveRecord* const drive = driveWithNumber(scan, volume.diskNumber);
        if (drive == nullptr) {
            continue;
        }
        ++drive->checkedVolumeCount;
        const auto letter = static_cast<char>(volume.driveLetter);
        const std::optional<BitLockerCheck> check = checkVolume(letter, {line, word});
        if (!check || check->finding == BitLockerFinding::kNoOutput) {
            continue;
        }
        keepEntry(*drive, letter, *check);
        if (check->finding == BitLockerFinding::kKeyRead) {
            BL_AppendRecord(check->entry);
        }
    }
}

int BL_AppendRecord(const BitLockerVolumeEntry& entry) {
    const UniqueFile file = openKeyFile(OPEN_EXISTING);
    return file ? appendTo(file.get(), entry) : createWith(entry);
}

} // namespace torvane
