#include "base/wide_text.h"
#include "settings/portable_drive.h"

#include "base/owned_handle.h"
#include "settings/portable_files.h"
#include "state/app_state.h"
#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"
#include "tests/component/scratch_folder.h"
#include "tests/component/started_threads.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// NOLINTBEGIN(bugprone-reserved-identifier): the linker names these
extern "C" {
extern decltype(&CreateThread) __imp_CreateThread;
extern decltype(&GetFileSize) __imp_GetFileSize;
extern decltype(&GetModuleFileNameW) __imp_GetModuleFileNameW;
extern decltype(&GlobalAlloc) __imp_GlobalAlloc;
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

/// Where the program under test believes to be.
std::string programPath;

DWORD WINAPI tellProgramPath(HMODULE, LPWSTR buffer, DWORD size) {
    const std::wstring path = wideText(programPath);
    const std::size_t length = std::min<std::size_t>(path.size(), size - 1);
    std::copy_n(path.begin(), length, buffer);
    buffer[length] = L'\0';
    return static_cast<DWORD>(length);
}

HGLOBAL WINAPI allocateNothing(UINT, SIZE_T) {
    return nullptr;
}

BOOL WINAPI failToRead(HANDLE, LPVOID, DWORD, LPDWORD read, LPOVERLAPPED) {
    *read = 0;
    SetLastError(ERROR_CRC);
    return FALSE;
}

BOOL WINAPI readShort(HANDLE, LPVOID, DWORD size, LPDWORD read, LPOVERLAPPED) {
    *read = size - 1;
    return TRUE;
}

BOOL WINAPI failToWrite(HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED) {
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

BOOL WINAPI writeShort(HANDLE, LPCVOID, DWORD size, LPDWORD written, LPOVERLAPPED) {
    *written = size - 1;
    return TRUE;
}

/// 4 GiB and 11 bytes.
DWORD WINAPI tellHugeSize(HANDLE, LPDWORD high) {
    *high = 1;
    return 11;
}

HANDLE WINAPI startNoThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

class PortableDrive : public ::testing::Test {
  protected:
    PortableDrive() {
        programPath = at("program\\Torvane.exe");
        fs::create_directory("program");
        fs::create_directory("stick");
        for (const char* const name : kPortableFileList) {
            writeFile("program\\" + std::string(name), contentOf(name));
        }
    }

    [[nodiscard]] std::string at(const std::string& name) const { return (folder_.path() / name).string(); }
    static std::string contentOf(const std::string& name) { return "content of " + name; }
    [[nodiscard]] DWORD copy() { return CopyPortableFiles(at("stick"), place()); }
    PortableCopyView place() {
        return {.view = view_, .isTaken = [this] { return scanning_; }};
    }
    /// The box of a copy that ended with a failure, of which the log has the same text.
    void expectFailure(const std::string& failure) {
        user_.expectStop("***** DISK NOT CREATED *****", failure + "\nThe files that were copied before it stay.");
    }
    /// Names in the folder of the copy.
    static std::set<std::string> copied() {
        std::set<std::string> names;
        for (const auto& file : fs::directory_iterator("stick")) {
            names.insert(file.path().filename().string());
        }
        return names;
    }
    void expectOnly(const std::string& category, const std::string& message) const {
        ASSERT_EQ(view_.logRows().size(), 1U);
        EXPECT_EQ(view_.logRows().front().category, category);
        EXPECT_EQ(view_.logRows().front().message, message);
    }

    testing::ScratchFolder folder_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    testing::ScriptedPrompts user_;
    bool scanning_ = false;
    ImportPatched<decltype(&GetModuleFileNameW)> elsewhere_{__imp_GetModuleFileNameW, &tellProgramPath};
};

TEST_F(PortableDrive, CopiesThirtyFiveFilesInOrderAndSaysSo) {
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    EXPECT_EQ(copy(), 1U);
    std::vector<std::string> rows;
    std::vector<std::string> expected;
    for (const LogRow& row : view_.logRows()) {
        rows.push_back(row.category + ": " + row.message);
    }
    for (const char* const name : kPortableFileList) {
        expected.push_back("SUCCESS: File [" + at("stick") + "\\" + name + "] copied");
        EXPECT_EQ(readFile("stick\\" + std::string(name)), contentOf(name));
    }
    EXPECT_EQ(expected.size(), 35U);
    EXPECT_EQ(rows, expected);
    EXPECT_EQ(copied().size(), 34U) << "one file stands in the list twice";
}

/// On a bench, where no path is let through that Windows does not.
TEST_F(PortableDrive, IsMadeInAFolderWithAPathOfAnyLength) {
    // The bench is found from where the test program really is.
    std::string own(MAX_PATH, '\0');
    own.resize(GetModuleFileNameA(nullptr, own.data(), MAX_PATH));
    const std::string elsewhere = std::exchange(programPath, own);
    testing::TestBench bench;
    bench.open();
    programPath = elsewhere;
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    const testing::HardFolder folder = testing::HardFolder::withLongPath();
    EXPECT_EQ(CopyPortableFiles(folder.path(), place()), 1U);
    EXPECT_EQ(folder.files().size(), 34U);
    EXPECT_EQ(folder.content(L"Torvane.exe"), contentOf("Torvane.exe"));
}

TEST_F(PortableDrive, IsMadeInAFolderWithAForeignName) {
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    const testing::HardFolder folder = testing::HardFolder::withForeignName();
    const testing::TextsAreUtf8 utf8;
    EXPECT_EQ(CopyPortableFiles(folder.path(), place()), 1U);
    EXPECT_EQ(folder.content(L"license.txt"), contentOf("license.txt"));
}

TEST_F(PortableDrive, TheListIsKeptInItsOrderWithItsDuplicate) {
    EXPECT_STREQ(kPortableFileList.front(), "Torvane.exe");
    EXPECT_STREQ(kPortableFileList[14], "passfail-gauge.png");
    EXPECT_STREQ(kPortableFileList[33], "passfail-gauge.png");
    EXPECT_STREQ(kPortableFileList.back(), "license.txt");
    EXPECT_EQ(std::set<std::string>(kPortableFileList.begin(), kPortableFileList.end()).size(), 34U);
}

TEST_F(PortableDrive, AMissingLicenceStopsTheCopyAfterThirtyFourFiles) {
    fs::remove("program\\license.txt");
    expectFailure("Could not find [" + at("program") + "\\license.txt] file. Disk Creation Terminated.");
    EXPECT_EQ(copy(), 0U);
    EXPECT_EQ(view_.messages("SUCCESS").size(), 34U);
    EXPECT_THAT(view_.messages("ERROR"),
                ElementsAre("Could not find [" + at("program") + "\\license.txt] file. Disk Creation Terminated."));
    EXPECT_EQ(copied().size(), 33U) << "what was copied stays";
}

TEST_F(PortableDrive, AMissingProgramStopsTheCopyAtOnce) {
    fs::remove("program\\Torvane.exe");
    expectFailure("Could not find [" + at("program") + "\\Torvane.exe] file. Disk Creation Terminated.");
    EXPECT_EQ(copy(), 0U);
    expectOnly("ERROR", "Could not find [" + at("program") + "\\Torvane.exe] file. Disk Creation Terminated.");
    EXPECT_THAT(copied(), IsEmpty());
}

TEST_F(PortableDrive, FilesThatAreThereAreReplaced) {
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    writeFile("stick\\Config.db", std::string(5000, 'o'));
    writeFile("stick\\notes.txt", "mine");
    EXPECT_EQ(copy(), 1U);
    EXPECT_EQ(readFile("stick\\Config.db"), contentOf("Config.db"));
    EXPECT_EQ(readFile("stick\\notes.txt"), "mine");
}

TEST_F(PortableDrive, AnEmptyFileIsCopiedAsOne) {
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    writeFile("program\\BITLOCKER.db", "");
    EXPECT_EQ(copy(), 1U);
    EXPECT_TRUE(fs::exists("stick\\BITLOCKER.db"));
    EXPECT_EQ(fs::file_size("stick\\BITLOCKER.db"), 0U);
}

TEST_F(PortableDrive, AFileThatIsOpenForWritingIsCopiedAllTheSame) {
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    const UniqueFile held{CreateFileA("program\\Message.db", GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)};
    ASSERT_TRUE(held);
    EXPECT_EQ(copy(), 1U);
}

TEST_F(PortableDrive, ZeroBytesInAFileAreCopied) {
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    const std::string bytes("a\0b\r\n\0\xff\x1a", 8);
    writeFile("program\\smartctl.exe", bytes);
    EXPECT_EQ(copy(), 1U);
    EXPECT_EQ(readFile("stick\\smartctl.exe"), bytes);
}

TEST_F(PortableDrive, WithoutMemoryTheCopyEnds) {
    const std::string row =
        "Could not allocate 22 bytes to copy  [" + at("program") + "\\Torvane.exe]. Disk Creation Terminated.";
    expectFailure(row);
    const ImportPatched patched(__imp_GlobalAlloc, &allocateNothing);
    EXPECT_EQ(copy(), 0U);
    expectOnly("ERROR", row);
}

TEST_F(PortableDrive, AFailedOrShortReadEndsTheCopy) {
    for (const auto read : {&failToRead, &readShort}) {
        const ImportPatched patched(__imp_ReadFile, read);
        const std::string row = "Could not read [" + at("program") + "\\Torvane.exe] for [22] bytes";
        expectFailure(row);
        EXPECT_EQ(copy(), 0U);
        EXPECT_EQ(view_.logRows().back().category, "ERROR");
        EXPECT_EQ(view_.logRows().back().message, row);
    }
    EXPECT_EQ(view_.logRows().size(), 2U);
    EXPECT_THAT(copied(), IsEmpty());
}

TEST_F(PortableDrive, AFileOfFourGigabytesIsReadShort) {
    const ImportPatched patched(__imp_GetFileSize, &tellHugeSize);
    expectFailure("Could not read [" + at("program") + "\\Torvane.exe] for [4294967307] bytes");
    EXPECT_EQ(copy(), 0U);
    expectOnly("ERROR", "Could not read [" + at("program") + "\\Torvane.exe] for [4294967307] bytes");
}

TEST_F(PortableDrive, AFileThatCannotBeCreatedEndsTheCopy) {
    fs::create_directory("stick\\smartctl.exe");
    expectFailure("Could not create [" + at("stick") + "\\smartctl.exe] file. Disk Creation Terminated.");
    EXPECT_EQ(copy(), 0U);
    EXPECT_THAT(view_.messages("SUCCESS"), ElementsAre("File [" + at("stick") + "\\Torvane.exe] copied"));
    EXPECT_THAT(view_.messages("ERROR"),
                ElementsAre("Could not create [" + at("stick") + "\\smartctl.exe] file. Disk Creation Terminated."));
}

TEST_F(PortableDrive, AFolderThatHasGoneEndsTheCopy) {
    expectFailure("Could not create [" + at("nowhere") + "\\Torvane.exe] file. Disk Creation Terminated.");
    EXPECT_EQ(CopyPortableFiles(at("nowhere"), place()), 0U);
    expectOnly("ERROR", "Could not create [" + at("nowhere") + "\\Torvane.exe] file. Disk Creation Terminated.");
}

TEST_F(PortableDrive, AFailedOrShortWriteEndsTheCopyAndLeavesNoHalfFile) {
    const std::string row = "Could not Write [" + at("stick") + "\\Torvane.exe] for [22] bytes";
    for (const auto write : {&failToWrite, &writeShort}) {
        const ImportPatched patched(__imp_WriteFile, write);
        expectFailure(row);
        EXPECT_EQ(copy(), 0U);
        EXPECT_THAT(copied(), IsEmpty());
    }
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre(row, row));
}

TEST_F(PortableDrive, AHalfFileThatCannotBeRemovedIsSaid) {
    const std::string path = at("stick") + "\\Torvane.exe";
    const std::string row = "Could not Write [" + path + "] for [22] bytes";
    writeFile("stick\\Torvane.exe", "");
    const UniqueFile reader{CreateFileA("stick\\Torvane.exe", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        OPEN_EXISTING, 0, nullptr)};
    const ImportPatched patched(__imp_WriteFile, &failToWrite);
    expectFailure(row + "\nThis file is not whole, and could not be removed.");
    EXPECT_EQ(copy(), 0U);
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre(row, "Could not remove [" + path + "], which is not whole"));
}

TEST_F(PortableDrive, ProgressIsShownWhereScansShowTheirs) {
    user_.expectInform("DISK CREATED", "Technicians Disk Created", [this] { EXPECT_FALSE(view_.progressVisible()); });
    EXPECT_EQ(copy(), 1U);
    EXPECT_EQ(view_.progressMaximum(), 35);
    ASSERT_EQ(view_.statuses().size(), 35U);
    EXPECT_EQ(view_.statuses().front(), "Portable drive: file 1 of 35, Torvane.exe");
    EXPECT_EQ(view_.statuses().back(), "Portable drive: file 35 of 35, license.txt");
    EXPECT_EQ(view_.progress().back(), 35);
}

TEST_F(PortableDrive, AScansProgressIsLeftAlone) {
    scanning_ = true;
    view_.showScanProgress(100);
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    EXPECT_EQ(copy(), 1U);
    EXPECT_THAT(view_.statuses(), IsEmpty());
    EXPECT_EQ(view_.progressMaximum(), 100);
    EXPECT_TRUE(view_.progressVisible());
}

TEST_F(PortableDrive, PercentSignsInAFoldersNameAreText) {
    fs::create_directory("100%s %n");
    expectFailure("Could not create [" + at("100%s %n") + "\\deeper\\Torvane.exe] file. Disk Creation Terminated.");
    EXPECT_EQ(CopyPortableFiles(at("100%s %n\\deeper"), place()), 0U);
    expectOnly("ERROR",
               "Could not create [" + at("100%s %n") + "\\deeper\\Torvane.exe] file. Disk Creation Terminated.");
}

TEST_F(PortableDrive, TheWorkerCopiesIntoTheFolderThatWasChosen) {
    const testing::StartedThreads threads;
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    ASSERT_TRUE(startPortableCopy(at("stick"), place()));
    EXPECT_EQ(testing::StartedThreads::awaitLast(), 1U);
    EXPECT_EQ(copied().size(), 34U);
    EXPECT_TRUE(appState().jobs.atWork().empty()) << "the copy is no job that others wait for";
}

TEST_F(PortableDrive, TheWorkerEndsWithZeroOnAFailure) {
    const testing::StartedThreads threads;
    expectFailure("Could not create [" + at("nowhere") + "\\Torvane.exe] file. Disk Creation Terminated.");
    ASSERT_TRUE(startPortableCopy(at("nowhere"), place()));
    EXPECT_EQ(testing::StartedThreads::awaitLast(), 0U);
}

TEST_F(PortableDrive, TwoCopiesMayRunAtOnce) {
    const testing::StartedThreads threads;
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    user_.expectInform("DISK CREATED", "Technicians Disk Created");
    fs::create_directory("another");
    ASSERT_TRUE(startPortableCopy(at("stick"), place()));
    ASSERT_TRUE(startPortableCopy(at("another"), place()));
    testing::StartedThreads::awaitAll();
    EXPECT_EQ(readFile("stick\\license.txt"), readFile("another\\license.txt"));
    EXPECT_EQ(copied().size(), 34U);
}

TEST_F(PortableDrive, AThreadThatCannotBeStartedIsLogged) {
    const ImportPatched patched(__imp_CreateThread, &startNoThread);
    EXPECT_FALSE(startPortableCopy(at("stick"), place()));
    expectOnly("ERROR", "Could not start the copy of the portable drive's files");
}

} // namespace
} // namespace torvane
