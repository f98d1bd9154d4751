#include "ui/edit_text.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace torvane {
namespace {

/// An edit control of the test's own, as the dialogs have one for longer texts.
class EditText : public ::testing::Test {
  protected:
    EditText()
        : edit_(CreateWindowExW(0, L"EDIT", L"", WS_POPUP | ES_MULTILINE | ES_AUTOVSCROLL | ES_WANTRETURN, 0, 0, 300,
                                100, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)) {}
    ~EditText() override { DestroyWindow(edit_); }

    /// A text with the caret behind its first `caret` characters, as typing or pasting would leave it.
    void typed(const std::wstring& text, std::size_t caret) const {
        SetWindowTextW(edit_, text.c_str());
        SendMessageW(edit_, EM_SETSEL, caret, static_cast<LPARAM>(caret));
    }
    [[nodiscard]] bool keepWithin(std::size_t bytes) const { return keepWithinBytes(edit_, bytes, CP_UTF8); }

    [[nodiscard]] std::wstring text() const {
        std::array<wchar_t, 8192> text{};
        return {text.data(),
                static_cast<std::size_t>(GetWindowTextW(edit_, text.data(), static_cast<int>(text.size())))};
    }
    [[nodiscard]] std::size_t caret() const {
        DWORD begin = 0;
        DWORD end = 0;
        SendMessageW(edit_, EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
        EXPECT_EQ(begin, end) << "nothing is selected";
        return end;
    }

  private:
    HWND edit_;
};

TEST_F(EditText, ThatFitsStaysAsItIs) {
    typed(L"grün", 2);
    EXPECT_FALSE(keepWithin(5)) << "four characters, of which one takes two bytes";
    EXPECT_EQ(text(), L"grün");
    EXPECT_EQ(caret(), 2U);
}

TEST_F(EditText, ThatIsTooLongLosesWhatWasTypedLastAndNothingBehindIt) {
    typed(L"one twoüüü three", 10);
    EXPECT_TRUE(keepWithin(16));
    EXPECT_EQ(text(), L"one twoü three");
    EXPECT_EQ(caret(), 8U);
}

TEST_F(EditText, LosesWholeCharacters) {
    const std::wstring disk = L"\xD83D\xDCBE"; // four bytes, in two UTF-16 units
    typed(L"ab" + disk + disk + L"c", 6);
    EXPECT_TRUE(keepWithin(10));
    EXPECT_EQ(text(), L"ab" + disk + L"c");
    EXPECT_TRUE(keepWithin(6)) << "of four bytes not even one may stay";
    EXPECT_EQ(text(), L"abc");
    EXPECT_EQ(caret(), 2U);
}

TEST_F(EditText, LosesBothHalvesOfALineBreak) {
    typed(L"ab\r\ncd", 4);
    EXPECT_TRUE(keepWithin(5));
    EXPECT_EQ(text(), L"abcd");
}

TEST_F(EditText, IsCutAtItsEndWhenTheCaretStandsAtItsStart) {
    typed(std::wstring(3000, L'ä'), 0);
    EXPECT_TRUE(keepWithin(4159));
    EXPECT_EQ(text(), std::wstring(2079, L'ä'));
}

TEST_F(EditText, IsCutAtItsEndTooWhenWhatIsInFrontOfTheCaretIsNotEnough) {
    typed(L"ab" + std::wstring(100, L'ä'), 2);
    EXPECT_TRUE(keepWithin(20));
    EXPECT_EQ(text(), std::wstring(10, L'ä'));
    EXPECT_EQ(caret(), 0U);
}

TEST_F(EditText, MayBeAllowedNothing) {
    typed(L"x", 1);
    EXPECT_TRUE(keepWithin(0));
    EXPECT_EQ(text(), L"");
    EXPECT_FALSE(keepWithin(0));
}

} // namespace
} // namespace torvane
