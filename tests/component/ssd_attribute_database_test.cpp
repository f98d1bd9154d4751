#include "monitoring/ssd_attribute_database.h"

#include "state/app_state.h"
#include "tests/component/import_patched.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/recording_main_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

// The import slot of the function that is made to fail. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&ReadFile) __imp_ReadFile;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SsdAttributes : public ::testing::Test {
  protected:
    testing::ScratchFolder folder_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    SsdAttributeDatabase database_;
};

TEST_F(SsdAttributes, AreLoadedWholeAndCountedInRecords) {
    std::string bytes(3 * kSsdAttributeRecordBytes + 543, 'r');
    bytes.front() = 'F';
    bytes.back() = 'L';
    testing::writeFile("SSDAttribute.db", bytes);
    EXPECT_EQ(LoadSsdAttributeDatabase(database_), 1);
    EXPECT_EQ(database_.recordCount, 3);
    ASSERT_TRUE(database_.records);
    EXPECT_EQ(std::string(database_.records.get(), bytes.size()), bytes);

    testing::writeFile("SSDAttribute.db", "");
    EXPECT_EQ(LoadSsdAttributeDatabase(database_), 1);
    EXPECT_EQ(database_.recordCount, 0);
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

TEST_F(SsdAttributes, AMissingFileIsLogged) {
    EXPECT_EQ(LoadSsdAttributeDatabase(database_), 0);
    EXPECT_FALSE(database_.records);
    EXPECT_THAT(view_.messages("ERROR"),
                ElementsAre("Could not SSD Attribute Database: [SSDAttribute.db] OPEN_EXISTING FAILED"));
}

decltype(&ReadFile) realReadFile;

BOOL WINAPI readOneByteLess(HANDLE file, LPVOID buffer, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
    return realReadFile(file, buffer, size - 1, count, overlapped);
}

TEST_F(SsdAttributes, AShortReadIsLoggedAndLeavesNothing) {
    testing::writeFile("SSDAttribute.db", std::string(kSsdAttributeRecordBytes, 'r'));
    EXPECT_EQ(LoadSsdAttributeDatabase(database_), 1);
    {
        const testing::ImportPatched patched(__imp_ReadFile, &readOneByteLess);
        realReadFile = patched.original();
        EXPECT_EQ(LoadSsdAttributeDatabase(database_), 0);
    }
    EXPECT_FALSE(database_.records);
    EXPECT_EQ(database_.recordCount, 0);
    EXPECT_THAT(view_.messages("ERROR"),
                ElementsAre("PARSE_LoadFileIntoBuffer: Could not READ [SSDAttribute.db] for processing"));
}

} // namespace
} // namespace torvane
