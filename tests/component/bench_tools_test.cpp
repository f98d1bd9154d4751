#include "base/bytes.h"
#include "tests/component/bench_test_folder.h"
#include "workbench/session/unique_handle.h"

#include <windows.h>

#include <winioctl.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace torvane::testing {
namespace {

using bench::UniqueHandle;

const char* const kSystem = R"({"number": 0, "bus": "sata", "size": "8 MiB", "volumes": [
    {"letter": "C", "extents": [{"offset": "1 MiB", "length": "4 MiB"}],
     "bitLocker": {"state": "unlocked", "protectors": [{"type": "RecoveryPassword", "id": "{1}", "password": "111-222"}]}}]})";
const char* const kData = R"({"number": 1, "bus": "usb", "size": "8 MiB", "volumes": [
    {"letter": "D", "extents": [{"offset": "1 MiB", "length": "2 MiB"}]}]})";

class BenchToolsTest : public BenchTest {
  protected:
    void SetUp() override { openBench(R"({"computer": "PC-7"})", {{"0.json", kSystem}, {"1.json", kData}}); }

    // Starts a command line with its output in a file, waits, and gives the output. `exitCode_` gets the code.
    std::string run(const std::string& commandLine, const std::string& outputName = "output.txt") {
        SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        {
            const UniqueHandle output(CreateFileA(outputName.c_str(), GENERIC_READ | GENERIC_WRITE,
                                                  FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, CREATE_ALWAYS, 0,
                                                  nullptr));
            STARTUPINFOA startup{};
            startup.cb = sizeof(startup);
            startup.dwFlags = STARTF_USESTDHANDLES;
            startup.hStdOutput = startup.hStdError = output.get();
            PROCESS_INFORMATION started{};
            std::string text = commandLine;
            if (CreateProcessA(nullptr, text.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                               &startup, &started) == 0) {
                startError_ = GetLastError();
                return "not started";
            }
            const UniqueHandle process(started.hProcess);
            const UniqueHandle thread(started.hThread);
            WaitForSingleObject(process.get(), INFINITE);
            GetExitCodeProcess(process.get(), &exitCode_);
        }
        return readFile(outputName);
    }
    std::string diskpart(const std::string& script) {
        std::ofstream("script.txt", std::ios::binary) << script;
        return run("diskpart /s script.txt");
    }

    DWORD exitCode_ = 99;
    DWORD startError_ = 0;
};

const std::string kBanner =
    "\r\nMicrosoft DiskPart version 10.0.19041.3636\r\n\r\nCopyright (C) Microsoft Corporation.\r\n"
    "On computer: PC-7\r\n";

TEST_F(BenchToolsTest, DiskpartShowsAndChangesTheReadOnlyAttribute) {
    const std::string rest = "Boot Disk  : No\r\nPagefile Disk  : No\r\nHibernation File Disk  : No\r\n"
                             "Crashdump Disk  : No\r\nClustered Disk  : No\r\n";
    EXPECT_EQ(diskpart("select disk 1\nattributes disk\n"),
              kBanner + "\r\nDisk 1 is now the selected disk.\r\nCurrent Read-only State : No\r\nRead-only  : No\r\n" +
                  rest);
    EXPECT_EQ(exitCode_, 0U);
    EXPECT_EQ(diskpart("select disk 1\nattributes disk set readonly\n"),
              kBanner + "\r\nDisk 1 is now the selected disk.\r\n\r\nDisk attributes set successfully.\r\n");
    EXPECT_EQ(diskpart("select disk 1\nattributes disk\n"),
              kBanner +
                  "\r\nDisk 1 is now the selected disk.\r\nCurrent Read-only State : Yes\r\nRead-only  : Yes\r\n" +
                  rest);
    EXPECT_EQ(bench()
                  .logLines({"program=diskpart.exe target=drive:1 request=diskpart",
                             "script-line=\"attributes disk set readonly\"", "result=ok"})
                  .size(),
              1U);
}

TEST_F(BenchToolsTest, TheAttributeProtectsTheDrive) {
    const UniqueHandle drive(CreateFileA(R"(\\.\PhysicalDrive1)", GENERIC_READ | GENERIC_WRITE,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    std::array<std::uint8_t, 512> sector{};
    DWORD count = 0;
    EXPECT_NE(WriteFile(drive.get(), sector.data(), 512, &count, nullptr), 0);
    diskpart("select disk 1\nattributes disk set readonly\n");
    EXPECT_EQ(WriteFile(drive.get(), sector.data(), 512, &count, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_WRITE_PROTECT));
    diskpart("select disk 1\nattributes disk clear readonly\n");
    EXPECT_NE(WriteFile(drive.get(), sector.data(), 512, &count, nullptr), 0);
}

TEST_F(BenchToolsTest, CleaningTakesTheVolumesAway) {
    const UniqueHandle drive(CreateFileA(R"(\\.\PhysicalDrive1)", GENERIC_READ | GENERIC_WRITE,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    std::vector<std::uint8_t> data(512, 0x77);
    DWORD count = 0;
    ASSERT_NE(WriteFile(drive.get(), data.data(), 512, &count, nullptr), 0);
    SetFilePointer(drive.get(), 1024 * 1024, nullptr, FILE_BEGIN);
    EXPECT_EQ(WriteFile(drive.get(), data.data(), 512, &count, nullptr), 0);
    EXPECT_EQ(diskpart("select disk 1\nclean\n"),
              kBanner + "\r\nDisk 1 is now the selected disk.\r\n\r\nDiskPart succeeded in cleaning the disk.\r\n");
    EXPECT_NE(WriteFile(drive.get(), data.data(), 512, &count, nullptr), 0);
    EXPECT_EQ(CreateFileA(R"(\\.\D:)", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    SetFilePointer(drive.get(), 0, nullptr, FILE_BEGIN);
    ASSERT_NE(ReadFile(drive.get(), data.data(), 512, &count, nullptr), 0);
    EXPECT_EQ(data[0], 0); // the first mebibyte was overwritten
}

/// Style (0: MBR, 2: raw) and count of entries that the drive's partition table has now.
std::pair<std::uint32_t, std::uint32_t> tableOf(const char* path) {
    const UniqueHandle drive(
        CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    std::array<std::uint8_t, 4096> layout{};
    DWORD count = 0;
    EXPECT_NE(DeviceIoControl(drive.get(), IOCTL_DISK_GET_DRIVE_LAYOUT_EX, nullptr, 0, layout.data(),
                              static_cast<DWORD>(layout.size()), &count, nullptr),
              0);
    return {loadLe32(layout, 0), loadLe32(layout, 4)};
}

TEST_F(BenchToolsTest, CleaningLeavesNoPartitions) {
    EXPECT_EQ(tableOf(R"(\\.\PhysicalDrive1)"), std::pair(0U, 4U));
    diskpart("select disk 1\nclean\n");
    EXPECT_EQ(tableOf(R"(\\.\PhysicalDrive1)"), std::pair(2U, 0U));
}

TEST_F(BenchToolsTest, CleaningADriveInAnothersPlaceLeavesTheOtherAlone) {
    ASSERT_TRUE(bench().swap(1));
    EXPECT_TRUE(diskpart("select disk 1\nclean\n").ends_with("DiskPart succeeded in cleaning the disk.\r\n"));
    ASSERT_TRUE(bench().swap(1));
    EXPECT_EQ(tableOf(R"(\\.\PhysicalDrive1)"), std::pair(0U, 4U));
    ASSERT_TRUE(bench().swap(0));
    EXPECT_TRUE(diskpart("select disk 0\nclean\n").ends_with("DiskPart succeeded in cleaning the disk.\r\n"))
        << "C: is not on it";
}

TEST_F(BenchToolsTest, TheSystemDiskIsNotCleaned) {
    const std::string output = diskpart("select disk 0\nclean\n");
    EXPECT_NE(output.find("Virtual Disk Service error:\r\n"), std::string::npos);
    EXPECT_EQ(exitCode_, 4U);
}

TEST_F(BenchToolsTest, AutomountIsKept) {
    EXPECT_EQ(diskpart("automount\n"), kBanner + "\r\nAutomatic mounting of new volumes enabled.\r\n");
    EXPECT_EQ(diskpart("automount disable\nautomount scrub\n"),
              kBanner + "\r\nAutomatic mounting of new volumes disabled.\r\n"
                        "\r\nDiskPart successfully scrubbed the mount point settings in the system.\r\n"
                        "\r\nAutomatic mounting of new volumes disabled.\r\n");
    EXPECT_EQ(diskpart("automount\n"), kBanner + "\r\nAutomatic mounting of new volumes disabled.\r\n");
}

TEST_F(BenchToolsTest, ToolsAreRedirectedByAnyPath) {
    std::ofstream("script.txt", std::ios::binary) << "automount\n";
    const std::string expected = kBanner + "\r\nAutomatic mounting of new volumes enabled.\r\n";
    EXPECT_EQ(run("diskpart.exe /s script.txt"), expected);
    EXPECT_EQ(run("DISKPART /s script.txt"), expected);
    EXPECT_EQ(run(R"("C:\Windows\System32\diskpart.exe" /s script.txt)"), expected);
    EXPECT_EQ(bench().logLines({"target=bench request=start", "result=ok"}).size(), 3U);
}

TEST_F(BenchToolsTest, PowershellListsKeyProtectors) {
    EXPECT_EQ(
        run("powershell -windowstyle hidden (Get-BitLockerVolume -MountPoint C).KeyProtector"),
        "\r\n\r\nKeyProtectorId      : {1}\r\nAutoUnlockProtector : \r\nKeyProtectorType    : RecoveryPassword\r\n"
        "KeyFileName         : \r\nRecoveryPassword    : 111-222\r\nKeyCertificateType  : \r\n"
        "Thumbprint          : \r\n\r\n\r\n\r\n");
    EXPECT_EQ(run("powershell -windowstyle hidden (Get-BitLockerVolume -MountPoint D).KeyProtector"), "");
    EXPECT_EQ(exitCode_, 0U);
}

TEST_F(BenchToolsTest, PowershellOpensDocumentsInTheLogOnly) {
    EXPECT_EQ(run("powershell Start-Process Report.pdf"), "");
    EXPECT_EQ(bench().logLines({"request=powershell", "opened=\"Report.pdf\"", "result=ok"}).size(), 1U);
}

TEST_F(BenchToolsTest, AChildMeetsTheSameDrives) {
    // The command interpreter starts the tool itself: it is on the bench as we are.
    EXPECT_EQ(run("cmd /c powershell Start-Process deep"), "");
    EXPECT_EQ(bench().logLines({"program=cmd.exe", "request=start", "powershell"}).size(), 1U);
    EXPECT_EQ(bench().logLines({"opened=\"deep\""}).size(), 1U);
}

TEST_F(BenchToolsTest, AMissingProgramIsMissing) {
    EXPECT_EQ(run("no-such-program.exe --version"), "not started");
    EXPECT_EQ(startError_, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(BenchToolsTest, ProcessesDoNotLoseEachOthersChanges) {
    std::ofstream("set.txt", std::ios::binary) << "select disk 1\nattributes disk set readonly\n";
    std::ofstream("mount.txt", std::ios::binary) << "automount disable\n";
    std::thread first([&] { run("diskpart /s set.txt", "first.txt"); });
    std::thread second([&] { run("diskpart /s mount.txt", "second.txt"); });
    first.join();
    second.join();
    const std::string both = diskpart("automount\nselect disk 1\nattributes disk\n");
    EXPECT_NE(both.find("volumes disabled."), std::string::npos);
    EXPECT_NE(both.find("State : Yes"), std::string::npos);
}

TEST_F(BenchToolsTest, ToolsMisbehaveAsDescribed) {
    openBench(R"({"tools": {"diskpart": {"output": "nothing\r\n", "exitCode": 7, "delayMilliseconds": 50},
                            "powershell": {"missing": true}}})",
              {});
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(diskpart("automount disable\n"), "nothing\r\n");
    EXPECT_GE(GetTickCount64() - start, 50U);
    EXPECT_EQ(exitCode_, 7U);
    EXPECT_EQ(run("powershell Start-Process x"), "not started");
    EXPECT_EQ(startError_, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(BenchToolsTest, ADelayLastsUntilTheBenchIsToHurry) {
    openBench(R"({"tools": {"diskpart": {"output": "at last\r\n", "delayMilliseconds": 60000}}})", {});
    const ULONGLONG start = GetTickCount64();
    std::string output;
    std::thread tool([&] { output = diskpart("automount\n"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_TRUE(bench().logLines({"request=diskpart"}).empty()) << "it does not wait";
    hurry();
    tool.join();
    EXPECT_EQ(output, "at last\r\n");
    EXPECT_LT(GetTickCount64() - start, 60000U);
}

TEST_F(BenchToolsTest, OnlyTheCommandsThatAreNamedAreDelayed) {
    constexpr ULONGLONG kTooLong = 300000;
    openBench(R"({"tools": {"diskpart": {"delayMilliseconds": )" + std::to_string(kTooLong) +
                  R"(, "delayOnly": "slow.txt"}}})",
              {});
    const ULONGLONG start = GetTickCount64();
    EXPECT_NE(diskpart("automount\n").find("volumes enabled."), std::string::npos);
    std::ofstream("slow.txt", std::ios::binary) << "automount disable\n";
    std::thread slow([this] { run("diskpart /s slow.txt", "slow output.txt"); });
    EXPECT_TRUE(awaitLog({"request=start", "slow.txt"}));
    Sleep(300); // a command that is not delayed would be done
    EXPECT_TRUE(bench().logLines({"request=diskpart", "slow.txt"}).empty());
    hurry();
    slow.join();
    EXPECT_EQ(bench().logLines({"request=diskpart", "slow.txt"}).size(), 1U);
    EXPECT_LT(GetTickCount64() - start, kTooLong);
}

} // namespace
} // namespace torvane::testing
