#include "admin/bitlocker_output.h"

#include "monitoring/text_scanners.h"

#include <string_view>

namespace torvane {

namespace {

constexpr const char* kPasswordKey = "RecoveryPassword";
// "RecoveryPassword    : 111111-222222-..."
constexpr int kPasswordWord = 2;

bool isErrorLine(std::string_view line) {
    // A record begins with the command that failed, and ends with these two, in whatever language the rest is.
    return line.starts_with("Get-BitLockerVolume :") || line.find("+ CategoryInfo") != std::string_view::npos ||
           line.find("+ FullyQualifiedErrorId") != std::string_view::npos;
}

/// The first line that is not blank, when the output holds an error record; else empty.
std::string errorIn(const char* output, const BitLockerScratch& scratch) {
    std::string first;
    LineCursor lines(output);
    while (lines.next(scratch.line) != 0) {
        const std::string_view line(scratch.line.data());
        if (first.empty() && line.find_first_not_of(' ') != std::string_view::npos) {
            first = line;
        }
        if (isErrorLine(line)) {
            return first;
        }
    }
    return {};
}

} // namespace

BitLockerCheck readKeyProtectors(const char* output, char driveLetter, const BitLockerScratch& scratch) {
    BitLockerCheck check;
    if (*output == '\0') {
        return check;
    }
    check.finding = BitLockerFinding::kNotEncrypted;
    LineCursor lines(output);
    while (lines.next(scratch.line) != 0) {
        // A protector's type stands at the end of its line, where the key is not found: only the password's own does.
        if (PARSE_LineContains(scratch.line.data(), kPasswordKey) == 0) {
            continue;
        }
        check.finding = BitLockerFinding::kLocked;
        check.entry.driveLetter = driveLetter;
        if (PARSE_GetWord(scratch.line.data(), scratch.word, kPasswordWord) != 0) {
            check.finding = BitLockerFinding::kKeyRead;
            check.entry.hasKey = 1;
            check.entry.recoveryPassword.assign(scratch.word.data());
            break;
        }
    }
    if (check.finding == BitLockerFinding::kNotEncrypted) {
        check.error = errorIn(output, scratch);
        check.finding = check.error.empty() ? BitLockerFinding::kNotEncrypted : BitLockerFinding::kNotTold;
    }
    return check;
}

const char* bitLockerStatusText(BitLockerFinding finding) {
    switch (finding) {
    case BitLockerFinding::kKeyRead:
        return "Encrypted";
    case BitLockerFinding::kLocked:
        return "Encrypted and Locked";
    case BitLockerFinding::kNotTold:
        return "Windows could not tell";
    default:
        return "Not Bitlocker Encrypted";
    }
}

const char* bitLockerKeyText(const BitLockerCheck& check) {
    return check.finding == BitLockerFinding::kKeyRead ? check.entry.recoveryPassword.c_str() : "No Key Found";
}

} // namespace torvane
