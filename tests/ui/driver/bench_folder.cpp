#include "tests/ui/driver/bench_folder.h"

#include "tests/ui/driver/wait.h"

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace torvane::driver {
namespace fs = std::filesystem;
namespace {

std::string readDescription(const fs::path& path) {
    if (!fs::is_regular_file(path)) {
        throw Failure("cannot read " + path.string());
    }
    return readFile(path);
}

void write(const fs::path& path, const std::string& content) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << content;
    if (!file.flush()) {
        throw Failure("cannot write " + path.string());
    }
}

} // namespace

fs::path packageFolder() {
    return TORVANE_PACKAGE;
}
fs::path workbenchFolder() {
    return TORVANE_WORKBENCH;
}
fs::path runsFolder() {
    // Tests at several scalings run side by side.
    const UINT dpi = GetDpiForSystem();
    return dpi == 96 ? fs::path(TORVANE_RUNS) : fs::path(TORVANE_RUNS) / std::to_string(dpi);
}

BenchFolder BenchFolder::demo() {
    const fs::path source = TORVANE_DEMO_BENCH;
    BenchFolder folder;
    folder.bench(readDescription(source / "bench.json"));
    for (const auto& drive : fs::directory_iterator(source / "drives")) {
        folder.drive(drive.path().stem().string(), readDescription(drive.path()));
    }
    return folder;
}

BenchFolder& BenchFolder::bench(const std::string& json) {
    files_["bench.json"] = json;
    return *this;
}

BenchFolder& BenchFolder::drive(const std::string& name, const std::string& json) {
    files_["drives/" + name + ".json"] = json;
    return *this;
}

void BenchFolder::writeTo(const fs::path& folder) const {
    fs::create_directories(folder / "drives");
    for (const auto& [path, content] : files_) {
        write(folder / path, content);
    }
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> readLog(const fs::path& log, const std::vector<std::string>& texts) {
    std::ifstream file(log, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        const bool wanted = std::all_of(texts.begin(), texts.end(),
                                        [&](const std::string& text) { return line.find(text) != std::string::npos; });
        if (wanted) {
            lines.push_back(line);
        }
    }
    return lines;
}

} // namespace torvane::driver
