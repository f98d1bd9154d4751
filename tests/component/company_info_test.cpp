#include "settings/company_info_file.h"

#include "state/app_state.h"
#include "tests/component/import_patched.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"
#include "ui/owned.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <string>

extern "C" {
extern decltype(&CreateFileA) __imp_CreateFileA; // NOLINT: the linker's names
extern decltype(&ReadFile) __imp_ReadFile;       // NOLINT
extern decltype(&WriteFile) __imp_WriteFile;     // NOLINT
extern decltype(&MoveFileExW) __imp_MoveFileExW; // NOLINT
}

namespace torvane::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kFile = "Config.db";

/// A text in a field of 256 bytes.
std::string field(const std::string& text) {
    return text + std::string(256 - text.size(), '\0');
}

std::string record(const std::string& name, const std::string& address, const std::string& phone) {
    return field(name) + field(address) + field(phone);
}

// A disk that fails, and one that is full after 300 bytes.
BOOL WINAPI failToRead(HANDLE, LPVOID, DWORD, LPDWORD, LPOVERLAPPED) {
    SetLastError(ERROR_CRC);
    return FALSE;
}
BOOL WINAPI failToWrite(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) {
    SetLastError(ERROR_CRC);
    return FALSE;
}
BOOL WINAPI writeABit(HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED) {
    *written = 300;
    return TRUE;
}

// Windows opens no read-only file for writing, whoever asks; Wine does for root, as the host's own system does.
HANDLE WINAPI createUnlessReadOnly(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                                   DWORD disposition, DWORD flags, HANDLE model) {
    const DWORD attributes = GetFileAttributesA(name);
    const bool readOnly = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    if (readOnly && ((access & GENERIC_WRITE) != 0 || disposition == CREATE_ALWAYS)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return CreateFileW(fs::path(name).c_str(), access, share, security, disposition, flags, model);
}

/// Makes the file read-only for a scope.
class ReadOnly {
  public:
    ReadOnly() { EXPECT_TRUE(SetFileAttributesA(kFile, FILE_ATTRIBUTE_READONLY)); }
    ~ReadOnly() { SetFileAttributesA(kFile, FILE_ATTRIBUTE_NORMAL); }
    ReadOnly(const ReadOnly&) = delete;
    ReadOnly& operator=(const ReadOnly&) = delete;

  private:
    ImportPatched<decltype(&CreateFileA)> asWindowsDoes_{__imp_CreateFileA, &createUnlessReadOnly};
};

std::string bytesOf(const CompanyInfo& info) {
    return {reinterpret_cast<const char*>(&info), sizeof(info)};
}

class CompanyInfoFile : public ::testing::Test {
  protected:
    void expectLog(const std::string& category, const std::string& message) const {
        const auto rows = view_.logRows();
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0].category, category);
        EXPECT_EQ(rows[0].message, message);
    }
    /// Loading finds a file that it can neither open nor make anew: that is told, the defaults hold, the file stays.
    void expectToldAndLeftAlone(const std::string& file) {
        user_.expectStop("***** ERROR ON CONFIG FILE CREATE *****",
                         "Could not create [Config.db] config file. Using default");
        EXPECT_EQ(LoadCompanyInfo(info_), 0);
        expectLog("ERROR", "Could not WRITE config file");
        EXPECT_EQ(bytesOf(info_), bytesOf(defaultCompanyInfo()));
        EXPECT_EQ(readFile(kFile), file);
    }
    void expectReadError() {
        user_.expectStop("***** ERROR ON CONFIG FILE READ *****", "Could not read data from config file");
    }
    void expectWriteError() {
        user_.expectStop("***** ERROR ON CONFIG FILE WRITE *****", "Could not write data to config file");
    }

    /// The file, open in another program that lets nobody write.
    static UniqueFile holdOpen() {
        return UniqueFile{CreateFileA(kFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)};
    }
    ScratchFolder folder_;
    RecordingMainView view_;
    ViewInstalled installed_{appState(), view_};
    ScriptedPrompts user_;
    CompanyInfo info_;
};

// --- loading ---

TEST_F(CompanyInfoFile, IsMadeFromTheDefaultsAtTheFirstStart) {
    EXPECT_EQ(LoadCompanyInfo(info_), 1);
    const std::string bytes = readFile(kFile);
    EXPECT_EQ(bytes.size(), 768U);
    EXPECT_EQ(bytes.substr(0, 256), field("KVL Data"));
    EXPECT_EQ(bytes, bytesOf(defaultCompanyInfo()));
    EXPECT_EQ(bytesOf(info_), bytes);
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

TEST_F(CompanyInfoFile, IsLoadedByteForByte) {
    const std::string bytes = record("Northgate Drive Rescue",
                                     "M\xC3\xBCller-Stra\xDF"
                                     "e 1",
                                     "+44 117 496 0123");
    writeFile(kFile, bytes);
    EXPECT_EQ(LoadCompanyInfo(info_), 1);
    EXPECT_EQ(bytesOf(info_), bytes);
    EXPECT_EQ(info_.companyName.view(), "Northgate Drive Rescue");
    EXPECT_EQ(info_.companyPhone.view(), "+44 117 496 0123");
    EXPECT_EQ(readFile(kFile), bytes) << "loading changes nothing";
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

TEST_F(CompanyInfoFile, WithoutTerminatorsIsReadWithinItsFields) {
    writeFile(kFile, std::string(256, 'a') + std::string(256, 'b') + std::string(256, 'c'));
    EXPECT_EQ(LoadCompanyInfo(info_), 1);
    EXPECT_EQ(info_.companyName.view(), std::string(255, 'a'));
    EXPECT_EQ(info_.companyAddress.view(), std::string(255, 'b'));
    EXPECT_EQ(info_.companyPhone.view(), std::string(255, 'c'));
}

TEST_F(CompanyInfoFile, ThatIsLongerIsReadAtItsStart) {
    writeFile(kFile, record("a", "b", "c") + "more");
    EXPECT_EQ(LoadCompanyInfo(info_), 1);
    EXPECT_EQ(bytesOf(info_), record("a", "b", "c"));
}

TEST_F(CompanyInfoFile, ThatIsTooShortIsToldAndLeavesWhatCouldBeRead) {
    const std::string start = record("Short & Co", "Half", "").substr(0, 300);
    writeFile(kFile, start);
    expectReadError();
    EXPECT_EQ(LoadCompanyInfo(info_), 0);
    expectLog("ERROR", "Could not READ config file. Using default");
    EXPECT_EQ(bytesOf(info_), start + bytesOf(defaultCompanyInfo()).substr(300));
    EXPECT_EQ(readFile(kFile), start);
}

TEST_F(CompanyInfoFile, ThatLacksOneByteIsToldToo) {
    writeFile(kFile, record("a", "b", "c").substr(0, 767));
    expectReadError();
    EXPECT_EQ(LoadCompanyInfo(info_), 0);
    EXPECT_EQ(bytesOf(info_), record("a", "b", "c"));
}

TEST_F(CompanyInfoFile, ThatIsEmptyLeavesTheDefaults) {
    writeFile(kFile, "");
    expectReadError();
    EXPECT_EQ(LoadCompanyInfo(info_), 0);
    expectLog("ERROR", "Could not READ config file. Using default");
    EXPECT_EQ(bytesOf(info_), bytesOf(defaultCompanyInfo()));
    EXPECT_EQ(fs::file_size(kFile), 0U);
}

TEST_F(CompanyInfoFile, ThatCannotBeReadIsTold) {
    writeFile(kFile, record("a", "b", "c"));
    const ImportPatched failing(__imp_ReadFile, &failToRead);
    expectReadError();
    EXPECT_EQ(LoadCompanyInfo(info_), 0);
    expectLog("ERROR", "Could not READ config file. Using default");
    EXPECT_EQ(info_.companyName.view(), "KVL Data");
}

TEST_F(CompanyInfoFile, ThatCannotBeOpenedNorMadeIsTold) {
    writeFile(kFile, record("a", "b", "c"));
    const UniqueFile held = holdOpen();
    ASSERT_TRUE(held);
    expectToldAndLeftAlone(record("a", "b", "c"));
}

TEST_F(CompanyInfoFile, ThatIsReadOnlyIsToldAndLeavesTheDefaults) {
    writeFile(kFile, record("a", "b", "c"));
    const ReadOnly readOnly;
    expectToldAndLeftAlone(record("a", "b", "c"));
}

TEST_F(CompanyInfoFile, ThatIsMadeButCannotBeWrittenIsTold) {
    for (const auto write : {&failToWrite, &writeABit}) {
        fs::remove(kFile);
        const ImportPatched failing(__imp_WriteFile, write);
        expectWriteError();
        EXPECT_EQ(LoadCompanyInfo(info_), 0);
        EXPECT_EQ(bytesOf(info_), bytesOf(defaultCompanyInfo()));
    }
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("Could not SAVE config file", "Could not SAVE config file"));
}

TEST_F(CompanyInfoFile, InWhosePlaceAFolderStandsIsTold) {
    fs::create_directory(kFile);
    user_.expectStop("***** ERROR ON CONFIG FILE CREATE *****",
                     "Could not create [Config.db] config file. Using default");
    EXPECT_EQ(LoadCompanyInfo(info_), 0);
    EXPECT_EQ(bytesOf(info_), bytesOf(defaultCompanyInfo()));
}

// --- saving ---

class CompanyInfoSaved : public CompanyInfoFile {
  protected:
    CompanyInfoSaved() {
        writeFile(kFile, record("old", "old", "old"));
        EXPECT_EQ(LoadCompanyInfo(info_), 1);
    }
    void expectSaved() { user_.expectStop("***** CONFIG FILE SAVED *****", "Config file successfully saved."); }
};

TEST_F(CompanyInfoSaved, IsWrittenAndKept) {
    expectSaved();
    EXPECT_EQ(SaveCompanyInfo(info_, "Northgate", "12 Harbour Road", "+44 117"), 1);
    EXPECT_EQ(readFile(kFile), record("Northgate", "12 Harbour Road", "+44 117"));
    EXPECT_EQ(bytesOf(info_), readFile(kFile));
    expectLog("SUCCESS", "Config file SAVED");
}

TEST_F(CompanyInfoSaved, LeavesNothingOfLongerTexts) {
    expectSaved();
    EXPECT_EQ(SaveCompanyInfo(info_, std::string(255, 'x'), std::string(255, 'y'), std::string(255, 'z')), 1);
    expectSaved();
    EXPECT_EQ(SaveCompanyInfo(info_, "a", "", "c"), 1);
    EXPECT_EQ(readFile(kFile), record("a", "", "c"));
}

TEST_F(CompanyInfoSaved, CutsTextsAt255Bytes) {
    expectSaved();
    EXPECT_EQ(SaveCompanyInfo(info_, std::string(256, 'x'), std::string(5000, 'y'), std::string(255, 'z')), 1);
    EXPECT_EQ(readFile(kFile), record(std::string(255, 'x'), std::string(255, 'y'), std::string(255, 'z')));
}

TEST_F(CompanyInfoSaved, KeepsForeignTexts) {
    expectSaved();
    EXPECT_EQ(SaveCompanyInfo(info_, "\xC5\x81\xC3\xB3\x64\xC5\xBA", "\xE6\x9D\xB1\xE4\xBA\xAC", ""), 1);
    EXPECT_EQ(readFile(kFile), record("\xC5\x81\xC3\xB3\x64\xC5\xBA", "\xE6\x9D\xB1\xE4\xBA\xAC", ""));
}

TEST_F(CompanyInfoSaved, IsWrittenInPlace) {
    writeFile(kFile, record("old", "old", "old") + "what follows");
    expectSaved();
    EXPECT_EQ(SaveCompanyInfo(info_, "a", "b", "c"), 1);
    EXPECT_EQ(readFile(kFile), record("a", "b", "c") + "what follows");
}

TEST_F(CompanyInfoSaved, MakesAShortFileWhole) {
    writeFile(kFile, "short");
    expectSaved();
    EXPECT_EQ(SaveCompanyInfo(info_, "a", "b", "c"), 1);
    EXPECT_EQ(readFile(kFile), record("a", "b", "c"));
}

TEST_F(CompanyInfoSaved, WithoutAFileChangesNothing) {
    fs::remove(kFile);
    user_.expectStop("***** ERROR ON CONFIG FILE SAVE *****",
                     "Could not open [Config.db] config file. Config not saved");
    EXPECT_EQ(SaveCompanyInfo(info_, "new", "new", "new"), 0);
    expectLog("ERROR", "Could not WRITE config file");
    EXPECT_EQ(bytesOf(info_), record("old", "old", "old"));
    EXPECT_FALSE(fs::exists(kFile)) << "saving makes no file";
}

TEST_F(CompanyInfoSaved, OverAFileThatCannotBeOpenedChangesNothing) {
    const UniqueFile held = holdOpen();
    ASSERT_TRUE(held);
    user_.expectStop("***** ERROR ON CONFIG FILE SAVE *****",
                     "Could not open [Config.db] config file. Config not saved");
    EXPECT_EQ(SaveCompanyInfo(info_, "new", "new", "new"), 0);
    EXPECT_EQ(bytesOf(info_), record("old", "old", "old"));
    EXPECT_EQ(readFile(kFile), record("old", "old", "old"));
}

TEST_F(CompanyInfoSaved, OverAReadOnlyFileChangesNothing) {
    const ReadOnly readOnly;
    user_.expectStop("***** ERROR ON CONFIG FILE SAVE *****",
                     "Could not open [Config.db] config file. Config not saved");
    EXPECT_EQ(SaveCompanyInfo(info_, "new", "new", "new"), 0);
    expectLog("ERROR", "Could not WRITE config file");
    EXPECT_EQ(bytesOf(info_), record("old", "old", "old"));
    EXPECT_EQ(readFile(kFile), record("old", "old", "old"));
}

TEST_F(CompanyInfoSaved, OverAFileThatCannotBeWrittenChangesNothing) {
    for (const auto write : {&failToWrite, &writeABit}) {
        const ImportPatched failing(__imp_WriteFile, write);
        expectWriteError();
        EXPECT_EQ(SaveCompanyInfo(info_, "new", "new", "new"), 0);
    }
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("Could not SAVE config file", "Could not SAVE config file"));
    EXPECT_EQ(bytesOf(info_), record("old", "old", "old"));
    EXPECT_EQ(readFile(kFile), record("old", "old", "old"));
}

BOOL WINAPI failToMove(LPCWSTR, LPCWSTR, DWORD) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

TEST_F(CompanyInfoSaved, OverAFileThatCannotBeReplacedChangesNothing) {
    {
        const ImportPatched failing(__imp_MoveFileExW, &failToMove);
        expectWriteError();
        EXPECT_EQ(SaveCompanyInfo(info_, "new", "new", "new"), 0);
    }
    expectLog("ERROR", "Could not SAVE config file");
    EXPECT_EQ(bytesOf(info_), record("old", "old", "old"));
    EXPECT_EQ(readFile(kFile), record("old", "old", "old"));
    EXPECT_FALSE(fs::exists("Config.db.new"));
}

TEST_F(CompanyInfoSaved, OverAFileThatCannotBeReadChangesNothing) {
    {
        const ImportPatched failing(__imp_ReadFile, &failToRead);
        expectWriteError();
        EXPECT_EQ(SaveCompanyInfo(info_, "new", "new", "new"), 0);
    }
    EXPECT_EQ(bytesOf(info_), record("old", "old", "old"));
    EXPECT_EQ(readFile(kFile), record("old", "old", "old"));
}

TEST_F(CompanyInfoSaved, OverAFileThatIsFarTooLargeChangesNothing) {
    const std::string large((std::size_t{1} << 20) + 1, 'x');
    writeFile(kFile, large);
    expectWriteError();
    EXPECT_EQ(SaveCompanyInfo(info_, "new", "new", "new"), 0);
    EXPECT_TRUE(readFile(kFile) == large);
}

} // namespace
} // namespace torvane::testing
