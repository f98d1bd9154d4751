#include "settings/company_info_file.h"

#include "base/format.h"
#include "base/owned_handle.h"
#include "base/replace_file.h"
#include "base/whole_file.h"
#include "state/event_log.h"
#include "ui/prompts.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace torvane {

namespace {

/// The existing file, for reading; opened for writing, too, so that one that cannot be written is told at once.
UniqueFile openCompanyFile() {
    return UniqueFile{CreateFileA(kCompanyInfoFileName, GENERIC_READ | GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                                  nullptr)};
}

int fail(const char* caption, const char* text, const char* logText) {
    prompts::stop(caption, text);
    LogEvent("ERROR", "%s", logText);
    return 0;
}

int readRecord(HANDLE file, CompanyInfo& info) {
    DWORD count = 0;
    if (ReadFile(file, &info, sizeof(info), &count, nullptr) == FALSE || count != sizeof(info)) {
        return fail("***** ERROR ON CONFIG FILE READ *****", "Could not read data from config file",
                    "Could not READ config file. Using default");
    }
    return 1;
}

int failToWrite() {
    return fail("***** ERROR ON CONFIG FILE WRITE *****", "Could not write data to config file",
                "Could not SAVE config file");
}

int createFile(const CompanyInfo& info) {
    switch (makeWholeFile(kCompanyInfoFileName, std::as_bytes(std::span(&info, 1)))) {
    case FileSaving::kDone:
        return 1;
    case FileSaving::kNotWritten:
        return failToWrite();
    case FileSaving::kNotMade:
    case FileSaving::kNotPlaced:
        break;
    }
    return fail("***** ERROR ON CONFIG FILE CREATE *****",
                formatText("Could not create [%s] config file. Using default", kCompanyInfoFileName).c_str(),
                "Could not WRITE config file");
}

/// The open file's bytes with the record over the first of them: what follows the record stays. None when the file
/// cannot be read, or is far too large for what it is.
std::optional<std::vector<std::byte>> bytesWithRecord(HANDLE file, const CompanyInfo& info) {
    constexpr std::uint64_t kLargest = 1U << 20U;
    const std::uint64_t size = sizeOfFile(file).value_or(kLargest + 1);
    if (size > kLargest) {
        return std::nullopt;
    }
    std::vector<std::byte> bytes(std::max<std::size_t>(static_cast<std::size_t>(size), sizeof(info)));
    if (!readWholeFile(file, size, reinterpret_cast<char*>(bytes.data()))) {
        return std::nullopt;
    }
    std::ranges::copy(std::as_bytes(std::span(&info, 1)), bytes.begin());
    return bytes;
}

} // namespace

int LoadCompanyInfo(CompanyInfo& info) {
    info = defaultCompanyInfo();
    const UniqueFile file = openCompanyFile();
    return file ? readRecord(file.get(), info) : createFile(info);
}

int SaveCompanyInfo(CompanyInfo& info, std::string_view name, std::string_view address, std::string_view phone) {
    UniqueFile file = openCompanyFile();
    if (!file) {
        return fail("***** ERROR ON CONFIG FILE SAVE *****",
                    formatText("Could not open [%s] config file. Config not saved", kCompanyInfoFileName).c_str(),
                    "Could not WRITE config file");
    }
    CompanyInfo changed = info;
    changed.assign(name, address, phone);
    const std::optional<std::vector<std::byte>> bytes = bytesWithRecord(file.get(), changed);
    file.reset(); // a file that is open cannot be replaced
    if (!bytes || replaceFile(kCompanyInfoFileName, *bytes) != FileSaving::kDone) {
        return failToWrite();
    }
    info = changed;
    // With the errors' stop icon, and kept: users know the box by it.
    prompts::stop("***** CONFIG FILE SAVED *****", "Config file successfully saved.");
    LogEvent("SUCCESS", "Config file SAVED");
    return 1;
}

} // namespace torvane
