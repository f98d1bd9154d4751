#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane::bench {

enum class PathKind {
    kOrdinary,      ///< a file, a folder, a pipe, the console: none of the bench's business
    kDrive,         ///< "\\.\PhysicalDriveN"
    kVolume,        ///< "\\.\X:", "\\?\Volume{...}"
    kScsiPort,      ///< "\\.\ScsiN:"
    kMountManager,  ///< "\\.\MountPointManager"
    kForeignDevice, ///< any other device: it does not exist on a bench
};

struct DevicePath {
    PathKind kind = PathKind::kOrdinary;
    std::uint32_t number = 0; ///< of a drive or port
    char letter = 0;          ///< of a volume, upper case; 0: it goes by its GUID
    // With a value, so that the other kinds need not name it.
    std::string guid = {}; ///< of such a volume, "{...}" in lower case; NOLINT(readability-redundant-member-init)
};

/// What a path given to CreateFile names. The device prefixes "\\.\", "\\?\" and "\??\" count, with either slash.
/// Under them only what is known to be harmless is ordinary, so that no alias of a real drive gets through.
[[nodiscard]] DevicePath parseDevicePath(std::wstring_view path);

/// The GUID in a volume's name "\\?\Volume{...}" or its root, the same with a backslash behind it: "{...}" in lower
/// case, empty for any other path.
[[nodiscard]] std::string volumeGuid(std::wstring_view path);

/// The letter of a volume's root, "C:" or "C:\", upper case; 0 for any other path.
[[nodiscard]] char rootLetter(std::wstring_view path);

/// A tool that is replaced by a stand-in.
enum class Tool { kNone, kDiskpart, kPowershell };

struct CommandLine {
    std::wstring program; ///< first word, without its quotes
    std::wstring rest;    ///< what follows it, blanks included
};

[[nodiscard]] CommandLine splitCommandLine(std::wstring_view commandLine);

/// The tool that a program name stands for: its last component, in any case, with or without ".exe".
[[nodiscard]] Tool toolOf(std::wstring_view program);

} // namespace torvane::bench
