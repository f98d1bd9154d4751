#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace torvane::driver {

// Where the build has left things, as the build told this program.

[[nodiscard]] std::filesystem::path packageFolder();   ///< the shippable folder
[[nodiscard]] std::filesystem::path workbenchFolder(); ///< bench.exe, bench.dll, tools
[[nodiscard]] std::filesystem::path runsFolder();      ///< where runs of the program take place

/// Descriptions of a bench, not yet in a folder.
class BenchFolder {
  public:
    /// The bench that is shown to everybody.
    [[nodiscard]] static BenchFolder demo();

    /// Replaces "bench.json".
    BenchFolder& bench(const std::string& json);
    /// Adds or replaces "drives/<name>.json".
    BenchFolder& drive(const std::string& name, const std::string& json);

    /// Writes the descriptions into a folder that is made for them.
    void writeTo(const std::filesystem::path& folder) const;

  private:
    std::map<std::string, std::string> files_{{"bench.json", "{}"}}; ///< content by path inside the folder
};

/// A file's bytes; none when it cannot be read.
[[nodiscard]] std::string readFile(const std::filesystem::path& path);

/// Lines of a bench's log that contain every one of the texts, in order; none while there is no log.
[[nodiscard]] std::vector<std::string> readLog(const std::filesystem::path& log, const std::vector<std::string>& texts);

} // namespace torvane::driver
