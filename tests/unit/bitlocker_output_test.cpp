#include "admin/bitlocker_output.h"

#include "workbench/tools/powershell_command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace torvane {
namespace {

constexpr const char* kPassword = "111111-222222-333333-444444-555555-666666-777777-888888";

BitLockerCheck read(const std::string& output, char letter = 'E') {
    std::array<char, 8192> line{};
    std::array<char, 4096> word{};
    return readKeyProtectors(output.c_str(), letter, {line, word});
}

bool isZeroFilled(const BitLockerVolumeEntry& entry) {
    const auto bytes = std::bit_cast<std::array<std::uint8_t, 261>>(entry);
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

/// One protector as Format-List shows it.
std::string protector(const std::string& type, const std::string& password) {
    return "KeyProtectorId      : {62F9B2A7}\r\nAutoUnlockProtector : \r\nKeyProtectorType    : " + type +
           "\r\nKeyFileName         : \r\nRecoveryPassword    : " + password +
           "\r\nKeyCertificateType  : \r\nThumbprint          : \r\n\r\n";
}

TEST(BitLockerOutput, ThePasswordOfTheRecoveryProtectorIsRead) {
    const BitLockerCheck check = read("\r\n\r\n" + protector("RecoveryPassword", kPassword) + "\r\n\r\n");
    EXPECT_EQ(check.finding, BitLockerFinding::kKeyRead);
    EXPECT_EQ(check.entry.hasKey, 1U);
    EXPECT_EQ(check.entry.recoveryPassword.view(), kPassword);
    EXPECT_EQ(check.entry.driveLetter, 'E');
    EXPECT_STREQ(bitLockerStatusText(check.finding), "Encrypted");
    EXPECT_STREQ(bitLockerKeyText(check), kPassword);
}

TEST(BitLockerOutput, ABlankPasswordLineBeforeItDecidesNothing) {
    const BitLockerCheck check = read(protector("Tpm", "") + protector("RecoveryPassword", kPassword));
    EXPECT_EQ(check.finding, BitLockerFinding::kKeyRead);
    EXPECT_EQ(check.entry.recoveryPassword.view(), kPassword);
}

TEST(BitLockerOutput, TheFirstOfTwoPasswordsDecides) {
    const BitLockerCheck check = read(protector("RecoveryPassword", "1-1") + protector("RecoveryPassword", "2-2"));
    EXPECT_EQ(check.entry.recoveryPassword.view(), "1-1");
}

TEST(BitLockerOutput, ProtectorsWithoutAPasswordAreLocked) {
    const BitLockerCheck check = read(protector("Tpm", "") + protector("RecoveryPassword", ""));
    EXPECT_EQ(check.finding, BitLockerFinding::kLocked);
    EXPECT_EQ(check.entry.hasKey, 0U);
    EXPECT_TRUE(check.entry.recoveryPassword.empty());
    EXPECT_EQ(check.entry.driveLetter, 'E');
    EXPECT_STREQ(bitLockerStatusText(check.finding), "Encrypted and Locked");
    EXPECT_STREQ(bitLockerKeyText(check), "No Key Found");
}

TEST(BitLockerOutput, NoOutputIsNotEncrypted) {
    const BitLockerCheck check = read("");
    EXPECT_EQ(check.finding, BitLockerFinding::kNoOutput);
    EXPECT_TRUE(isZeroFilled(check.entry));
    EXPECT_STREQ(bitLockerStatusText(check.finding), "Not Bitlocker Encrypted");
    EXPECT_STREQ(bitLockerKeyText(check), "No Key Found");
}

TEST(BitLockerOutput, AnErrorRecordTellsNothingAndLeavesTheEntryZero) {
    const std::pair<const char*, const char*> records[] = {
        {"Get-BitLockerVolume : Access denied\r\nAt line:1 char:2\r\n", "Get-BitLockerVolume : Access denied"},
        {"\r\n  \r\nZugriff verweigert\r\n    + CategoryInfo          : PermissionDenied\r\n", "Zugriff verweigert"},
        {"Zugriff verweigert\r\n    + FullyQualifiedErrorId : HRESULT 0x80041003\r\n", "Zugriff verweigert"}};
    for (const auto& [text, firstLine] : records) {
        const BitLockerCheck check = read(text);
        EXPECT_EQ(check.finding, BitLockerFinding::kNotTold) << text;
        EXPECT_EQ(check.error, firstLine);
        EXPECT_TRUE(isZeroFilled(check.entry)) << text;
        EXPECT_STREQ(bitLockerStatusText(check.finding), "Windows could not tell");
        EXPECT_STREQ(bitLockerKeyText(check), "No Key Found");
    }
}

TEST(BitLockerOutput, AnErrorRecordBesideAPasswordChangesNothing) {
    EXPECT_EQ(read(protector("RecoveryPassword", "1-1") + "Get-BitLockerVolume : x\r\n").finding,
              BitLockerFinding::kKeyRead);
}

TEST(BitLockerOutput, AnyOtherTextIsNotEncryptedAndLeavesTheEntryZero) {
    for (const char* text : {"\r\n", "x"}) {
        const BitLockerCheck check = read(text);
        EXPECT_EQ(check.finding, BitLockerFinding::kNotEncrypted) << text;
        EXPECT_TRUE(isZeroFilled(check.entry)) << text;
        EXPECT_STREQ(bitLockerStatusText(check.finding), "Not Bitlocker Encrypted");
        EXPECT_STREQ(bitLockerKeyText(check), "No Key Found");
    }
}

TEST(BitLockerOutput, TheProtectorsTypeIsNotItsPassword) {
    EXPECT_EQ(read("KeyProtectorType    : RecoveryPassword\r\n").finding, BitLockerFinding::kNotEncrypted);
}

TEST(BitLockerOutput, TheKeyIsFoundInAnyCase) {
    EXPECT_EQ(read("RECOVERYpassword : 1-2\r\n").entry.recoveryPassword.view(), "1-2");
}

TEST(BitLockerOutput, ALineWithoutItsEndIsNotSeen) {
    EXPECT_EQ(read("RecoveryPassword    : 1-2").finding, BitLockerFinding::kNotEncrypted);
    EXPECT_EQ(read("RecoveryPassword    : 1-2\n").finding, BitLockerFinding::kNotEncrypted);
}

TEST(BitLockerOutput, WordTwoIsTakenWhateverItIs) {
    EXPECT_EQ(read("RecoveryPassword:   1-2   3-4\r\n").entry.recoveryPassword.view(), "3-4");
    EXPECT_EQ(read("The RecoveryPassword of this volume\r\n").entry.recoveryPassword.view(), "of");
}

TEST(BitLockerOutput, APasswordOfAnyLengthIsCutToTheRecord) {
    const BitLockerCheck check = read("RecoveryPassword : " + std::string(5000, '9') + "\r\n");
    EXPECT_EQ(check.finding, BitLockerFinding::kKeyRead);
    EXPECT_EQ(check.entry.recoveryPassword.view(), std::string(255, '9'));
    EXPECT_EQ(check.entry.driveLetter, 'E');
}

TEST(BitLockerOutput, WhatDoesNotFitIntoTheScratchIsNotSeen) {
    const std::string far = std::string(4096, '.') + " RecoveryPassword : 1-2\r\n";
    std::array<char, 4096> shortLine{};
    std::array<char, 8192> longLine{};
    std::array<char, 1024> word{};
    EXPECT_EQ(readKeyProtectors(far.c_str(), 'E', {shortLine, word}).finding, BitLockerFinding::kNotEncrypted);
    EXPECT_EQ(readKeyProtectors(far.c_str(), 'E', {longLine, word}).finding, BitLockerFinding::kKeyRead);

    std::array<char, 4> shortWord{};
    const BitLockerCheck cut = readKeyProtectors("RecoveryPassword : 123456\r\n", 'E', {longLine, shortWord});
    EXPECT_EQ(cut.entry.recoveryPassword.view(), "123");
}

TEST(BitLockerOutput, AnOutputOfManyBlankLinesIsReadInOnePass) {
    std::string output;
    for (int i = 0; i < 100000; ++i) {
        output += "RecoveryPassword    : \r\n";
    }
    EXPECT_EQ(read(output).finding, BitLockerFinding::kLocked);
    EXPECT_EQ(read(output + "RecoveryPassword    : 1-2\r\n").entry.recoveryPassword.view(), "1-2");
}

TEST(BitLockerOutput, WhatTheBenchPrintsIsUnderstood) {
    bench::BitLockerDescription volume;
    EXPECT_EQ(read(bench::keyProtectorList(volume)).finding, BitLockerFinding::kNoOutput);
    volume = {bench::BitLockerState::kUnlocked, {{"Tpm", "{A}", ""}, {"RecoveryPassword", "{B}", kPassword}}, {}};
    EXPECT_EQ(read(bench::keyProtectorList(volume)).entry.recoveryPassword.view(), kPassword);
    volume.state = bench::BitLockerState::kLocked;
    EXPECT_EQ(read(bench::keyProtectorList(volume)).finding, BitLockerFinding::kLocked);
}

} // namespace
} // namespace torvane
