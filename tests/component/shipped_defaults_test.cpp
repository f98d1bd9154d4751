#include "settings/shipped_defaults.h"

#include "settings/portable_files.h"
#include "tests/component/import_patched.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/recording_log_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// NOLINTBEGIN(bugprone-reserved-identifier): the linker names these
extern "C" {
extern decltype(&ReadFile) __imp_ReadFile;
extern decltype(&WriteFile) __imp_WriteFile;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using testing::ImportPatched;
using ::testing::IsEmpty;
using testing::readFile;
using testing::writeFile;

namespace fs = std::filesystem;

BOOL WINAPI readNothing(HANDLE, LPVOID, DWORD, LPDWORD, LPOVERLAPPED) {
    return FALSE;
}

BOOL WINAPI writeNothing(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) {
    return FALSE;
}

class ShippedDefaults : public ::testing::Test {
  protected:
    ShippedDefaults() {
        fs::create_directory(kDefaultsFolder);
        writeFile("defaults\\Message.db", "shipped messages");
        writeFile("defaults\\Config.db", "shipped company");
        writeFile("defaults\\BITLOCKER.db", "");
    }

    [[nodiscard]] std::string folder() const { return folder_.path().string(); }
    /// What was logged, before there is a window.
    [[nodiscard]] std::vector<std::string> errors() const { return log_.messages("ERROR"); }

    testing::ScratchFolder folder_;
    testing::RecordingLogFile log_;
};

TEST_F(ShippedDefaults, MissingFilesAreMadeAndThoseOfTheUserStay) {
    writeFile("Message.db", "the user's messages");
    provideMissingFiles(folder());
    EXPECT_EQ(readFile("Message.db"), "the user's messages");
    EXPECT_EQ(readFile("Config.db"), "shipped company");
    EXPECT_TRUE(fs::exists("BITLOCKER.db")) << "also an empty one";
    EXPECT_EQ(readFile("defaults\\Config.db"), "shipped company") << "it serves the next time, too";
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ShippedDefaults, ADriveWithoutDefaultsIsLeftAlone) {
    fs::remove_all(kDefaultsFolder);
    provideMissingFiles(folder());
    EXPECT_TRUE(fs::is_empty(folder_.path()));
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ShippedDefaults, WhatCannotBeMadeIsLoggedAndTheOthersAreMade) {
    // A folder of that name is in the way.
    fs::create_directory("Config.db");
    provideMissingFiles(folder());
    EXPECT_EQ(readFile("Message.db"), "shipped messages");
    EXPECT_TRUE(fs::exists("BITLOCKER.db"));
    EXPECT_THAT(errors(), ElementsAre("Could not make [" + folder() + "\\Config.db], which is missing, out of [" +
                                      folder() + "\\defaults\\Config.db]"));
}

TEST_F(ShippedDefaults, AFileIsMadeWholeOrNotAtAll) {
    {
        const ImportPatched patch(__imp_WriteFile, writeNothing);
        provideMissingFiles(folder());
    }
    EXPECT_EQ(errors().size(), kShippedDefaults.size());
    fs::remove_all(kDefaultsFolder);
    EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(ShippedDefaults, ADefaultThatCannotBeReadIsLogged) {
    writeFile("Message.db", "");
    writeFile("BITLOCKER.db", "");
    const ImportPatched patch(__imp_ReadFile, readNothing);
    provideMissingFiles(folder());
    EXPECT_FALSE(fs::exists("Config.db"));
    EXPECT_THAT(errors(), ElementsAre("Could not read [" + folder() + "\\defaults\\Config.db] in place of [" +
                                      folder() + "\\Config.db], which is missing"));
}

TEST(ShippedDefaultsList, EachIsAFileThatThePortableDriveCarries) {
    for (const std::string_view name : kShippedDefaults) {
        EXPECT_NE(std::ranges::find(kPortableFileList, name), kPortableFileList.end()) << name;
    }
}

} // namespace
} // namespace torvane
