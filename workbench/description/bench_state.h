#pragma once

#include "workbench/description/bench_description.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace torvane::bench {

/// What changes while a bench is used and must outlive a process: state.json.
struct BenchState {
    bool automount = true;
    std::map<std::uint32_t, bool> readOnly; ///< attribute by drive, where diskpart has set or cleared it
    std::set<std::uint32_t> cleaned;        ///< drives whose volumes are gone
    std::set<std::uint32_t> unplugged;
    std::map<std::uint32_t, std::uint32_t> swaps; ///< by drive: how often it and the other one have changed places
    std::set<std::string> appeared;               ///< volumes (`volumeName`) that came with their partition table
    std::set<std::string> gone;                   ///< volumes that a new partition table does not hold
    /// By drive: what the system tells of its partition table, where it has been written to since it was read.
    std::map<std::uint32_t, std::vector<std::uint8_t>> toldTables;

    [[nodiscard]] bool isReadOnly(const DriveDescription& drive) const;
    /// The volume is mounted: each disk that it lies on is in its place and was not cleaned, and the system has not
    /// read a table that says otherwise.
    [[nodiscard]] bool isMounted(const VolumeDescription& volume) const;
    /// The other drive is in its place.
    [[nodiscard]] bool isSwapped(std::uint32_t drive) const { return swapsOf(drive) % 2 != 0; }
    [[nodiscard]] std::uint32_t swapsOf(std::uint32_t drive) const;
    [[nodiscard]] bool isUnplugged(std::uint32_t drive) const { return unplugged.contains(drive); }
};

/// The state of a bench that nobody has used yet.
[[nodiscard]] BenchState firstState(const BenchDescription& bench);

/// A volume's name in the state: its place in the description.
[[nodiscard]] std::string volumeName(const VolumeDescription& volume);

/// The system has read the partition table that lies on the drive; `starts`: where its partitions begin, bytes, none
/// where no table lies there. Mounted volumes that it does not hold are gone; volumes that wait for their table are
/// mounted where it holds them and automatic mounting is enabled.
void readTable(BenchState& state, const BenchDescription& bench, std::uint32_t drive,
               const std::optional<std::set<std::uint64_t>>& starts);

/// The drive has been wiped, and the system knows it: none of its volumes is left.
void cleanDrive(BenchState& state, const BenchDescription& bench, std::uint32_t drive);

// What happens to a drive at a user's hands.
void unplugDrive(BenchState& state, std::uint32_t drive);
void plugDrive(BenchState& state, std::uint32_t drive);
/// Puts the other one in its place, or the drive itself again.
void swapDrive(BenchState& state, std::uint32_t drive);

[[nodiscard]] std::string stateText(const BenchState& state);

/// The state that `text` holds; the first state when it is empty or was damaged.
[[nodiscard]] BenchState stateFromText(const std::string& text, const BenchDescription& bench);

} // namespace torvane::bench
