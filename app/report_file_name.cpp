#include "app/report_file_name.h"

#include "base/format.h"

namespace torvane {

namespace {

bool isPlain(char character) {
    constexpr std::string_view kPlainSigns = " -._+=";
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || kPlainSigns.find(character) != std::string_view::npos;
}

} // namespace

std::string reportFileName(std::string_view serialNumber) {
    std::string name(serialNumber);
    for (std::size_t i = 0; i < name.size(); ++i) {
        // The shell strips the command's quotation marks before PowerShell sees it, so " -Name" would be a parameter.
        const bool startsParameter = name[i] == '-' && i > 0 && name[i - 1] == ' ';
        if (!isPlain(name[i]) || startsParameter) {
            name[i] = '_';
        }
    }
    return formatText("Report%s.pdf", name.c_str());
}

} // namespace torvane
