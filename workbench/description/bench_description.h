#pragma once

#include "workbench/description/ata_description.h"
#include "workbench/description/drive_description.h"
#include "workbench/description/nvme_description.h"
#include "workbench/description/volume_description.h"

#include <string>
#include <string_view>
#include <vector>

namespace torvane::bench {

/// How one of the stand-ins is to misbehave.
struct ToolDescription {
    bool missing = false;      ///< cannot be started
    bool hasOutput = false;    ///< print `output` instead of acting
    std::string output;        ///< bytes
    bool acts = false;         ///< prints `output`, but does its work all the same
    bool speaksGerman = false; ///< prints German in place of English, and acts as ever
    bool hasExitCode = false;  ///< end with `exitCode` whatever happened
    std::uint32_t exitCode = 0;
    std::uint32_t delayMilliseconds = 0;
    std::string delayOnly;   ///< bytes; only command lines that contain it are delayed
    bool broadcasts = false; ///< tells every window of a changed setting, and waits for the answer of each
};

/// Plain files that cannot be written.
struct RefusedFile {
    std::string path;        ///< what their whole path contains; case does not matter
    bool newOnly = false;    ///< those alone that are not there yet
    std::uint32_t error = 5; ///< ERROR_ACCESS_DENIED
};

/// A whole bench, validated.
struct BenchDescription {
    std::string title;
    std::string computer = "TORVANE-BENCH";
    bool automount = true;
    bool tellsAutomount = false; ///< the mount manager answers
    bool highContrast = false;   ///< the user has asked the system for it
    ToolDescription diskpart;
    ToolDescription powershell;
    ToolDescription smartctl; ///< its delay alone: the tool is the real one
    std::vector<ShareDescription> shares;
    std::vector<RefusedFile> refusedFiles;
    std::vector<DriveDescription> drives;   ///< by number, ascending
    std::vector<VolumeDescription> volumes; ///< without a letter first, then by letter; of bench.json and every drive

    /// Null when there is none.
    [[nodiscard]] const DriveDescription* drive(std::uint32_t number) const;
    [[nodiscard]] const VolumeDescription* volume(char letter) const;
    /// By its GUID, "{...}" in lower case.
    [[nodiscard]] const VolumeDescription* volumeNamed(std::string_view guid) const;
};

/// One description file: its name as errors show it ("bench.json", "drives/0-system.json") and its content.
struct DescriptionFile {
    std::string name;
    std::string content;
};

/// Result of reading descriptions: `error` is empty when `bench` is whole and valid.
struct BenchReading {
    BenchDescription bench;
    std::string error; ///< one line, "<file>: <field>: <what is wrong>"
};

/// Reads and validates a bench. `drives` in any order; their names only serve messages.
[[nodiscard]] BenchReading readBench(const DescriptionFile& bench, const std::vector<DescriptionFile>& drives);

} // namespace torvane::bench
