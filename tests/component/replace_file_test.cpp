#include "base/replace_file.h"

#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"
#include "tests/component/scratch_folder.h"
#include "ui/owned.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The import slots of the functions that are replaced. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&WriteFile) __imp_WriteFile;
extern decltype(&FlushFileBuffers) __imp_FlushFileBuffers;
extern decltype(&MoveFileExW) __imp_MoveFileExW;
extern decltype(&GetFileAttributesW) __imp_GetFileAttributesW;
extern decltype(&SetFileAttributesW) __imp_SetFileAttributesW;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

constexpr const char* kFile = "Some.db";
constexpr const char* kNewFile = "Some.db.new";

std::span<const std::byte> bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

class ReplacedFile : public ::testing::Test {
  protected:
    ReplacedFile() { writeFile(kFile, "old"); }

    /// The save has failed and left the old file alone.
    static void expectOld() {
        EXPECT_EQ(readFile(kFile), "old");
        EXPECT_FALSE(fs::exists(kNewFile));
    }

  private:
    ScratchFolder folder_;
};

TEST_F(ReplacedFile, HoldsTheNewBytesAlone) {
    EXPECT_EQ(replaceFile(kFile, bytes("n")), FileSaving::kDone);
    EXPECT_EQ(readFile(kFile), "n");
    EXPECT_FALSE(fs::exists(kNewFile));
}

TEST_F(ReplacedFile, IsMadeWhereNoneWas) {
    fs::remove(kFile);
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kDone);
    EXPECT_EQ(readFile(kFile), "new");
}

TEST_F(ReplacedFile, OfTheUsersChoiceLeavesOthersAlone) {
    writeFile(kNewFile, "the user's");
    writeFile("Some.db.1.new", "the user's, too");
    EXPECT_EQ(replaceForeignFile(kFile, bytes("new")), FileSaving::kDone);
    EXPECT_EQ(readFile(kFile), "new");
    EXPECT_EQ(readFile(kNewFile), "the user's");
    EXPECT_EQ(readFile("Some.db.1.new"), "the user's, too");
    EXPECT_FALSE(fs::exists("Some.db.2.new"));
    EXPECT_EQ(replaceForeignFile("no folder\\Some.db", bytes("new")), FileSaving::kNotMade);
}

TEST_F(ReplacedFile, ThatOnlyMayBeMadeStaysWhereItExists) {
    EXPECT_EQ(makeWholeFile(kFile, bytes("new")), FileSaving::kNotPlaced);
    expectOld();
    fs::remove(kFile);
    EXPECT_EQ(makeWholeFile(kFile, bytes("new")), FileSaving::kDone);
    EXPECT_EQ(readFile(kFile), "new");
}

TEST_F(ReplacedFile, IsMadeOverWhatACrashHasLeft) {
    writeFile(kNewFile, "what a crash has left");
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kDone);
    EXPECT_EQ(readFile(kFile), "new");
    EXPECT_FALSE(fs::exists(kNewFile));
}

TEST(WholeFile, IsMadeAndReplacedInFoldersOfAnyLengthAndLetters) {
    const ScratchFolder scratch;
    const TextsAreUtf8 utf8;
    for (const bool isLong : {true, false}) {
        const HardFolder folder = isLong ? HardFolder::withLongPath() : HardFolder::withForeignName();
        const std::string file = folder.path() + "\\Some.db";
        EXPECT_EQ(makeWholeFile(file.c_str(), bytes("one")), FileSaving::kDone);
        EXPECT_EQ(makeWholeFile(file.c_str(), bytes("two")), FileSaving::kNotPlaced);
        EXPECT_EQ(replaceFile(file.c_str(), bytes("three")), FileSaving::kDone);
        EXPECT_EQ(folder.content(L"Some.db"), "three");
        EXPECT_EQ(folder.files().size(), 1U);
    }
}

// What a save calls, in order.
std::vector<std::string> calls;

decltype(&FlushFileBuffers) realFlush = nullptr;
BOOL WINAPI noteFlush(HANDLE file) {
    calls.emplace_back("flush");
    return realFlush(file);
}
decltype(&MoveFileExW) realMove = nullptr;
BOOL WINAPI noteMove(LPCWSTR from, LPCWSTR to, DWORD flags) {
    calls.emplace_back((flags & MOVEFILE_WRITE_THROUGH) != 0 ? "move, written through" : "move");
    return realMove(from, to, flags);
}

TEST_F(ReplacedFile, IsOnTheDiskBeforeItTakesTheName) {
    const ImportPatched flush(__imp_FlushFileBuffers, &noteFlush);
    realFlush = flush.original();
    const ImportPatched move(__imp_MoveFileExW, &noteMove);
    realMove = move.original();
    calls.clear();
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kDone);
    EXPECT_THAT(calls, ElementsAre("flush", "move, written through"));
}

// Whatever the folder's file system knows of attributes.
DWORD WINAPI sayHiddenSystemCompressed(LPCWSTR) {
    return FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_COMPRESSED;
}
BOOL WINAPI noteAttributes(LPCWSTR name, DWORD attributes) {
    calls.push_back(fs::path(name).string() + " " + std::to_string(attributes));
    return TRUE;
}

TEST_F(ReplacedFile, KeepsItsAttributes) {
    const ImportPatched asked(__imp_GetFileAttributesW, &sayHiddenSystemCompressed);
    const ImportPatched given(__imp_SetFileAttributesW, &noteAttributes);
    calls.clear();
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kDone);
    EXPECT_THAT(calls, ElementsAre("Some.db.new 6")) << "hidden and system, which are the user's";
}

// --- what can go wrong ---

TEST_F(ReplacedFile, StaysWhenTheNewOneCannotBeMade) {
    fs::create_directory(kNewFile);
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kNotMade);
    EXPECT_EQ(readFile(kFile), "old");
}

BOOL WINAPI writeNothing(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}
BOOL WINAPI writeABit(HANDLE, LPCVOID, DWORD, LPDWORD count, LPOVERLAPPED) {
    *count = 1;
    return TRUE;
}

TEST_F(ReplacedFile, StaysWhenTheDiskIsFull) {
    for (const auto write : {&writeNothing, &writeABit}) {
        const ImportPatched full(__imp_WriteFile, write);
        EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kNotWritten);
        EXPECT_FALSE(fs::exists(kNewFile));
    }
    EXPECT_EQ(readFile(kFile), "old");
}

BOOL WINAPI flushNothing(HANDLE) {
    SetLastError(ERROR_WRITE_FAULT);
    return FALSE;
}

TEST_F(ReplacedFile, StaysWhenTheNewOneCannotBeFlushed) {
    const ImportPatched failing(__imp_FlushFileBuffers, &flushNothing);
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kNotWritten);
    expectOld();
    EXPECT_FALSE(flushFile(kFile));
}

TEST_F(ReplacedFile, StaysWhileOthersHaveItOpen) {
    const UniqueFile held{
        CreateFileA(kFile, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)};
    ASSERT_TRUE(held);
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kNotPlaced);
    expectOld();
}

UniqueFile heldForAMoment;
BOOL WINAPI moveAndLetGo(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const BOOL moved = realMove(from, to, flags);
    const DWORD error = GetLastError();
    heldForAMoment.reset();
    SetLastError(error);
    return moved;
}

TEST_F(ReplacedFile, IsReplacedOnceOthersLetItGo) {
    const ImportPatched move(__imp_MoveFileExW, &moveAndLetGo);
    realMove = move.original();
    heldForAMoment.reset(CreateFileA(kFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(heldForAMoment);
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kDone);
    EXPECT_EQ(readFile(kFile), "new");
}

TEST_F(ReplacedFile, StaysWhenItIsReadOnly) {
    ASSERT_TRUE(SetFileAttributesA(kFile, FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kNotPlaced);
    expectOld();
    SetFileAttributesA(kFile, FILE_ATTRIBUTE_NORMAL);
}

TEST_F(ReplacedFile, NeverTakesAFoldersPlace) {
    fs::remove(kFile);
    fs::create_directory(kFile);
    EXPECT_EQ(replaceFile(kFile, bytes("new")), FileSaving::kNotPlaced);
    EXPECT_TRUE(fs::is_directory(kFile));
    EXPECT_FALSE(fs::exists(kNewFile));
}

TEST_F(ReplacedFile, OnceThereIsFlushedByItsName) {
    EXPECT_TRUE(flushFile(kFile));
    EXPECT_FALSE(flushFile("none.db"));
}

} // namespace
} // namespace torvane::testing
