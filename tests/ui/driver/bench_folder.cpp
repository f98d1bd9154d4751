#include "tests/ui/driver/bench_folder.h"

#include "tests/ui/driver/wait.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace torvane::driver {
namespace fs = std::filesystem;
namespace {

std::string read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw Failure("cannot read " + path.string());
    }
    return {std::istreambuf_iterator<char>(file), {}};
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
    return TORVANE_RUNS;
}

BenchFolder BenchFolder::demo() {
    const fs::path source = TORVANE_DEMO_BENCH;
    BenchFolder folder;
    folder.bench(read(source / "bench.json"));
    for (const auto& drive : fs::directory_iterator(source / "drives")) {
        folder.drive(drive.path().stem().string(), read(drive.path()));
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
