#include "admin/bitlocker_output.h"

#include "monitoring/text_scanners.h"

namespace torvane {

namespace {

constexpr const char* kPasswordKey = "RecoveryPassword";
// "RecoveryPassword    : 111111-222222-..."
constexpr int kPasswordWord = 2;

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
    return check;
}

const char* bitLockerStatusText(BitLockerFinding finding) {
    switch (finding) {
    case BitLockerFinding::kKeyRead:
        return "Encrypted";
    case BitLockerFinding::kLocked:
        return "Encrypted and Locked";
    default:
        return "Not Bitlocker Encrypted";
    }
}

const char* bitLockerKeyText(const BitLockerCheck& check) {
    return check.finding == BitLockerFinding::kKeyRead ? check.entry.recoveryPassword.c_str() : "No Key Found";
}

} // namespace torvane
