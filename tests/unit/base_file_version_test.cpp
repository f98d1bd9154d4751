#include "base/file_version.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace torvane {
namespace {

constexpr std::string_view kKey("V\0S\0_\0V\0E\0R\0S\0I\0O\0N\0_\0I\0N\0F\0O\0\0\0", 32);
/// dwSignature, dwStrucVersion, dwFileVersionMS, dwFileVersionLS of version 7.3.0.5338.
constexpr std::string_view kInfo("\xBD\x04\xEF\xFE\0\0\1\0\3\0\7\0\xDA\x14\0\0", 16);

TEST(FileVersionTest, IsThatOfTheVersionResource) {
    const std::string program =
        std::string("MZ and more ").append(kKey).append("\0\0", 2).append(kInfo) + "and the rest";
    EXPECT_EQ(fileVersionOf(program), (FileVersion{.major = 7, .minor = 3, .patch = 0, .build = 5338}));
    EXPECT_EQ(inWords(fileVersionOf(program).value()), "7.3.0.5338");
}

TEST(FileVersionTest, IsFoundBehindTheKeysOfTablesThatAreNone) {
    const std::string program = std::string(kKey).append("not it, as it has no signature").append(kKey).append(kInfo);
    EXPECT_EQ(fileVersionOf(program), (FileVersion{.major = 7, .minor = 3, .patch = 0, .build = 5338}));
}

TEST(FileVersionTest, IsNoneWhereNothingTellsIt) {
    EXPECT_FALSE(fileVersionOf(""));
    EXPECT_FALSE(fileVersionOf("MZ"));
    EXPECT_FALSE(fileVersionOf(std::string(kKey)));
    EXPECT_FALSE(fileVersionOf(std::string(kKey).append(kInfo.substr(0, 15))));
    EXPECT_FALSE(fileVersionOf(std::string(kInfo))) << "without the key";
}

} // namespace
} // namespace torvane
