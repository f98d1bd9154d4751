#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace torvane {

/// How fast a run goes, over the last ten seconds, and how long it has gone. Moments are milliseconds since any start
/// that stays the same.
class RunMeter {
  public:
    explicit RunMeter(std::int64_t now) : start_(now), samples_{{.at = now, .done = 0}} {}

    /// So many bytes are done by now. Neither number ever becomes smaller.
    void count(std::int64_t now, std::uint64_t done);

    /// While nothing gets done it falls, to 0 after ten seconds. A block that took longer counts with that part of it
    /// that lies in them.
    [[nodiscard]] std::uint64_t bytesPerSecond(std::int64_t now) const;

    /// Whole seconds since the start.
    [[nodiscard]] std::int64_t elapsedSeconds(std::int64_t now) const;

    /// Samples that are kept, however many are counted: one for each tenth of a second, and the last ones.
    [[nodiscard]] std::size_t sampleCount() const { return samples_.size(); }

  private:
    struct Sample {
        std::int64_t at;
        std::uint64_t done; ///< bytes
    };

    [[nodiscard]] std::int64_t windowStart(std::int64_t now) const;
    [[nodiscard]] double doneAt(std::int64_t moment) const;

    std::int64_t start_;
    std::deque<Sample> samples_; ///< never empty; the oldest is as old as the ten seconds, or older
};

} // namespace torvane
