#include "reports/report_file.h"

#include "base/format.h"
#include "base/local_moment.h"
#include "base/replace_file.h"
#include "base/system_error.h"
#include "base/system_path.h"
#include "reports/report_file_name.h"
#include "state/event_log.h"
#include "ui/prompts.h"

#include <windows.h>

#include <optional>

namespace torvane {

namespace {

bool moveFile(const std::string& from, const std::string& to) {
    return MoveFileExW(systemPath(from).c_str(), systemPath(to).c_str(), MOVEFILE_WRITE_THROUGH) != FALSE;
}

std::string lastReason() {
    return systemErrorText(GetLastError());
}

/// The local moment of the file's last writing.
LocalMoment momentOf(const FILETIME& written) {
    SYSTEMTIME universal{};
    SYSTEMTIME local{};
    FileTimeToSystemTime(&written, &universal);
    SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local);
    return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

/// Whatever stands under the report's name.
struct OlderReport {
    bool exists = false;
    bool isFolder = false;
    LocalMoment written;
};

OlderReport olderReport(const char* fileName) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(systemPath(fileName).c_str(), GetFileExInfoStandard, &data) == FALSE) {
        return {};
    }
    return {true, (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0, momentOf(data.ftLastWriteTime)};
}

/// Moves the older report out of the way; its new name, or none with the reason in GetLastError. Nothing is ever
/// overwritten: a name that is taken already leads to the next one.
std::optional<std::string> setAside(const char* fileName, const LocalMoment& written) {
    constexpr int kMostOfADay = 1000;
    for (int number = 1; number <= kMostOfADay; ++number) {
        std::string aside = olderReportFileName(fileName, written, number);
        if (moveFile(fileName, aside)) {
            return aside;
        }
        if (const DWORD error = GetLastError(); error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::string placeOver(const char* fileName, const LocalMoment& written) {
    const std::optional<std::string> aside = setAside(fileName, written);
    if (!aside) {
        return "the older report of that name cannot be set aside: " + lastReason();
    }
    if (moveFile(newReportFileName(fileName), fileName)) {
        LogToFile("STATUS", "The older report [%s] is kept as [%s]", fileName, aside->c_str());
        return "";
    }
    std::string reason = lastReason();
    if (moveFile(*aside, fileName)) {
        return reason;
    }
    return formatText("%s The older report of that name is now <%s>.", reason.c_str(), aside->c_str());
}

} // namespace

std::string newReportFileName(const char* fileName) {
    return std::string(fileName) + ".new";
}

std::string placeNewReport(const char* fileName) {
    const std::string newName = newReportFileName(fileName);
    if (!flushFile(newName.c_str())) {
        return lastReason();
    }
    const OlderReport older = olderReport(fileName);
    if (older.isFolder) {
        return "a folder has that name.";
    }
    if (older.exists) {
        return placeOver(fileName, older.written);
    }
    return moveFile(newName, fileName) ? "" : lastReason();
}

void reportNotSaved(const char* fileName, const std::string& reason) {
    DeleteFileW(systemPath(newReportFileName(fileName)).c_str());
    LogEvent("ERROR", "Could not SAVE report file [%s]", fileName);
    prompts::stop("***** REPORT NOT SAVED *****",
                  formatText("Report <%s> could not be saved: %s\n\nNothing was opened, and no older report was "
                             "overwritten. Close the report where it is open, see that the disk has room, and create "
                             "it again.",
                             fileName, reason.c_str())
                      .c_str());
}

} // namespace torvane
