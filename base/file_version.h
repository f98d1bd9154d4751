#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// The four numbers of a program's version.
struct FileVersion {
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    std::uint16_t patch = 0;
    std::uint16_t build = 0;

    bool operator==(const FileVersion&) const = default;
};

/// The file version in the version resource of an executable, whose bytes these are: VS_VERSIONINFO and in it
/// VS_FIXEDFILEINFO (Win32, verrsrc.h). None when it has no such resource.
[[nodiscard]] std::optional<FileVersion> fileVersionOf(std::string_view executable);

/// "7.3.0.5338".
[[nodiscard]] std::string inWords(const FileVersion& version);

} // namespace torvane
