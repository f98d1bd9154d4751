#include "state/day_log_file.h"

#include "state/log_row.h"
#include "tests/component/import_patched.h"
#include "tests/component/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <sstream>
#include <thread>
#include <vector>

// The import slots of the functions that are replaced. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&WriteFile) __imp_WriteFile;
extern decltype(&FlushFileBuffers) __imp_FlushFileBuffers;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr LocalMoment kEvening{.year = 2026, .month = 11, .day = 22, .hour = 23, .minute = 59, .second = 59};
constexpr LocalMoment kMidnight{.year = 2026, .month = 11, .day = 23, .hour = 0, .minute = 0, .second = 0};
constexpr const char* kFile = "Torvane 2026-11-22.log";

class DayLog : public ::testing::Test {
  protected:
    /// What the user is told; "" for nothing.
    static std::string append(DayLogFile& file, const std::string& message, const LocalMoment& when = kEvening) {
        return file.append(when, makeLogRow("JOB", when, message)).value_or("");
    }
    [[nodiscard]] std::string folder() const { return folder_.path().string(); }

    ScratchFolder folder_;
    DayLogFile file_{folder()};
};

std::vector<std::string> linesOf(const std::string& fileName) {
    std::vector<std::string> lines;
    std::istringstream text(readFile(fileName));
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST_F(DayLog, GrowsRowByRow) {
    EXPECT_EQ(append(file_, "first"), "");
    EXPECT_EQ(readFile(kFile), "JOB\t11/22/2026\t23:59:59\tfirst\r\n");
    EXPECT_EQ(append(file_, "second"), "");
    EXPECT_EQ(readFile(kFile), "JOB\t11/22/2026\t23:59:59\tfirst\r\nJOB\t11/22/2026\t23:59:59\tsecond\r\n");
}

TEST_F(DayLog, GoesOnWhereAnEarlierRunEnded) {
    writeFile(kFile, "from the morning\r\n");
    append(file_, "evening");
    EXPECT_EQ(readFile(kFile), "from the morning\r\nJOB\t11/22/2026\t23:59:59\tevening\r\n");
}

TEST_F(DayLog, BeginsANewFileAtMidnight) {
    append(file_, "late");
    append(file_, "early", kMidnight);
    EXPECT_EQ(linesOf(kFile).size(), 1U);
    EXPECT_EQ(readFile("Torvane 2026-11-23.log"), "JOB\t11/23/2026\t00:00:00\tearly\r\n");
}

TEST_F(DayLog, LiesInItsFolderWhateverTheCurrentOneIs) {
    fs::create_directory("elsewhere");
    fs::current_path("elsewhere");
    append(file_, "row");
    fs::current_path("..");
    EXPECT_TRUE(fs::exists(kFile));
    EXPECT_TRUE(fs::is_empty("elsewhere"));
}

int flushes = 0;
decltype(&FlushFileBuffers) realFlush = nullptr;
BOOL WINAPI countFlush(HANDLE file) {
    ++flushes;
    return realFlush(file);
}

TEST_F(DayLog, IsFlushedOnceForRowsInQuickSuccessionThatAreNoJobs) {
    const ImportPatched counted(__imp_FlushFileBuffers, &countFlush);
    realFlush = counted.original();
    flushes = 0;
    const LogRow row = makeLogRow("ERROR", kEvening, "a bad block");
    const ULONGLONG begin = GetTickCount64();
    EXPECT_EQ(file_.append(kEvening, row), std::nullopt);
    EXPECT_EQ(flushes, 1) << "a row alone is safe at once";
    constexpr int kRows = 50;
    for (int i = 0; i < kRows; ++i) {
        EXPECT_EQ(file_.append(kEvening, row), std::nullopt);
    }
    EXPECT_LE(flushes, 1 + static_cast<int>((GetTickCount64() - begin) / 1000)) << "one a second";
    const int before = flushes;
    append(file_, "ended");
    EXPECT_EQ(flushes, before + 1) << "a job's row is, with all before";
    EXPECT_EQ(linesOf(kFile).size(), std::size_t{kRows} + 2);
    Sleep(1100);
    EXPECT_EQ(file_.append(kEvening, row), std::nullopt);
    EXPECT_EQ(flushes, before + 2);
}

TEST_F(DayLog, IsFlushedWithEveryRowOfAJob) {
    const ImportPatched counted(__imp_FlushFileBuffers, &countFlush);
    realFlush = counted.original();
    flushes = 0;
    append(file_, "first");
    EXPECT_EQ(flushes, 1);
    append(file_, "second");
    EXPECT_EQ(flushes, 2);
}

// Each writer has a handle of its own for each row, as another program would.
TEST_F(DayLog, TakesTheRowsOfManyWritersWhole) {
    constexpr int kWriters = 4;
    constexpr int kRows = 50;
    std::vector<std::thread> threads;
    threads.reserve(kWriters);
    for (int writer = 0; writer < kWriters; ++writer) {
        threads.emplace_back([this, writer] {
            DayLogFile own(folder());
            for (int row = 0; row < kRows; ++row) {
                EXPECT_EQ(append(own, std::string(static_cast<std::size_t>(writer * 100), 'x')), "");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::vector<std::string> lines = linesOf(kFile);
    EXPECT_EQ(lines.size(), static_cast<std::size_t>(kWriters * kRows));
    for (const std::string& line : lines) {
        EXPECT_THAT(line, AllOf(StartsWith("JOB\t11/22/2026\t23:59:59\t"), ::testing::EndsWith("\r")));
    }
}

TEST_F(DayLog, LetsOthersReadMoveAndDeleteIt) {
    append(file_, "first");
    fs::rename(kFile, "moved.log");
    append(file_, "second");
    EXPECT_EQ(linesOf(kFile).size(), 1U);
    fs::remove(kFile);
    append(file_, "third");
    EXPECT_EQ(linesOf(kFile).size(), 1U);
}

TEST_F(DayLog, KeepsTheRowsOfJobsWhenItIsFullAndBoundsThem) {
    DayLogFile small(folder(), 100);
    writeFile(kFile, std::string(200, 'x') + "\r\n");
    EXPECT_EQ(small.append(kEvening, makeLogRow("ERROR", kEvening, "no job's")), std::nullopt);
    EXPECT_EQ(append(small, "begun"), "");
    EXPECT_EQ(append(small, "ended"), "");
    const std::vector<std::string> lines = linesOf(kFile);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1], "JOB\t11/22/2026\t23:59:59\tbegun\r");
    EXPECT_EQ(lines[2], "JOB\t11/22/2026\t23:59:59\tended\r");

    const std::uintmax_t bound = (std::uintmax_t{1} << 20) + 100;
    writeFile(kFile, std::string(bound, 'x'));
    EXPECT_EQ(append(small, "one too many"), "");
    EXPECT_EQ(fs::file_size(kFile), bound);
}

TEST_F(DayLog, WaitsForNoOtherWriterForLong) {
    append(file_, "first");
    const HANDLE other = CreateFileA(kFile, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                     nullptr, OPEN_EXISTING, 0, nullptr);
    OVERLAPPED place{};
    place.OffsetHigh = MAXLONG;
    ASSERT_TRUE(LockFileEx(other, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place));
    EXPECT_EQ(append(file_, "second"), "");
    CloseHandle(other);
    EXPECT_EQ(linesOf(kFile).size(), 2U);
}

TEST_F(DayLog, IsBoundedAndSaysSoInItsLastRow) {
    DayLogFile small(folder(), 100);
    DayLogFile another(folder(), 100);
    const LogRow row = makeLogRow("ERROR", kEvening, "12345678");
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(small.append(kEvening, row), std::nullopt);
        EXPECT_EQ(another.append(kEvening, row), std::nullopt);
    }
    const std::vector<std::string> lines = linesOf(kFile);
    ASSERT_EQ(lines.size(), 4U) << "rows of 37 bytes until there are 100, and the one that says so";
    EXPECT_EQ(lines[2], lines[0]);
    EXPECT_EQ(lines[3], "STATUS\t11/22/2026\t23:59:59\tThis file is full: only JOB rows are kept on this day, 1 MiB of "
                        "them at most\r");
    append(small, "next day", kMidnight);
    EXPECT_EQ(linesOf("Torvane 2026-11-23.log").size(), 1U);
}

// --- what can go wrong ---

TEST_F(DayLog, InAFolderThatIsNotThereIsToldOnce) {
    DayLogFile nowhere(folder() + "\\nowhere");
    EXPECT_THAT(append(nowhere, "first"),
                AllOf(StartsWith("Could not WRITE event log file [" + folder() + "\\nowhere\\" + kFile + "]: "),
                      HasSubstr("(error 3)")));
    EXPECT_EQ(append(nowhere, "second"), "");
    EXPECT_FALSE(fs::exists(kFile));
    EXPECT_FALSE(fs::exists("nowhere"));
}

TEST_F(DayLog, ThatMayNotBeWrittenIsToldOnceAndGoesOnLater) {
    fs::create_directory(kFile);
    EXPECT_THAT(append(file_, "lost"), HasSubstr("(error 5)"));
    fs::remove(kFile);
    EXPECT_EQ(append(file_, "kept"), "");
    fs::remove(kFile);
    fs::create_directory(kFile);
    EXPECT_EQ(append(file_, "lost"), "") << "told once";
    fs::remove(kFile);
    EXPECT_EQ(append(file_, "kept"), "");
    EXPECT_EQ(linesOf(kFile).size(), 1U);
}

BOOL WINAPI writeNothing(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}
decltype(&WriteFile) realWrite = nullptr;
BOOL WINAPI writeABit(HANDLE file, LPCVOID bytes, DWORD, LPDWORD count, LPOVERLAPPED overlapped) {
    return realWrite(file, bytes, 3, count, overlapped);
}

TEST_F(DayLog, OnAFullDiskIsTold) {
    for (const auto write : {&writeNothing, &writeABit}) {
        DayLogFile own(folder());
        const ImportPatched full(__imp_WriteFile, write);
        realWrite = full.original();
        EXPECT_THAT(append(own, "row"), HasSubstr("(error 112)"));
    }
}

BOOL WINAPI flushNothing(HANDLE) {
    SetLastError(ERROR_WRITE_FAULT);
    return FALSE;
}

TEST_F(DayLog, WhoseFlushFailsIsTold) {
    const ImportPatched failing(__imp_FlushFileBuffers, &flushNothing);
    EXPECT_THAT(append(file_, "row"), HasSubstr("(error 29)"));
}

} // namespace
} // namespace torvane::testing
