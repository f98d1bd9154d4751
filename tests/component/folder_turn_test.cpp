#include "state/folder_turn.h"

#include "base/owned_handle.h"
#include "tests/component/import_patched.h"
#include "tests/component/test_bench.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <thread>

// The program's import slot of what makes the object.
extern "C" {
extern decltype(&CreateMutexW) __imp_CreateMutexW; // NOLINT(bugprone-reserved-identifier)
}

namespace torvane {
namespace {

std::wstring askedName;

HANDLE WINAPI keepName(LPSECURITY_ATTRIBUTES, BOOL, LPCWSTR name) {
    askedName = name;
    SetLastError(NO_ERROR);
    return nullptr;
}

/// What another program asks for that works in the current folder.
std::wstring nameOfTurn() {
    const testing::ImportPatched asked(__imp_CreateMutexW, &keepName);
    EXPECT_TRUE(awaitFolderTurn());
    return askedName;
}

class FolderTurn : public ::testing::Test {
  protected:
    void SetUp() override { bench_.open(); }

  private:
    testing::TestBench bench_;
};

TEST_F(FolderTurn, WaitsForAnotherProgramInTheSameFolder) {
    UniqueHandle other{CreateMutexW(nullptr, FALSE, nameOfTurn().c_str())};
    std::thread ending([&] {
        Sleep(100);
        other.reset();
    });
    const ULONGLONG begin = GetTickCount64();
    EXPECT_TRUE(awaitFolderTurn());
    EXPECT_GE(GetTickCount64() - begin, 50U);
    ending.join();
}

TEST_F(FolderTurn, IsAnotherInEachFolderHoweverItIsWritten) {
    const std::wstring here = nameOfTurn();
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetCurrentDirectoryW(MAX_PATH, folder.data()));
    const std::wstring original = folder;
    CharUpperBuffW(folder.data(), static_cast<DWORD>(folder.size()));
    SetCurrentDirectoryW(folder.c_str());
    EXPECT_EQ(nameOfTurn(), here);
    SetCurrentDirectoryW(L"bench");
    EXPECT_NE(nameOfTurn(), here);
    SetCurrentDirectoryW(original.c_str());
}

} // namespace
} // namespace torvane
