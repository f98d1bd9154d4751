#include "workbench/description/bench_files.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>
#include <vector>

namespace torvane::bench {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBenchFile = "bench.json";
constexpr const char* kDrivesFolder = "drives";
constexpr std::array kWrittenAtItsRun = {"backing", "state.json", "state.json.new", "bench.log", "hurry"};

// Paths are shown with forward slashes, as the documentation writes them.
std::string shownName(const fs::path& path) {
    const std::u8string name = path.generic_u8string();
    return {name.begin(), name.end()};
}

std::optional<std::string> contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// The drives' files by name, so that the same mistake is found first on every machine.
std::vector<fs::path> driveFiles(const fs::path& folder) {
    std::vector<fs::path> names;
    std::error_code failure;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder / kDrivesFolder, failure)) {
        if (entry.path().extension() == ".json") {
            names.push_back(fs::path(kDrivesFolder) / entry.path().filename());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

BenchReading unreadable(const fs::path& name) {
    BenchReading reading;
    reading.error = shownName(name) + ": cannot be read";
    return reading;
}

void removeBench(const fs::path& folder) {
    std::error_code failure;
    if (!fs::exists(folder / kBenchFile, failure)) {
        return; // not a bench: nothing of it is ours to remove
    }
    for (const char* name : kWrittenAtItsRun) {
        fs::remove_all(folder / name, failure);
    }
    for (const fs::path& name : driveFiles(folder)) {
        fs::remove(folder / name, failure);
    }
    fs::remove(folder / kDrivesFolder, failure); // stays, and is complained about, when it holds anything else
    fs::remove(folder / kBenchFile, failure);
}

std::string copyFile(const fs::path& source, const fs::path& target, const fs::path& name) {
    std::error_code failure;
    fs::copy_file(source / name, target / name, failure);
    return failure ? shownName(target / name) + ": cannot be written" : std::string();
}

} // namespace

BenchReading readBenchFolder(const fs::path& folder) {
    const std::optional<std::string> bench = contentOf(folder / kBenchFile);
    if (!bench) {
        return unreadable(folder / kBenchFile);
    }
    std::vector<DescriptionFile> drives;
    for (const fs::path& name : driveFiles(folder)) {
        std::optional<std::string> content = contentOf(folder / name);
        if (!content) {
            return unreadable(folder / name);
        }
        drives.push_back({shownName(name), std::move(*content)});
    }
    return readBench({kBenchFile, *bench}, drives);
}

std::string layOutBench(const fs::path& source, const fs::path& target, bool fresh) {
    const BenchReading reading = readBenchFolder(source);
    if (!reading.error.empty()) {
        return reading.error;
    }
    std::error_code failure;
    if (fs::equivalent(source, target, failure)) {
        return shownName(target) + ": is the bench to copy";
    }
    if (fresh) {
        removeBench(target);
    }
    if (fs::exists(target, failure) && !fs::is_empty(target, failure)) {
        return shownName(target) + ": is not empty";
    }
    fs::create_directories(target / kDrivesFolder, failure);
    if (failure) {
        return shownName(target) + ": cannot be made";
    }
    std::string error = copyFile(source, target, kBenchFile);
    for (const fs::path& name : driveFiles(source)) {
        if (error.empty()) {
            error = copyFile(source, target, name);
        }
    }
    return error;
}

} // namespace torvane::bench
