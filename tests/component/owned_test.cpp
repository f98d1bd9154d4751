#include "ui/owned.h"

#include "tests/component/canvas.h"

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
    const auto use = [] {
        const UniqueBrush brush(CreateSolidBrush(RGB(1, 2, 3)));
        const UniqueFont font(
            CreateFontA(18, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0, 0, 0, ""));
        const UniqueBitmap bitmap(CreateBitmap(8, 8, 1, 32, nullptr));
        const UniqueMemoryDc context(CreateCompatibleDC(nullptr));
        EXPECT_TRUE(brush && font && bitmap && context);
        return testing::gdiObjectCount();
    };
    use(); // what the system makes for itself at the first use
    const int before = testing::gdiObjectCount();
    for (int i = 0; i < 50; ++i) {
        ASSERT_GE(use(), before + 4) << "the count sees what is there";
    }
    EXPECT_LE(testing::gdiObjectCount(), before + 3);
}

} // namespace
} // namespace torvane
