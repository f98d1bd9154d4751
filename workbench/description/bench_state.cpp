#include "workbench/description/bench_state.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace torvane::bench {
namespace {

using Json = nlohmann::json;

template <typename Value>
std::set<Value> setOf(const Json& state, const char* key) {
    return state.contains(key) ? state.at(key).get<std::set<Value>>() : std::set<Value>();
}

bool liesOn(const VolumeDescription& volume, std::uint32_t drive) {
    return std::ranges::any_of(volume.extents, [&](const VolumeExtent& extent) { return extent.disk == drive; });
}

/// The table holds every part of the volume that lies on the drive.
bool holds(const std::set<std::uint64_t>& starts, const VolumeDescription& volume, std::uint32_t drive) {
    return std::ranges::all_of(volume.extents, [&](const VolumeExtent& extent) {
        return extent.disk != drive || starts.contains(extent.offset);
    });
}

} // namespace

bool BenchState::isReadOnly(const DriveDescription& drive) const {
    const auto changed = readOnly.find(drive.number);
    return changed == readOnly.end() ? drive.readOnly : changed->second;
}

bool BenchState::isMounted(const VolumeDescription& volume) const {
    const bool waits = volume.appears == VolumeAppearance::kWithTable;
    const bool mounted = waits ? appeared.contains(volumeName(volume)) : !gone.contains(volumeName(volume));
    return mounted && std::ranges::none_of(volume.extents, [&](const VolumeExtent& extent) {
               return isSwapped(extent.disk) || (!waits && cleaned.contains(extent.disk));
           });
}

std::uint32_t BenchState::swapsOf(std::uint32_t drive) const {
    const auto found = swaps.find(drive);
    return found == swaps.end() ? 0 : found->second;
}

BenchState firstState(const BenchDescription& bench) {
    BenchState state;
    state.automount = bench.automount;
    return state;
}

std::string volumeName(const VolumeDescription& volume) {
    return volume.fileName + ": " + volume.field;
}

void readTable(BenchState& state, const BenchDescription& bench, std::uint32_t drive,
               const std::optional<std::set<std::uint64_t>>& starts) {
    state.toldTables.erase(drive);
    for (const VolumeDescription& volume : bench.volumes) {
        if (!liesOn(volume, drive)) {
            continue;
        }
        const bool waits = volume.appears == VolumeAppearance::kWithTable;
        const bool held = starts && holds(*starts, volume, drive);
        if (waits && held && state.automount) {
            state.appeared.insert(volumeName(volume));
        } else if (waits && !held) {
            state.appeared.erase(volumeName(volume));
        } else if (!waits && starts && !held) {
            state.gone.insert(volumeName(volume));
        }
    }
}

void cleanDrive(BenchState& state, const BenchDescription& bench, std::uint32_t drive) {
    state.cleaned.insert(drive);
    state.toldTables.erase(drive);
    for (const VolumeDescription& volume : bench.volumes) {
        if (liesOn(volume, drive)) {
            state.appeared.erase(volumeName(volume));
        }
    }
}

void unplugDrive(BenchState& state, std::uint32_t drive) {
    state.unplugged.insert(drive);
}

void plugDrive(BenchState& state, std::uint32_t drive) {
    state.unplugged.erase(drive);
}

void swapDrive(BenchState& state, std::uint32_t drive) {
    ++state.swaps[drive];
    state.toldTables.erase(drive);
}

std::string stateText(const BenchState& state) {
    Json json;
    json["automount"] = state.automount;
    json["readOnly"] = Json::object();
    for (const auto& [drive, on] : state.readOnly) {
        json["readOnly"][std::to_string(drive)] = on;
    }
    json["cleaned"] = state.cleaned;
    json["unplugged"] = state.unplugged;
    json["swaps"] = Json::object();
    for (const auto& [drive, count] : state.swaps) {
        json["swaps"][std::to_string(drive)] = count;
    }
    json["appeared"] = state.appeared;
    json["gone"] = state.gone;
    json["toldTables"] = Json::object();
    for (const auto& [drive, layout] : state.toldTables) {
        json["toldTables"][std::to_string(drive)] = layout;
    }
    return json.dump() + "\n";
}

BenchState stateFromText(const std::string& text, const BenchDescription& bench) {
    BenchState state = firstState(bench);
    try {
        const Json json = Json::parse(text);
        state.automount = json.value("automount", state.automount);
        const Json readOnly = json.value("readOnly", Json::object());
        for (const auto& [drive, on] : readOnly.items()) {
            state.readOnly[static_cast<std::uint32_t>(std::stoul(drive))] = on.get<bool>();
        }
        const Json swaps = json.value("swaps", Json::object());
        for (const auto& [drive, count] : swaps.items()) {
            state.swaps[static_cast<std::uint32_t>(std::stoul(drive))] = count.get<std::uint32_t>();
        }
        const Json toldTables = json.value("toldTables", Json::object());
        for (const auto& [drive, layout] : toldTables.items()) {
            state.toldTables[static_cast<std::uint32_t>(std::stoul(drive))] = layout.get<std::vector<std::uint8_t>>();
        }
        state.cleaned = setOf<std::uint32_t>(json, "cleaned");
        state.unplugged = setOf<std::uint32_t>(json, "unplugged");
        state.appeared = setOf<std::string>(json, "appeared");
        state.gone = setOf<std::string>(json, "gone");
    } catch (const std::exception&) {
        return firstState(bench);
    }
    return state;
}

} // namespace torvane::bench
