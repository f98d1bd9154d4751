#include "settings/tutorial.h"

#include "base/bytes.h"
#include "base/stdio_file.h"

#include <array>

namespace torvane {

namespace {

using FlagBytes = std::array<std::uint8_t, sizeof(std::int32_t)>;

bool writeFlag(StdioFile file, std::int32_t flag) {
    FlagBytes bytes{};
    storeLe(std::span(bytes), 0, static_cast<std::uint32_t>(flag));
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    // A full disk shows only when the buffer is flushed.
    const bool closed = std::fclose(file.release()) == 0;
    return written && closed;
}

} // namespace

std::int32_t loadTutorialFlag(const char* fileName) {
    const StdioFile file = openStdioFile(fileName, "rb+");
    if (!file) {
        saveTutorialFlag(fileName, kTutorialShown);
        return kTutorialShown;
    }
    FlagBytes bytes{};
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
        return kTutorialShown;
    }
    return static_cast<std::int32_t>(loadLe32(bytes, 0));
}

int saveTutorialFlag(const char* fileName, std::int32_t flag) {
    StdioFile file = openStdioFile(fileName, "rb+");
    if (!file) {
        file = openStdioFile(fileName, "wb+");
    }
    return file && writeFlag(std::move(file), flag) ? 1 : 0;
}

} // namespace torvane
