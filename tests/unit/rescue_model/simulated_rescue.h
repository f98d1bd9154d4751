#pragma once

#include "copy/engine/block_layout.h"
#include "copy/rescue/rescue_map.h"
#include "copy/rescue/rescue_run.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace torvane::rescue_model {

inline constexpr std::uint8_t kNeverRead = 255;

/// A drive by its sectors: how often each is still to fail, and which answer slowly. A sector's content is its number,
/// at its start; nothing else is compared, so that many drives can be judged in a short time.
struct DriveModel {
    std::uint64_t sectorSize = 512;
    std::uint64_t size = 0; ///< bytes; the last sector may be cut off, but holds its number
    std::vector<std::uint8_t> failures;
    std::vector<std::uint8_t> slow; ///< 1: a hundred times as long

    DriveModel(std::uint64_t bytes, std::uint64_t sector)
        : sectorSize(sector), size(bytes), failures((bytes + sector - 1) / sector), slow(failures.size()) {}

    void fail(std::size_t first, std::size_t count, std::uint8_t times) {
        for (std::size_t i = first; i < std::min(first + count, failures.size()); ++i) {
            failures[i] = times;
        }
    }
};

/// What a sector of the target holds.
enum class Held : std::uint8_t { kNothing, kMarker, kData };

/// The power is gone: nothing of the program's memory is left.
struct PowerLoss {};

/// Source, target and watch of a rescue in one, so that each request can be judged by those before it.
class SimulatedRescue : public RescueSource, public RescueTarget, public RescueWatch {
  public:
    /// What the world makes of the requests; a function that is not there changes nothing.
    struct Script {
        std::function<SourceAnswer(std::uint64_t offset, std::size_t length)> source; ///< whole: as the drive has it
        std::function<bool()> returns;
        std::function<bool()> writes;
        std::function<bool()> flushes;
        std::function<bool()> saves;
        std::function<bool()> wanted;
        std::function<bool()> keepsUnflushed; ///< of each sector that is not on the medium when the power goes
    };

    explicit SimulatedRescue(DriveModel model)
        : drive(std::move(model)), held_(drive.failures.size()), settled_(drive.failures.size()),
          buffer_(kRescueBuffer) {}

    SourceAnswer read(std::uint64_t offset, std::span<std::byte> bytes) override {
        const std::size_t first = offset / drive.sectorSize;
        const std::size_t count = (bytes.size() + drive.sectorSize - 1) / drive.sectorSize;
        if (offset % drive.sectorSize != 0 ||
            (bytes.size() % drive.sectorSize != 0 && offset + bytes.size() != drive.size)) {
            fault("read within a sector", first);
        }
        ++reads;
        microseconds += 100;
        const SourceAnswer scripted = script.source ? script.source(offset, bytes.size()) : SourceAnswer::kWhole;
        if (scripted == SourceAnswer::kGone) {
            return scripted;
        }
        bool failed = false;
        for (std::size_t sector = first; sector < first + count; ++sector) {
            failed |= readSector(sector, bytes.subspan((sector - first) * drive.sectorSize));
        }
        microseconds += failed ? failureMicroseconds : 0;
        failedReads += failed ? 1 : 0;
        if (scripted != SourceAnswer::kWhole) {
            return scripted;
        }
        return failed ? SourceAnswer::kFailed : SourceAnswer::kWhole;
    }

    bool awaitReturn() override { return !script.returns || script.returns(); }

    bool write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        const bool works = !script.writes || script.writes();
        if (offset % drive.sectorSize != 0) {
            fault("written within a sector", offset / drive.sectorSize);
        }
        for (std::uint64_t at = 0; works && at < bytes.size(); at += drive.sectorSize) {
            hold((offset + at) / drive.sectorSize, bytes.subspan(at));
        }
        return works;
    }

    bool flush() override {
        ++flushes;
        const bool works = !script.flushes || script.flushes();
        if (!works) {
            loseUnflushed();
        }
        unflushed_.clear();
        return works;
    }

    bool isWanted() override { return !script.wanted || script.wanted(); }
    std::int64_t now() override { return microseconds / 1000; }

    bool saveMap(const SourceMap& map, const MapStatus& status) override {
        if (script.saves && !script.saves()) {
            return false;
        }
        if (!unflushed_.empty()) {
            fault("a map was saved before what it tells of was flushed", unflushed_.front().sector);
        }
        savedMap = rescueMapText(map, status, fromEnd_, {"Mapfile"});
        judge(map);
        return true;
    }

    void show(const RescueFigures& figures, const SourceMap& map) override {
        shown = figures;
        shownMapSize = map.size();
    }

    /// One run, which takes up the map that was saved last, if there is one. The power may go in its middle.
    RescueResult run(const RescueOptions& options) {
        fromEnd_ = options.fromEnd;
        RescueOrigin origin{.fromRescue = true, .place = std::nullopt};
        SourceMap map(drive.size);
        if (!savedMap.empty()) {
            auto file = std::get<MapFile>(readMapFile(savedMap, drive.size));
            origin = rescueOriginOf(file, options.fromEnd);
            map = std::move(file.map);
        }
        settleBy(map);
        return runRescue(map, options, origin, *this, *this, *this, buffer_);
    }

    void losePower() { loseUnflushed(); }

    /// An image that another has made, with its map; where nothing could be read it holds `failed`.
    void takeUp(const SourceMap& map, std::string text, Held failed) {
        for (const MappedRange& range : map.ranges()) {
            const bool finished = range.status == RangeStatus::kFinished;
            const bool untried = range.status == RangeStatus::kNonTried;
            std::ranges::fill(sectorsOf(held_, range), finished ? Held::kData : untried ? Held::kNothing : failed);
        }
        savedMap = std::move(text);
    }

    [[nodiscard]] SourceMap map() const { return std::get<MapFile>(readMapFile(savedMap, drive.size)).map; }
    [[nodiscard]] const std::vector<Held>& held() const { return held_; }

    Script script;
    DriveModel drive;
    std::string savedMap;
    std::string faults; ///< what was done that never may be, in words
    RescueFigures shown;
    std::uint64_t shownMapSize = 0;
    std::uint64_t reads = 0;
    std::uint64_t failedReads = 0;
    std::uint64_t flushes = 0;
    std::int64_t microseconds = 0;
    std::int64_t failureMicroseconds = 1'000'000;

  private:
    struct Change {
        std::size_t sector;
        Held before;
    };

    void fault(const char* what, std::size_t sector) {
        if (faults.size() < 1000) {
            faults.append(what).append(", sector ").append(std::to_string(sector)).append("\n");
        }
    }

    bool readSector(std::size_t sector, std::span<std::byte> bytes) {
        if (settled_[sector] != 0) {
            fault("a finished sector was read", sector);
        }
        const std::uint64_t number = sector;
        std::memcpy(bytes.data(), &number, sizeof number);
        microseconds += static_cast<std::int64_t>(drive.sectorSize) * (drive.slow[sector] != 0 ? 1000 : 10) / 1000;
        std::uint8_t& left = drive.failures[sector];
        const bool fails = left != 0;
        if (fails && left != kNeverRead) {
            --left;
        }
        return fails;
    }

    void hold(std::size_t sector, std::span<const std::byte> bytes) {
        if (settled_[sector] != 0) {
            fault("a finished sector was written", sector);
        }
        const std::uint64_t number = sector;
        Held now = Held::kData;
        if (std::memcmp(bytes.data(), "KVL<->UN", sizeof number) == 0) {
            now = Held::kMarker;
        } else if (std::memcmp(bytes.data(), &number, sizeof number) != 0) {
            fault("something else was written", sector);
        } else {
            settled_[sector] = 1;
        }
        unflushed_.push_back({.sector = sector, .before = held_[sector]});
        held_[sector] = now;
    }

    /// Each sector keeps the new or falls back to the old.
    void loseUnflushed() {
        std::ranges::reverse(unflushed_);
        for (const Change& change : unflushed_) {
            if (!script.keepsUnflushed || !script.keepsUnflushed()) {
                held_[change.sector] = change.before;
            }
            settled_[change.sector] = 0;
        }
        unflushed_.clear();
    }

    /// The sectors of a range, of which each has a value in `values`.
    template <typename Value>
    [[nodiscard]] std::span<Value> sectorsOf(std::vector<Value>& values, const MappedRange& range) const {
        const std::uint64_t first = range.offset / drive.sectorSize;
        const std::uint64_t end = (range.offset + range.length + drive.sectorSize - 1) / drive.sectorSize;
        return std::span(values).subspan(first, end - first);
    }

    void settleBy(const SourceMap& map) {
        std::ranges::fill(settled_, std::uint8_t{0});
        for (const MappedRange& range : map.ranges()) {
            if (range.status == RangeStatus::kFinished) {
                std::ranges::fill(sectorsOf(settled_, range), std::uint8_t{1});
            }
        }
    }

    /// What a saved map tells is in the target. A failed place has its marker, or what was read there and not told,
    /// because the power went.
    void judge(const SourceMap& map) {
        for (const MappedRange& range : map.ranges()) {
            const std::span<const Held> held = sectorsOf(held_, range);
            if (range.status == RangeStatus::kFinished &&
                !std::ranges::all_of(held, [](Held each) { return each == Held::kData; })) {
                fault("saved as finished and not there", range.offset / drive.sectorSize);
            } else if (range.status != RangeStatus::kNonTried &&
                       std::ranges::find(held, Held::kNothing) != held.end()) {
                fault("saved as failed without a marker", range.offset / drive.sectorSize);
            }
        }
    }

    std::vector<Held> held_;
    std::vector<std::uint8_t> settled_; ///< 1: finished, so that nobody may read or write it again
    std::vector<Change> unflushed_;
    std::vector<std::byte> buffer_;
    bool fromEnd_ = false;
};

} // namespace torvane::rescue_model
