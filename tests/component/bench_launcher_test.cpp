#include "tests/component/scratch_folder.h"
#include "workbench/session/unique_handle.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace torvane::testing {
namespace {

using bench::UniqueHandle;

// A folder of the build, by a file in it: looked for beside the test program's folder and every folder above.
std::filesystem::path findInBuild(const std::filesystem::path& name) {
    std::array<wchar_t, 1024> path{};
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    std::filesystem::path folder(std::wstring(path.data(), length));
    while (folder.has_relative_path()) {
        folder = folder.parent_path();
        if (std::filesystem::exists(folder / name)) {
            return folder / name;
        }
    }
    ADD_FAILURE() << name << " is not in the build";
    return {};
}

// The shipped programs, started by the launcher from outside: this process is on no bench.
class BenchLauncherTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directories("bench/drives");
        put("bench.json", "{}");
        put("drives/0.json", R"({"number": 0, "bus": "sata", "size": "1 GiB", "road": "ata",
            "identity": {"product": "Disk Zero"},
            "ata": {"model": "Disk Zero 1G", "serial": "Z-0001", "rotationRate": "ssd", "security": "enabled",
                    "smart": {"attributes": [{"id": 5, "raw": 7, "value": 3, "threshold": 5, "flags": 51},
                                             {"id": 9, "raw": 8123}, {"id": 197, "raw": 12}],
                              "errorLog": [{"lba": 100, "hours": 20}, {"lba": 200, "hours": 21}, {"lba": 100, "hours": 22}]}}})");
        put("drives/2.json", R"({"number": 2, "bus": "usb", "size": "1 GiB", "road": "sat",
            "identity": {"vendor": "V", "product": "P"}, "ata": {"smart": {"readDataFails": true}}})");
        put("drives/5.json", R"({"number": 5, "bus": "nvme", "size": "1 GiB", "road": "nvme-query",
            "identity": {"product": "N"}})");
    }

    static void put(const std::string& name, const std::string& content) {
        std::ofstream("bench/" + name, std::ios::binary | std::ios::trunc) << content;
    }

    // Runs the launcher and gives what it and its program printed. `exitCode_` gets its exit code.
    std::string launch(const std::string& arguments) {
        SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        {
            const UniqueHandle output(CreateFileA("output.txt", GENERIC_READ | GENERIC_WRITE,
                                                  FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, CREATE_ALWAYS, 0,
                                                  nullptr));
            STARTUPINFOA startup{};
            startup.cb = sizeof(startup);
            startup.dwFlags = STARTF_USESTDHANDLES;
            startup.hStdOutput = startup.hStdError = output.get();
            std::string text = "\"" + findInBuild("workbench/bench.exe").string() + "\" " + arguments;
            PROCESS_INFORMATION started{};
            EXPECT_NE(CreateProcessA(nullptr, text.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                                     &startup, &started),
                      0);
            const UniqueHandle process(started.hProcess);
            const UniqueHandle thread(started.hThread);
            WaitForSingleObject(process.get(), INFINITE);
            GetExitCodeProcess(process.get(), &exitCode_);
        }
        return readFile("output.txt");
    }
    std::string smartctl(const std::string& arguments) {
        return launch("bench \"" + findInBuild("package/smartctl.exe").string() + "\" " + arguments);
    }
    // Words of the first line that contains `key`.
    static std::vector<std::string> wordsOfLine(const std::string& output, const std::string& key) {
        std::istringstream lines(output);
        std::vector<std::string> words;
        for (std::string line; words.empty() && std::getline(lines, line);) {
            if (line.find(key) != std::string::npos) {
                std::istringstream rest(line);
                for (std::string word; rest >> word;) {
                    words.push_back(word);
                }
            }
        }
        EXPECT_FALSE(words.empty()) << key << " is not in:\n" << output;
        return words;
    }

    DWORD exitCode_ = 99;

  private:
    ScratchFolder scratch_;
};

TEST_F(BenchLauncherTest, PassesTheExitCodeOn) {
    launch("bench cmd /c exit 37");
    EXPECT_EQ(exitCode_, 37U);
}

TEST_F(BenchLauncherTest, PassesArgumentsAsTheyAre) {
    EXPECT_EQ(launch(R"(bench cmd /c echo one "two three" "\\")"), "one \"two three\" \\\r\n");
}

TEST_F(BenchLauncherTest, ItsProgramsEndWithTheLauncher) {
    put("bench.json", R"({"tools": {"powershell": {"delayMilliseconds": 60000}}})");
    std::string text = "\"" + findInBuild("workbench/bench.exe").string() + "\" bench cmd /c powershell wait";
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    ASSERT_NE(CreateProcessA(nullptr, text.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr,
                             &startup, &started),
              0);
    const UniqueHandle launcher(started.hProcess);
    const UniqueHandle thread(started.hThread);
    std::string log;
    for (int patience = 6000; log.find("request=start") == std::string::npos && patience > 0; --patience) {
        Sleep(20);
        log = readFile("bench/bench.log");
    }
    const std::size_t at = log.find("pid=");
    ASSERT_NE(at, std::string::npos);
    const UniqueHandle program(OpenProcess(SYNCHRONIZE, FALSE, std::stoul(log.substr(at + 4))));
    ASSERT_TRUE(program);
    EXPECT_EQ(WaitForSingleObject(program.get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
    TerminateProcess(launcher.get(), 1);
    EXPECT_EQ(WaitForSingleObject(program.get(), 120000), WAIT_OBJECT_0);
}

TEST_F(BenchLauncherTest, AWrongDescriptionStartsNothing) {
    put("drives/5.json", R"({"number": 5, "bus": "nvme", "size": "1 GiB", "sectorSize": 1000})");
    const std::string expected = "drives/5.json: sectorSize: expected 512 or 4096, got 1000\r\n";
    EXPECT_EQ(launch("bench cmd /c echo started> started.txt"), expected);
    EXPECT_EQ(exitCode_, 2U);
    EXPECT_FALSE(std::filesystem::exists("started.txt"));
    EXPECT_EQ(launch("--check bench"), expected);
    EXPECT_EQ(exitCode_, 2U);
}

TEST_F(BenchLauncherTest, ChecksWithoutStarting) {
    EXPECT_EQ(launch("--check bench"), "");
    EXPECT_EQ(exitCode_, 0U);
    EXPECT_FALSE(std::filesystem::exists("bench/bench.log"));
    launch("--check nowhere");
    EXPECT_EQ(exitCode_, 2U);
}

TEST_F(BenchLauncherTest, WrongUsageIsTold) {
    for (const char* arguments :
         {"", "bench", "--check", "--lay-out bench", "--unplug bench", "--swap bench", "--frobnicate bench cmd"}) {
        EXPECT_TRUE(launch(arguments).starts_with("usage: bench.exe")) << arguments;
        EXPECT_EQ(exitCode_, 2U) << arguments;
    }
    EXPECT_EQ(launch("--unplug bench 1"), "no drive \"1\" on this bench\r\n");
    EXPECT_EQ(exitCode_, 2U);
    EXPECT_EQ(launch("--swap bench 1"), "no drive \"1\" on this bench\r\n");
    launch("bench no-such-program.exe");
    EXPECT_EQ(exitCode_, 3U);
}

TEST_F(BenchLauncherTest, LaysOutABench) {
    EXPECT_EQ(launch("--lay-out bench copy"), "");
    EXPECT_EQ(launch("--check copy"), "");
    EXPECT_EQ(launch("--lay-out bench copy"), "copy: is not empty\r\n");
    EXPECT_EQ(exitCode_, 2U);
    EXPECT_EQ(launch("--lay-out --fresh bench copy"), "");
}

TEST_F(BenchLauncherTest, ABenchThatWasToldToHurryIsLaidOutAnewAsWell) {
    launch("--lay-out bench copy");
    std::ofstream("copy/hurry").close();
    EXPECT_EQ(launch("--lay-out --fresh bench copy"), "");
    EXPECT_FALSE(std::filesystem::exists("copy/hurry"));
}

TEST_F(BenchLauncherTest, SmartctlListsTheDrivesByTheirNumbers) {
    EXPECT_EQ(smartctl("--scan"), "/dev/sda -d ata # /dev/sda, ATA device\r\n"
                                  "/dev/sdc -d scsi # /dev/sdc, SCSI device\r\n"
                                  "/dev/sdf -d nvme # /dev/sdf, NVMe device\r\n");
    EXPECT_EQ(exitCode_, 0U);
    launch("--unplug bench 2");
    EXPECT_EQ(smartctl("--scan").find("/dev/sdc"), std::string::npos);
    launch("--plug bench 2");
    EXPECT_NE(smartctl("--scan").find("/dev/sdc"), std::string::npos);
}

TEST_F(BenchLauncherTest, SmartctlReadsTheDriveThatIsInPlace) {
    const auto serial = [&] {
        return wordsOfLine(smartctl("/dev/sda -d sat -s on -x -T verypermissive"), "Serial Number:").back();
    };
    EXPECT_EQ(serial(), "Z-0001");
    EXPECT_EQ(launch("--swap bench 0"), "");
    EXPECT_EQ(serial(), "Z-0001-SWAPPED");
    EXPECT_EQ(launch("--swap bench 0"), "");
    EXPECT_EQ(serial(), "Z-0001");
}

TEST_F(BenchLauncherTest, SmartctlReadsTheAttributes) {
    const std::string report = smartctl("/dev/sda -d sat -s on -x -T verypermissive -T verypermissive");
    EXPECT_EQ(wordsOfLine(report, "Device Model:")[2], "Disk");
    EXPECT_EQ(wordsOfLine(report, "Serial Number:")[2], "Z-0001");
    EXPECT_EQ(wordsOfLine(report, "Rotation Rate:")[2], "Solid");
    EXPECT_EQ(wordsOfLine(report, "ATA Security is:")[3], "ENABLED,");
    const std::vector<std::string> reallocated = wordsOfLine(report, "Reallocated_Sector_Ct");
    ASSERT_EQ(reallocated.size(), 8U);
    EXPECT_EQ(reallocated[0], "5");
    EXPECT_EQ(reallocated[6], "NOW");
    EXPECT_EQ(reallocated[7], "7");
    EXPECT_EQ(wordsOfLine(report, "Power_On_Hours")[7], "8123");
    EXPECT_EQ(wordsOfLine(report, "Current_Pending_Sector")[7], "12");
    // No checksum was found wrong.
    EXPECT_EQ(report.find("checksum"), std::string::npos);
}

TEST_F(BenchLauncherTest, SmartctlReadsTheErrorLog) {
    const std::string report = smartctl("/dev/sda -d sat -s on -x -T verypermissive -T verypermissive");
    EXPECT_NE(report.find("Device Error Count: 3"), std::string::npos);
    const std::vector<std::string> newest = wordsOfLine(report, "Error: UNC at LBA");
    ASSERT_EQ(newest.size(), 21U);
    EXPECT_EQ(newest[20], "100");
    EXPECT_NE(report.find("Error: UNC at LBA = 0x000000c8 = 200"), std::string::npos);
    EXPECT_NE(report.find("Error 3 [2] occurred at disk power-on lifetime: 22 hours"), std::string::npos);
}

TEST_F(BenchLauncherTest, SmartctlTellsWhatItCannotRead) {
    EXPECT_NE(smartctl("/dev/sdc -d sat -s on -x -T verypermissive -T verypermissive").find("Read SMART Data failed"),
              std::string::npos);
    EXPECT_NE(smartctl("/dev/sdf -d sat -s on -x -T verypermissive -T verypermissive")
                  .find("Device Model:     [No Information Found]"),
              std::string::npos);
    EXPECT_NE(smartctl("/dev/sdb -d sat -s on -x").find("Open failed, Error=2"), std::string::npos);
}

} // namespace
} // namespace torvane::testing
