#pragma once

#include "workbench/description/bench_description.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace torvane::bench {

/// What changes while a bench is used and must outlive a process: state.json.
struct BenchState {
    bool automount = true;
    std::map<std::uint32_t, bool> readOnly; ///< attribute by drive, where diskpart has set or cleared it
    std::set<std::uint32_t> cleaned;        ///< drives whose volumes are gone
    std::set<std::uint32_t> unplugged;
    std::map<std::uint32_t, std::uint32_t> swaps; ///< by drive: how often it and the other one have changed places

    [[nodiscard]] bool isReadOnly(const DriveDescription& drive) const;
    /// The volume is mounted: each disk that it lies on is in its place and was not cleaned.
    [[nodiscard]] bool isMounted(const VolumeDescription& volume) const;
    /// The other drive is in its place.
    [[nodiscard]] bool isSwapped(std::uint32_t drive) const { return swapsOf(drive) % 2 != 0; }
    [[nodiscard]] std::uint32_t swapsOf(std::uint32_t drive) const;
    [[nodiscard]] bool isUnplugged(std::uint32_t drive) const { return unplugged.contains(drive); }
};

/// The state of a bench that nobody has used yet.
[[nodiscard]] BenchState firstState(const BenchDescription& bench);

// What happens to a drive at a user's hands.
void unplugDrive(BenchState& state, std::uint32_t drive);
void plugDrive(BenchState& state, std::uint32_t drive);
/// Puts the other one in its place, or the drive itself again.
void swapDrive(BenchState& state, std::uint32_t drive);

[[nodiscard]] std::string stateText(const BenchState& state);

/// The state that `text` holds; the first state when it is empty or was damaged.
[[nodiscard]] BenchState stateFromText(const std::string& text, const BenchDescription& bench);

} // namespace torvane::bench
