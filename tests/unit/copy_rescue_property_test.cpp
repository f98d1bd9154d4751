#include "tests/unit/rescue_model/simulated_rescue.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <utility>

namespace torvane {
namespace {

using namespace rescue_model;

constexpr std::uint64_t kMegabyte = 1 << 20;

/// Random numbers, the same for a seed on every system.
class Chance {
  public:
    explicit Chance(std::uint64_t seed) : engine_(seed) {}

    std::uint64_t below(std::uint64_t end) { return engine_() % end; }
    bool once(std::uint64_t in) { return below(in) == 0; }

  private:
    std::mt19937_64 engine_;
};

void failSingly(DriveModel& drive, Chance& chance, std::uint8_t times) {
    for (std::uint64_t i = chance.below(3); i > 0; --i) {
        drive.fail(chance.below(drive.failures.size()), 1, times);
    }
}

void failInClusters(DriveModel& drive, Chance& chance) {
    const std::size_t place = chance.below(drive.failures.size());
    for (std::uint64_t i = 1 + chance.below(8); i > 0; --i) {
        drive.fail(place + chance.below(100), 1 + chance.below(8), kNeverRead);
    }
}

/// A head that reads nothing: the same part of every so many tracks.
void failInStripes(DriveModel& drive, Chance& chance) {
    const std::size_t sectors = drive.failures.size();
    const std::size_t apart = sectors / (2 + chance.below(3));
    const std::size_t wide = 1 + chance.below(40);
    for (std::size_t place = chance.below(apart); place < sectors; place += apart) {
        drive.fail(place, wide, kNeverRead);
    }
}

void slowDown(DriveModel& drive, Chance& chance) {
    const std::size_t first = chance.below(drive.slow.size());
    const std::size_t end = std::min(first + chance.below(drive.slow.size() / 4), drive.slow.size());
    std::fill(drive.slow.begin() + static_cast<std::ptrdiff_t>(first),
              drive.slow.begin() + static_cast<std::ptrdiff_t>(end), std::uint8_t{1});
}

DriveModel randomDrive(Chance& chance) {
    const std::uint64_t sectorSize = chance.once(12) ? 512 : 4096;
    const std::uint64_t large = sectorSize == 4096 && chance.once(20) ? 8 : 1;
    const std::uint64_t cutOff = chance.once(4) ? 100 : 0; // of the last sector
    DriveModel drive(8 * kMegabyte * large - chance.below(3) * sectorSize - cutOff, sectorSize);
    failSingly(drive, chance, kNeverRead);
    if (chance.once(3)) {
        failInClusters(drive, chance);
    }
    if (chance.once(6)) {
        failInStripes(drive, chance);
    }
    if (chance.once(3)) {
        slowDown(drive, chance);
    }
    // Sectors that come back at the third try.
    failSingly(drive, chance, 2);
    return drive;
}

/// What befalls a rescue: it is stopped, the drive goes, the target fails, the power goes.
void addMishaps(SimulatedRescue& rescue, Chance& chance) {
    SimulatedRescue::Script& script = rescue.script;
    const auto justGone = std::make_shared<bool>(false);
    script.source = [&chance, justGone](std::uint64_t, std::size_t length) {
        if (chance.once(1500)) {
            throw PowerLoss();
        }
        const bool mayGo = !std::exchange(*justGone, false);
        if (mayGo && chance.once(400)) {
            *justGone = true;
            return SourceAnswer::kGone;
        }
        return length >= kRescueRead && chance.once(300) ? SourceAnswer::kLeft : SourceAnswer::kWhole;
    };
    script.returns = [&] { return !chance.once(4); };
    script.wanted = [&] { return !chance.once(700); };
    script.writes = [&] {
        if (chance.once(1500)) {
            throw PowerLoss();
        }
        return !chance.once(1500);
    };
    script.flushes = [&] {
        if (chance.once(40)) {
            throw PowerLoss();
        }
        return !chance.once(60);
    };
    script.saves = [&] {
        if (chance.once(60)) {
            throw PowerLoss();
        }
        return !chance.once(60);
    };
    script.keepsUnflushed = [&] { return chance.once(2); };
}

/// Runs until it has finished. How many runs it took.
int finish(SimulatedRescue& rescue, const RescueOptions& options) {
    for (int runs = 1; runs < 1000; ++runs) {
        try {
            const RescueResult result = rescue.run(options);
            if (result.ending == RescueEnding::kFinished && result.mapSaved) {
                return runs;
            }
        } catch (const PowerLoss&) {
            rescue.losePower();
        }
    }
    return 0;
}

/// Data where the drive could be read, markers elsewhere, and a map that says so.
void expectEverythingReadable(const SimulatedRescue& rescue, const DriveModel& before) {
    std::vector<Held> expected;
    expected.reserve(before.failures.size());
    SourceMap map(before.size);
    map.mark(0, before.size, RangeStatus::kFinished);
    for (const std::uint8_t failures : before.failures) {
        if (failures == kNeverRead) {
            map.mark(expected.size() * before.sectorSize, before.sectorSize, RangeStatus::kBad);
        }
        expected.push_back(failures == kNeverRead ? Held::kMarker : Held::kData);
    }
    const auto [held, wanted] = std::ranges::mismatch(rescue.held(), expected);
    ASSERT_TRUE(held == rescue.held().end()) << "sector " << held - rescue.held().begin() << " holds "
                                             << static_cast<int>(*held) << ", not " << static_cast<int>(*wanted);
    ASSERT_EQ(rescue.map().ranges(), map.ranges());
}

RescueOptions randomOptions(const DriveModel& drive, Chance& chance) {
    return {.sectorSize = static_cast<std::uint32_t>(drive.sectorSize),
            .retryPasses = static_cast<unsigned>(1 + chance.below(2)),
            .fromEnd = chance.once(3)};
}

class RescueProperty : public testing::TestWithParam<std::uint64_t> {};

constexpr std::uint64_t kDrivesEach = 125;

TEST_P(RescueProperty, EveryInterruptionComesToTheSameEnd) {
    for (std::uint64_t i = 0; i < kDrivesEach; ++i) {
        const std::uint64_t seed = GetParam() * kDrivesEach + i;
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Chance chance(seed);
        const DriveModel drive = randomDrive(chance);
        const RescueOptions options = randomOptions(drive, chance);

        SimulatedRescue rescue(drive);
        const bool undisturbed = seed % 5 == 0;
        if (!undisturbed) {
            addMishaps(rescue, chance);
        }
        const int runs = finish(rescue, options);
        ASSERT_TRUE(undisturbed ? runs == 1 : runs > 0) << runs << " runs";
        ASSERT_EQ(rescue.faults, "");
        ASSERT_NO_FATAL_FAILURE(expectEverythingReadable(rescue, drive));
    }
}

/// A map with ranges of every kind, larger ones than a rescue leaves among them.
SourceMap randomMap(const DriveModel& drive, Chance& chance) {
    SourceMap map(drive.size);
    const std::array statuses{RangeStatus::kNonTried, RangeStatus::kNonTrimmed, RangeStatus::kNonScraped,
                              RangeStatus::kBad, RangeStatus::kFinished};
    for (int i = 0; i < 30; ++i) {
        const std::uint64_t longest = chance.once(12) ? drive.failures.size() / 6 : 40;
        map.mark(chance.below(drive.failures.size()) * drive.sectorSize, (1 + chance.below(longest)) * drive.sectorSize,
                 statuses[chance.below(statuses.size())]);
    }
    return map;
}

TEST(RescueGoesOn, WithAnyMap) {
    const std::array<std::string, 4> makers{"Mapfile. Created by GNU ddrescue version 1.27",
                                            "Mapfile. Created by Torvane", "Rescue from the start",
                                            "Rescue from the end"};
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Chance chance(seed);
        DriveModel drive = randomDrive(chance);
        const SourceMap map = randomMap(drive, chance);
        for (std::size_t sector = 0; sector < drive.failures.size(); ++sector) {
            const bool finished = map.statusAt(sector * drive.sectorSize) == RangeStatus::kFinished;
            // What is only read once more has to come at that try.
            drive.failures[sector] = drive.failures[sector] == kNeverRead && !finished ? kNeverRead : 0;
        }
        SimulatedRescue rescue(drive);
        const MapStatus status{.position = chance.below(drive.size + 1),
                               .phase = "?*/-+"[chance.below(5)],
                               .pass = static_cast<unsigned>(1 + chance.below(6))};
        const std::string& maker = makers[seed % makers.size()];
        rescue.takeUp(map, mapFileText(map, status, {maker}),
                      maker.starts_with("Rescue") ? Held::kMarker : Held::kNothing);
        if (seed % 2 == 0) {
            addMishaps(rescue, chance);
        }
        ASSERT_NE(finish(rescue, {.sectorSize = static_cast<std::uint32_t>(drive.sectorSize),
                                  .retryPasses = 1,
                                  .fromEnd = chance.once(2)}),
                  0);
        ASSERT_EQ(rescue.faults, "");
        // A retry pass that had begun elsewhere goes on from its place.
        const bool retryWasUnderWay = status.phase == '-';
        if (!retryWasUnderWay) {
            ASSERT_NO_FATAL_FAILURE(expectEverythingReadable(rescue, drive));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Drives, RescueProperty, testing::Range<std::uint64_t>(0, 8));

} // namespace
} // namespace torvane
