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

    [[nodiscard]] bool isReadOnly(const DriveDescription& drive) const;
    /// The volume is mounted: no disk that it lies on was cleaned.
    [[nodiscard]] bool isMounted(const VolumeDescription& volume) const;
    [[nodiscard]] bool isUnplugged(std::uint32_t drive) const { return unplugged.contains(drive); }
};

/// The state of a bench that nobody has used yet.
[[nodiscard]] BenchState firstState(const BenchDescription& bench);

[[nodiscard]] std::string stateText(const BenchState& state);

/// The state that `text` holds; the first state when it is empty or was damaged.
[[nodiscard]] BenchState stateFromText(const std::string& text, const BenchDescription& bench);

} // namespace torvane::bench
