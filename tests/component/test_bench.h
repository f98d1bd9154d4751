#pragma once

#include "tests/component/handle_count.h"
#include "tests/component/package_folder.h"
#include "tests/component/scratch_folder.h"
#include "tests/ui/driver/wait.h"
#include "workbench/bench_client.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace torvane::testing {

/// As a drive's slowness or a tool's delay: until the test tells the bench to hurry. Milliseconds.
inline constexpr const char* kUntilToldToHurry = "120000";

/// A bench of the test's own in a folder of its own, which is also the current folder. Describe it, then open it; it
/// ends with the scope.
///
///     TestBench bench;
///     bench.addDrive(R"({"number": 1, "bus": "usb", "size": "64 MiB"})");
///     bench.open();
class TestBench {
  public:
    TestBench() { std::filesystem::create_directories(benchFolder() / "drives"); }

    /// A drive's description in JSON.
    void addDrive(std::string_view json) {
        writeFile((benchFolder() / "drives" / (std::to_string(++drives_) + ".json")).string(), json);
    }
    /// The description of the bench itself in JSON.
    void describe(std::string_view json) { writeFile((benchFolder() / "bench.json").string(), json); }

    /// Places the real smartctl.exe in the current folder, where the system looks for programs.
    static void provideSmartctl() {
        std::error_code error;
        std::filesystem::copy_file(packageFolder() / "smartctl.exe", "smartctl.exe", error);
        ASSERT_FALSE(error) << error.message();
    }

    void open() {
        if (!std::filesystem::exists(benchFolder() / "bench.json")) {
            describe("{}");
        }
        ASSERT_EQ(bench_.open(benchFolder()), "");
    }

    /// The drive vanishes, for every process on the bench.
    void unplug(int drive) { ASSERT_TRUE(bench_.unplug(drive)); }

    /// It is there again.
    void plug(int drive) { ASSERT_TRUE(bench_.plug(drive)); }

    /// Another one of equal size takes the drive's place; called again, the drive takes its own.
    void swap(int drive) { ASSERT_TRUE(bench_.swap(drive)); }

    /// From now on nothing on the bench takes its time; what waits goes on.
    void hurry() const { writeFile((benchFolder() / "hurry").string(), ""); }

    /// Waits until the log has so many lines that `log` finds; false when they do not come.
    [[nodiscard]] bool awaitLog(const std::string& fields, std::size_t lines = 1) const {
        return driver::waitUntil([&] { return log(fields).size() >= lines; });
    }

    /// The log's lines that have every one of the blank-separated `fields`, oldest first. A field that ends in ':' or
    /// '=' stands for all that begin so.
    [[nodiscard]] std::vector<std::string> log(const std::string& fields = "") const {
        std::vector<std::string> lines = bench_.logLines();
        std::istringstream words(fields);
        for (std::string field; words >> field;) {
            const bool beginning = field.ends_with(':') || field.ends_with('=');
            const std::string wanted = " " + field + (beginning ? "" : " ");
            std::erase_if(lines,
                          [&](const std::string& line) { return (line + " ").find(wanted) == std::string::npos; });
        }
        return lines;
    }

  private:
    [[nodiscard]] std::filesystem::path benchFolder() const { return folder_.path() / "bench"; }

    ScratchFolder folder_;
    bench::Bench bench_;
    int drives_ = 0;
};

} // namespace torvane::testing
