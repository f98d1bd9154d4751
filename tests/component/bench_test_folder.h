#pragma once

#include "tests/component/scratch_folder.h"
#include "tests/ui/driver/wait.h"
#include "workbench/bench_client.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torvane::testing {

/// A test whose process is on a bench of its own, laid out from texts in a scratch folder.
class BenchTest : public ::testing::Test {
  protected:
    using Files = std::vector<std::pair<std::string, std::string>>;

    /// Writes bench.json and the drives' files (their names without "drives/") and opens the bench.
    void openBench(const std::string& benchJson, const Files& drives) { ASSERT_EQ(tryBench(benchJson, drives), ""); }
    [[nodiscard]] std::string tryBench(const std::string& benchJson, const Files& drives) {
        std::filesystem::create_directories(benchFolder() / "drives");
        write("bench.json", benchJson);
        for (const auto& [name, json] : drives) {
            write("drives/" + name, json);
        }
        return bench_.open(benchFolder());
    }

    /// From now on nothing on the bench takes its time.
    void hurry() const { write("hurry", ""); }

    /// Waits for a line of the log with every one of these texts; false when none comes.
    [[nodiscard]] bool awaitLog(std::initializer_list<std::string_view> texts) const {
        return driver::waitUntil([&] { return !bench_.logLines(texts).empty(); });
    }

    [[nodiscard]] std::filesystem::path benchFolder() const { return scratch_.path() / "bench"; }
    [[nodiscard]] const std::filesystem::path& scratchFolder() const { return scratch_.path(); }
    [[nodiscard]] bench::Bench& bench() { return bench_; }

  private:
    void write(const std::string& name, const std::string& content) const {
        std::ofstream(benchFolder() / name, std::ios::binary | std::ios::trunc) << content;
    }

    // In this order: the bench lets go of its folder before the folder is deleted.
    ScratchFolder scratch_;
    bench::Bench bench_;
};

} // namespace torvane::testing
