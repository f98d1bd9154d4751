#include "base/file_name_part.h"

#include <algorithm>

namespace torvane {

namespace {

bool isForbidden(char character) {
    // The separators of folders, of a stream's name, wildcards, and what the command line sets apart.
    constexpr std::string_view kReserved = "<>:\"/\\|?*";
    constexpr unsigned char kFirstPrintable = ' ';
    return static_cast<unsigned char>(character) < kFirstPrintable ||
           kReserved.find(character) != std::string_view::npos;
}

} // namespace

std::string fileNamePart(std::string_view text, std::size_t limit) {
    std::string part(text.substr(0, limit));
    std::replace_if(part.begin(), part.end(), isForbidden, '_');
    return part;
}

std::string_view fileNameOf(std::string_view path) {
    return path.substr(path.find_last_of("\\/:") + 1); // npos + 1 is 0
}

} // namespace torvane
