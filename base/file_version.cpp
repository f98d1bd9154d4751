#include "base/file_version.h"

#include "base/bytes.h"
#include "base/format.h"

#include <cstddef>
#include <span>

namespace torvane {

namespace {

/// The key of VS_VERSIONINFO, in UTF-16.
constexpr std::string_view kKey("V\0S\0_\0V\0E\0R\0S\0I\0O\0N\0_\0I\0N\0F\0O\0\0\0", 32);

constexpr std::uint32_t kSignature = 0xFEEF04BD; // dwSignature
constexpr std::size_t kVersionMs = 8;            // dwFileVersionMS, behind dwSignature and dwStrucVersion
constexpr std::size_t kVersionLs = 12;           // dwFileVersionLS
constexpr std::size_t kNeeded = 16;

std::uint16_t high(std::uint32_t word) {
    return static_cast<std::uint16_t>(word >> 16U);
}

std::uint16_t low(std::uint32_t word) {
    return static_cast<std::uint16_t>(word & 0xFFFFU);
}

/// The VS_FIXEDFILEINFO behind a key, which starts at a multiple of four bytes.
std::optional<FileVersion> fixedInfo(std::string_view behindKey) {
    constexpr std::size_t kMostPadding = 2;
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(behindKey.data()), behindKey.size());
    for (std::size_t padding = 0; padding <= kMostPadding && padding + kNeeded <= bytes.size(); ++padding) {
        const std::span<const std::uint8_t> info = bytes.subspan(padding);
        if (loadLe32(info, 0) == kSignature) {
            const std::uint32_t ms = loadLe32(info, kVersionMs);
            const std::uint32_t ls = loadLe32(info, kVersionLs);
            return FileVersion{.major = high(ms), .minor = low(ms), .patch = high(ls), .build = low(ls)};
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<FileVersion> fileVersionOf(std::string_view executable) {
    std::size_t key = executable.find(kKey);
    while (key != std::string_view::npos) {
        const std::size_t behind = key + kKey.size();
        if (const std::optional<FileVersion> version = fixedInfo(executable.substr(behind))) {
            return version;
        }
        key = executable.find(kKey, behind);
    }
    return std::nullopt;
}

std::string inWords(const FileVersion& version) {
    return formatText("%u.%u.%u.%u", static_cast<unsigned>(version.major), static_cast<unsigned>(version.minor),
                      static_cast<unsigned>(version.patch), static_cast<unsigned>(version.build));
}

} // namespace torvane
