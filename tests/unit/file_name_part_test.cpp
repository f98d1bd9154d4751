#include "base/file_name_part.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(FileNamePart, OrdinaryTextStaysAsItIs) {
    EXPECT_EQ(fileNamePart("Tarn S2000 (rev. 2), 100%s [A]", 80), "Tarn S2000 (rev. 2), 100%s [A]");
    EXPECT_EQ(fileNamePart("WD-WCC4E0123456", 80), "WD-WCC4E0123456");
    EXPECT_EQ(fileNamePart("", 80), "");
}

TEST(FileNamePart, WhatANameCannotHoldBecomesAnUnderscore) {
    EXPECT_EQ(fileNamePart("<>:\"/\\|?*", 80), "_________");
    EXPECT_EQ(fileNamePart("a\tb\x01\x1f"
                           "c\n",
                           80),
              "a_b__c_");
}

TEST(FileNamePart, NoFolderIsClimbed) {
    EXPECT_EQ(fileNamePart("..\\..\\Windows", 80), ".._.._Windows");
    EXPECT_EQ(fileNamePart("../../etc", 80), ".._.._etc");
    EXPECT_EQ(fileNamePart("C:\\autoexec", 80), "C__autoexec");
}

TEST(FileNamePart, NoStreamIsNamed) {
    EXPECT_EQ(fileNamePart("S1:hidden:$DATA", 80), "S1_hidden_$DATA");
}

TEST(FileNamePart, BytesAboveAsciiStay) {
    EXPECT_EQ(fileNamePart("M\xfcller\xff", 80), "M\xfcller\xff");
}

TEST(FileNamePart, LongTextIsCut) {
    EXPECT_EQ(fileNamePart(std::string(255, 'x'), 80), std::string(80, 'x'));
    EXPECT_EQ(fileNamePart("abc", 2), "ab");
    EXPECT_EQ(fileNamePart("abc", 0), "");
}

} // namespace
} // namespace torvane
