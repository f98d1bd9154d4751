#include "health/own_verdict.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

namespace torvane {

namespace {

/// The report's first line that holds the words, whole; empty when there is none.
std::string_view lineWith(std::string_view report, std::string_view words) {
    const std::size_t place = report.find(words);
    if (place == std::string_view::npos) {
        return {};
    }
    const std::size_t before = report.find_last_of('\n', place);
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    return report.substr(begin, report.find_first_of("\r\n", place) - begin);
}

/// The word at a place of the line, counting from 0; empty behind the last.
std::string_view wordOf(std::string_view line, int place) {
    for (;; --place) {
        line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
        const std::string_view word = line.substr(0, line.find(' '));
        if (place == 0 || word.empty()) {
            return word;
        }
        line.remove_prefix(word.size());
    }
}

} // namespace

bool saysThatItFails(std::string_view report) {
    constexpr std::array<std::string_view, 2> kVerdicts{"SMART overall-health self-assessment test result:",
                                                        "SMART Health Status:"};
    for (const std::string_view verdict : kVerdicts) {
        if (lineWith(report, verdict).find("FAIL") != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

bool hasNoSmart(std::string_view report) {
    return !lineWith(report, "SMART support is:").empty() &&
           report.find("Unavailable - device lacks SMART capability") != std::string_view::npos;
}

std::optional<std::uint32_t> lifeUsed(std::string_view report) {
    constexpr int kValueWord = 3; // behind page, offset and size
    const std::string_view word = wordOf(lineWith(report, "Percentage Used Endurance Indicator"), kValueWord);
    std::uint32_t percent = 0;
    const auto [end, failure] = std::from_chars(word.data(), word.data() + word.size(), percent);
    constexpr std::uint32_t kMost = 255; // of the byte
    return failure == std::errc() && percent <= kMost ? std::optional(percent) : std::nullopt;
}

} // namespace torvane
