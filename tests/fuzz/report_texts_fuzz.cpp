#include "base/utf8.h"
#include "reports/png_check.h"
#include "reports/report_file_name.h"
#include "reports/windows_1252.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// What a report takes from outside: a serial number that names a file, texts that are printed, icons.

using namespace torvane;
using fuzz::require;

namespace {

void nameAFile(std::string_view serialNumber) {
    constexpr std::string_view kHarmful = "\\/:*?\"<>|$`'&;(){}[]#@,%!^~\t\r\n";
    const std::string name = reportFileName(serialNumber);
    require(name.starts_with("Report") && name.ends_with(".pdf"), "a report's name says what it is");
    require(name.size() <= 6 + 127 + 4, "a name fits a folder");
    require(std::ranges::none_of(name,
                                 [&](char character) {
                                     return static_cast<unsigned char>(character) < 0x20 ||
                                            static_cast<unsigned char>(character) >= 0x7F ||
                                            kHarmful.find(character) != std::string_view::npos;
                                 }),
            "nothing in a name means anything to a shell");
    const std::string command = openReportCommand(name);
    require(command.starts_with("powershell Start-Process \"") && command.ends_with("\""), "one operand");
    require(command.find(name) != std::string::npos, "the command opens the report");
}

void printAText(std::string_view bytes) {
    std::u16string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text +=
            static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) | static_cast<unsigned char>(bytes[i + 1]) << 8);
    }
    const std::string printed = toWindows1252(text);
    require(printed.size() <= text.size(), "a character is one byte");
    require(std::ranges::all_of(printed, [](char character) { return static_cast<unsigned char>(character) >= 0x20; }),
            "nothing that is printed is a control character");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    nameAFile(text);
    printAText(text);
    for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, std::size_t{5}, size / 2, size}) {
        const std::string_view start = cutAtCharacter(text, limit);
        require(start.size() <= limit && text.starts_with(start), "a cut text is a start of the text");
        require(start.size() + 3 >= std::min(limit, size), "a cut takes no more than a character");
    }
    const ByteView file(bytes, size);
    if (isWholePng(file)) {
        require(size >= 8 + 12 + 12 && !isWholePng(file.first(8)), "a picture has a first and a last chunk");
    }
    return 0;
}
