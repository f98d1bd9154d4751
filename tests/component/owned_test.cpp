#include "ui/owned.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

TEST(OwnedTest, HandleIsClosedOnceAndMovesAway) {
    HANDLE raw = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    {
        UniqueHandle first(raw);
        UniqueHandle second(std::move(first));
        EXPECT_FALSE(first); // NOLINT(bugprone-use-after-move): a moved-from owner is empty
        EXPECT_EQ(second.get(), raw);
    }
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(raw, &flags));
}

TEST(OwnedTest, FileKnowsItsOwnInvalidValue) {
    const UniqueFile file(CreateFileA("no such file", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_FALSE(file);
}

TEST(OwnedTest, SelectedObjectGivesTheOldOneBack) {
    const UniqueMemoryDc context(CreateCompatibleDC(nullptr));
    ASSERT_TRUE(context);
    const HGDIOBJ before = GetCurrentObject(context.get(), OBJ_BITMAP);
    {
        const UniqueBitmap bitmap(CreateBitmap(8, 8, 1, 32, nullptr));
        const SelectedObject selected(context.get(), bitmap.get());
        EXPECT_EQ(GetCurrentObject(context.get(), OBJ_BITMAP), bitmap.get());
    }
    EXPECT_EQ(GetCurrentObject(context.get(), OBJ_BITMAP), before);
}

TEST(OwnedTest, GdiObjectsAreDeleted) {
    const DWORD before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    for (int i = 0; i < 50; ++i) {
        const UniqueBrush brush(CreateSolidBrush(RGB(1, 2, 3)));
        const UniqueFont font(
            CreateFontA(18, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0, 0, 0, ""));
        ASSERT_TRUE(brush && font);
    }
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), before + 3);
}

} // namespace
} // namespace torvane
