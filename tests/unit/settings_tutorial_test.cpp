#include "settings/tutorial.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace torvane {
namespace {

class TutorialFlag : public testing::Test {
  protected:
    void SetUp() override { std::remove(kName); }
    void TearDown() override { std::remove(kName); }

    static void write(const std::string& bytes) {
        std::ofstream file(kName, std::ios::binary);
        file << bytes;
    }

    static std::string content() {
        std::ifstream file(kName, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static constexpr const char* kName = "tutorial-under-test.db";
    static constexpr const char* kImpossibleName = "no-such-folder/tutorial.db";
};

const std::string kHolds1{"\1\0\0\0", 4};
const std::string kHolds0{"\0\0\0\0", 4};

TEST_F(TutorialFlag, IsCreatedHolding1WhenItIsMissing) {
    EXPECT_EQ(loadTutorialFlag(kName), 1);
    EXPECT_EQ(content(), kHolds1);
}

TEST_F(TutorialFlag, IsWhatTheFileHolds) {
    write(kHolds0);
    EXPECT_EQ(loadTutorialFlag(kName), 0);
    write(kHolds1);
    EXPECT_EQ(loadTutorialFlag(kName), 1);
    write("\xFF\xFF\xFF\xFF");
    EXPECT_EQ(loadTutorialFlag(kName), -1);
    write(std::string("\0\0\1\0", 4));
    EXPECT_EQ(loadTutorialFlag(kName), 65536);
}

TEST_F(TutorialFlag, StaysShownWhenTheFileIsTooShort) {
    write("");
    EXPECT_EQ(loadTutorialFlag(kName), 1);
    write(std::string("\0\0\0", 3));
    EXPECT_EQ(loadTutorialFlag(kName), 1);
    EXPECT_EQ(content().size(), 3U) << "a file that exists is left as it is";
}

TEST_F(TutorialFlag, IgnoresBytesBehindTheFlag) {
    write(kHolds0 + "more");
    EXPECT_EQ(loadTutorialFlag(kName), 0);
}

TEST_F(TutorialFlag, IsShownWhenTheFileCannotBeCreated) {
    EXPECT_EQ(loadTutorialFlag(kImpossibleName), 1);
    EXPECT_EQ(saveTutorialFlag(kImpossibleName, 0), 0);
}

TEST_F(TutorialFlag, IsSavedIntoAMissingFile) {
    EXPECT_EQ(saveTutorialFlag(kName, 0), 1);
    EXPECT_EQ(content(), kHolds0);
}

TEST_F(TutorialFlag, IsSavedOverTheOldOne) {
    write(kHolds1);
    EXPECT_EQ(saveTutorialFlag(kName, 0), 1);
    EXPECT_EQ(content(), kHolds0);
    EXPECT_EQ(saveTutorialFlag(kName, 1), 1);
    EXPECT_EQ(content(), kHolds1);
    EXPECT_EQ(loadTutorialFlag(kName), 1);
}

} // namespace
} // namespace torvane
