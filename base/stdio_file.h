#pragma once

#include <cstdio>
#include <memory>

namespace torvane {

struct StdioFileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using StdioFile = std::unique_ptr<std::FILE, StdioFileCloser>;

/// Opens the file as std::fopen does; empty on failure.
[[nodiscard]] inline StdioFile openStdioFile(const char* fileName, const char* mode) {
    return StdioFile{std::fopen(fileName, mode)};
}

} // namespace torvane
