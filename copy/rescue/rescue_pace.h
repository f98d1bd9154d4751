#pragma once

#include <cstdint>

namespace torvane {

/// Tells areas of a drive that answer slowly from the others: what is read there in a second is less than a tenth of
/// what the reads so far have given.
class RescuePace {
  public:
    enum class Verdict : std::uint8_t {
        kOpen, ///< too little was read to tell
        kUsual,
        kSlow,
    };

    /// A read that gave so many bytes took so long.
    Verdict judge(std::uint64_t bytes, std::int64_t milliseconds);

    /// What was read so far in this area counts no longer: the next read lies elsewhere.
    void moveAway();

  private:
    [[nodiscard]] bool isSlow() const;

    std::uint64_t usualBytes_ = 0; ///< of the reads that were not slow
    std::int64_t usualMilliseconds_ = 0;
    std::uint64_t hereBytes_ = 0;
    std::int64_t hereMilliseconds_ = 0;
};

} // namespace torvane
