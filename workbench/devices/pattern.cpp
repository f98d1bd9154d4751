#include "workbench/devices/pattern.h"

#include "base/bytes.h"

#include <algorithm>
#include <array>

namespace torvane::bench {
namespace {

constexpr std::size_t kUnit = 16; // bytes; both patterns repeat their computation at this grain

using Unit = std::array<std::uint8_t, kUnit>;

Unit sectorNumberUnit(std::uint64_t position) {
    Unit unit = {'L', 'B', 'A', '='};
    std::uint64_t sector = position / 512;
    for (std::size_t i = kUnit; i-- > 4;) {
        unit[i] = static_cast<std::uint8_t>('0' + sector % 10);
        sector /= 10;
    }
    return unit;
}

Unit noiseUnit(std::uint64_t position, std::uint64_t seed) {
    Unit unit{};
    storeLe<std::uint64_t>(unit, 0, splitMix(seed + position / 8));
    storeLe<std::uint64_t>(unit, 8, splitMix(seed + position / 8 + 1));
    return unit;
}

Unit unitAt(const Backing& backing, std::uint64_t position) {
    return backing.kind == BackingKind::kNoise ? noiseUnit(position, backing.seed) : sectorNumberUnit(position);
}

} // namespace

void fillPattern(const Backing& backing, std::uint64_t offset, std::span<std::uint8_t> out) {
    if (backing.kind == BackingKind::kFile || backing.kind == BackingKind::kZero) {
        std::fill(out.begin(), out.end(), std::uint8_t{0});
        return;
    }
    std::size_t done = 0;
    while (done < out.size()) {
        const std::uint64_t position = offset + done;
        const auto within = static_cast<std::size_t>(position % kUnit);
        const Unit unit = unitAt(backing, position - within);
        const auto begin = out.begin() + static_cast<std::ptrdiff_t>(done);
        const std::size_t count = std::min(kUnit - within, out.size() - done);
        if (count == kUnit) {
            std::copy(unit.begin(), unit.end(), begin); // of known length: nearly all of the time goes here
        } else {
            std::copy_n(unit.begin() + static_cast<std::ptrdiff_t>(within), count, begin);
        }
        done += count;
    }
}

} // namespace torvane::bench
