#include "workbench/description/bench_state.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace torvane::bench {
namespace {

using Json = nlohmann::json;

std::set<std::uint32_t> numbersOf(const Json& state, const char* key) {
    return state.contains(key) ? state.at(key).get<std::set<std::uint32_t>>() : std::set<std::uint32_t>();
}

} // namespace

bool BenchState::isReadOnly(const DriveDescription& drive) const {
    const auto changed = readOnly.find(drive.number);
    return changed == readOnly.end() ? drive.readOnly : changed->second;
}

bool BenchState::isMounted(const VolumeDescription& volume) const {
    return std::none_of(volume.extents.begin(), volume.extents.end(), [&](const VolumeExtent& extent) {
        return cleaned.contains(extent.disk) || isSwapped(extent.disk);
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

void unplugDrive(BenchState& state, std::uint32_t drive) {
    state.unplugged.insert(drive);
}

void plugDrive(BenchState& state, std::uint32_t drive) {
    state.unplugged.erase(drive);
}

void swapDrive(BenchState& state, std::uint32_t drive) {
    ++state.swaps[drive];
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
    return json.dump(4) + "\n";
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
        state.cleaned = numbersOf(json, "cleaned");
        state.unplugged = numbersOf(json, "unplugged");
    } catch (const std::exception&) {
        return firstState(bench);
    }
    return state;
}

} // namespace torvane::bench
