#include "copy/engine/run_meter.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace torvane {

namespace {

constexpr std::int64_t kWindow = 10000;    // milliseconds
constexpr std::int64_t kSampleApart = 100; // milliseconds
constexpr std::int64_t kSecond = 1000;     // milliseconds

} // namespace

void RunMeter::count(std::int64_t now, std::uint64_t done) {
    const std::size_t size = samples_.size();
    if (size >= 2 && samples_[size - 1].at - samples_[size - 2].at < kSampleApart) {
        samples_.back() = {.at = now, .done = done};
    } else {
        samples_.push_back({.at = now, .done = done});
    }
    while (samples_.size() >= 2 && samples_[1].at <= windowStart(now)) {
        samples_.pop_front();
    }
}

std::uint64_t RunMeter::bytesPerSecond(std::int64_t now) const {
    const std::int64_t from = windowStart(now);
    if (now <= from) {
        return 0;
    }
    const double bytes = static_cast<double>(samples_.back().done) - doneAt(from);
    return static_cast<std::uint64_t>(std::llround(std::max(bytes, 0.0) * kSecond / static_cast<double>(now - from)));
}

std::int64_t RunMeter::elapsedSeconds(std::int64_t now) const {
    return std::max<std::int64_t>(now - start_, 0) / kSecond;
}

std::int64_t RunMeter::windowStart(std::int64_t now) const {
    return std::max(now - kWindow, start_);
}

double RunMeter::doneAt(std::int64_t moment) const {
    const auto later =
        std::find_if(samples_.begin(), samples_.end(), [&](const Sample& sample) { return sample.at > moment; });
    if (later == samples_.end()) {
        return static_cast<double>(samples_.back().done);
    }
    if (later == samples_.begin()) {
        return static_cast<double>(later->done);
    }
    const Sample& before = *std::prev(later);
    const double part = static_cast<double>(moment - before.at) / static_cast<double>(later->at - before.at);
    return static_cast<double>(before.done) + part * static_cast<double>(later->done - before.done);
}

} // namespace torvane
