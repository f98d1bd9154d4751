#include "base/system_error.h"

#include "base/format.h"

#include <array>

namespace torvane {

std::string systemErrorText(DWORD error) {
    const std::string number = formatText("error %lu", error);
    std::array<char, 512> words{};
    // FORMAT_MESSAGE_MAX_WIDTH_MASK: the text's own line ends become blanks.
    constexpr DWORD kOneLine =
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    const DWORD length =
        FormatMessageA(kOneLine, nullptr, error, 0, words.data(), static_cast<DWORD>(words.size()), nullptr);
    std::string text(words.data(), length);
    text.erase(text.find_last_not_of(" \r\n") + 1);
    return text.empty() ? number : text + " (" + number + ")";
}

} // namespace torvane
