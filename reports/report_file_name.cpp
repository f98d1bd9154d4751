#include "reports/report_file_name.h"

#include "base/format.h"

#include <algorithm>
#include <cstddef>

namespace torvane {

namespace {

constexpr std::size_t kLongestSerialNumber = 127;

bool isPlain(char character) {
    constexpr std::string_view kPlainSigns = " -._+=";
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || kPlainSigns.find(character) != std::string_view::npos;
}

} // namespace

std::string reportFileName(std::string_view serialNumber) {
    std::string name(serialNumber.substr(0, kLongestSerialNumber));
    std::replace_if(
        name.begin(), name.end(), [](char character) { return !isPlain(character); }, '_');
    return formatText("Report%s.pdf", name.c_str());
}

std::string olderReportFileName(std::string_view fileName, const LocalMoment& written, int number) {
    const std::string_view name = fileName.substr(0, fileName.rfind('.'));
    const std::string_view extension = fileName.substr(name.size());
    const std::string date = formatText(" %04d-%02d-%02d", written.year, written.month, written.day);
    const std::string count = number > 1 ? formatText(" (%d)", number) : "";
    return std::string(name) + date + count + std::string(extension);
}

std::string openReportCommand(std::string_view fileName) {
    // PowerShell is given its arguments without the quotation marks around them and puts them together again with
    // blanks. A name with a blank would come apart there, so it gets a second pair that PowerShell itself sees.
    const bool needsOwnQuotes = fileName.find(' ') != std::string_view::npos;
    const char* const mark = needsOwnQuotes ? "'" : "";
    return formatText("powershell Start-Process \"%s%s%s\"", mark, std::string(fileName).c_str(), mark);
}

} // namespace torvane
