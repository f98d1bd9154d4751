#include "state/log_file_line.h"

#include "base/format.h"
#include "base/one_line.h"
#include "base/utf8.h"
#include "state/main_view.h"

#include <cstddef>
#include <string_view>

namespace torvane {

namespace {

constexpr std::size_t kLongestMessage = 4096;

constexpr bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Whether the text begins like a recovery password: "111111-222222-333333-444444-555555-666666-777777-888888".
bool beginsWithRecoveryPassword(std::string_view text, std::size_t length) {
    constexpr std::size_t kGroupAndDash = 7;
    if (text.size() < length) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        const bool wantsDash = i % kGroupAndDash == kGroupAndDash - 1;
        if (wantsDash ? text[i] != '-' : !isDigit(text[i])) {
            return false;
        }
    }
    return true;
}

std::string withoutRecoveryPasswords(std::string_view text) {
    constexpr std::size_t kPasswordLength = 55;
    std::string kept;
    kept.reserve(text.size());
    while (!text.empty()) {
        if (beginsWithRecoveryPassword(text, kPasswordLength)) {
            kept += "(recovery password)";
            text.remove_prefix(kPasswordLength);
        } else {
            kept += text.front();
            text.remove_prefix(1);
        }
    }
    return kept;
}

} // namespace

std::string logFileName(const LocalMoment& moment) {
    return formatText("Torvane %04d-%02d-%02d.log", moment.year, moment.month, moment.day);
}

std::string logFileLine(const LogRow& row) {
    const std::string message = withoutRecoveryPasswords(row.message);
    return oneLine(row.category) + '\t' + oneLine(row.date) + '\t' + oneLine(row.time) + '\t' +
           oneLine(cutAtCharacter(message, kLongestMessage)) + "\r\n";
}

} // namespace torvane
