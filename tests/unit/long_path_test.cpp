#include "base/long_path.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(LongPathForm, IsThePrefixBeforeALetter) {
    EXPECT_EQ(longPathForm(L"C:\\a\\b.img"), L"\\\\?\\C:\\a\\b.img");
}

TEST(LongPathForm, NamesAShareByItsOwnPrefix) {
    EXPECT_EQ(longPathForm(L"\\\\server\\share\\a"), L"\\\\?\\UNC\\server\\share\\a");
}

TEST(LongPathForm, OfAPathThatHasItOrNamesADeviceIsThePath) {
    for (const wchar_t* path : {L"\\\\?\\C:\\a", L"\\\\?\\UNC\\server\\share", L"\\\\.\\PhysicalDrive1"}) {
        EXPECT_EQ(longPathForm(path), path);
    }
}

} // namespace
} // namespace torvane
