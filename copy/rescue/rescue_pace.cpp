#include "copy/rescue/rescue_pace.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr std::int64_t kJudgedAfter = 1000;       // milliseconds of reading
constexpr std::uint64_t kKnownAfter = 8ULL << 20; // bytes: no drive is known by less
constexpr std::uint64_t kSlowPart = 10;           // of the usual rate

} // namespace

RescuePace::Verdict RescuePace::judge(std::uint64_t bytes, std::int64_t milliseconds) {
    hereBytes_ += bytes;
    hereMilliseconds_ += std::max<std::int64_t>(milliseconds, 0);
    if (hereMilliseconds_ < kJudgedAfter) {
        return Verdict::kOpen;
    }
    const bool slow = isSlow();
    if (!slow) {
        usualBytes_ += hereBytes_;
        usualMilliseconds_ += hereMilliseconds_;
    }
    moveAway();
    return slow ? Verdict::kSlow : Verdict::kUsual;
}

void RescuePace::moveAway() {
    hereBytes_ = 0;
    hereMilliseconds_ = 0;
}

/// Compares bytes/time in floating point: no product of the two overflows there.
bool RescuePace::isSlow() const {
    return usualBytes_ >= kKnownAfter &&
           static_cast<double>(hereBytes_) * static_cast<double>(kSlowPart) * static_cast<double>(usualMilliseconds_) <
               static_cast<double>(usualBytes_) * static_cast<double>(hereMilliseconds_);
}

} // namespace torvane
