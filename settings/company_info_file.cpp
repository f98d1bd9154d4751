#include "settings/company_info_file.h"

#include "base/format.h"
#include "base/owned_handle.h"
#include "state/event_log.h"
#include "ui/prompts.h"

#include <windows.h>

namespace torvane {

namespace {

UniqueFile openCompanyFile(DWORD disposition) {
    return UniqueFile{CreateFileA(kCompanyInfoFileName, GENERIC_READ | GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
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

int writeRecord(HANDLE file, const CompanyInfo& info) {
    DWORD count = 0;
    if (WriteFile(file, &info, sizeof(info), &count, nullptr) == FALSE || count != sizeof(info)) {
        return fail("***** ERROR ON CONFIG FILE WRITE *****", "Could not write data to config file",
                    "Could not SAVE config file");
    }
    return 1;
}

int createFile(const CompanyInfo& info) {
    const UniqueFile file = openCompanyFile(CREATE_ALWAYS);
    if (!file) {
        return fail("***** ERROR ON CONFIG FILE CREATE *****",
                    formatText("Could not create [%s] config file. Using default", kCompanyInfoFileName).c_str(),
                    "Could not WRITE config file");
    }
    return writeRecord(file.get(), info);
}

} // namespace

int LoadCompanyInfo(CompanyInfo& info) {
    info = defaultCompanyInfo();
    const UniqueFile file = openCompanyFile(OPEN_EXISTING);
    return file ? readRecord(file.get(), info) : createFile(info);
}

int SaveCompanyInfo(CompanyInfo& info, std::string_view name, std::string_view address, std::string_view phone) {
    const UniqueFile file = openCompanyFile(OPEN_EXISTING);
    if (!file) {
        return fail("***** ERROR ON CONFIG FILE SAVE *****",
                    formatText("Could not open [%s] config file. Config not saved", kCompanyInfoFileName).c_str(),
                    "Could not WRITE config file");
    }
    info.assign(name, address, phone);
    if (writeRecord(file.get(), info) == 0) {
        return 0;
    }
    // With the errors' stop icon, and kept: users know the box by it.
    prompts::stop("***** CONFIG FILE SAVED *****", "Config file successfully saved.");
    LogEvent("SUCCESS", "Config file SAVED");
    return 1;
}

} // namespace torvane
