#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

namespace torvane {

struct StdioFileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using StdioFile = std::unique_ptr<std::FILE, StdioFileCloser>;

/// Opens the file as std::fopen does; empty on failure.
[[nodiscard]] inline StdioFile openStdioFile(const char* fileName, const char* mode) {
    return StdioFile{std::fopen(fileName, mode)};
}

/// The file's bytes, of a larger one the first 1 MiB; none when it cannot be read.
[[nodiscard]] inline std::vector<std::uint8_t> readSmallFile(const char* fileName) {
    constexpr std::size_t kLargest = 1U << 20U;
    std::vector<std::uint8_t> bytes;
    if (const StdioFile file = openStdioFile(fileName, "rb")) {
        bytes.resize(kLargest);
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    }
    return bytes;
}

} // namespace torvane
