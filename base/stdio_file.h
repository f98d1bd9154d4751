#pragma once

#include <cstdio>
#include <memory>
#include <string_view>

namespace torvane {

struct StdioFileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using StdioFile = std::unique_ptr<std::FILE, StdioFileCloser>;

/// Opens the file as std::fopen does; empty on failure.
[[nodiscard]] inline StdioFile openStdioFile(const char* fileName, const char* mode) {
    return StdioFile{std::fopen(fileName, mode)};
}

/// Makes the file anew with `text` as it is: lines end in a bare line feed. False when not all of it could be written.
[[nodiscard]] inline bool writeWholeFile(const char* fileName, std::string_view text) {
    const StdioFile file = openStdioFile(fileName, "wb+");
    // A full disk shows only when the buffer is flushed.
    return file && std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() && std::fflush(file.get()) == 0;
}

} // namespace torvane
