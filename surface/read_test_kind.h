#pragma once

#include "jobs/job_kind.h"

#include <cstdint>

namespace torvane {

/// The read tests.
enum ReadTestKind : std::int32_t {
    kCriticalReadTest = 4000,
    kShortReadTest = 4001,
    kNistReadTest = 4002,
};

[[nodiscard]] constexpr JobKind jobKindOf(ReadTestKind kind) {
    switch (kind) {
    case kShortReadTest:
        return JobKind::kShortTest;
    case kCriticalReadTest:
        return JobKind::kCriticalTest;
    case kNistReadTest:
        break;
    }
    return JobKind::kNistTest;
}

} // namespace torvane
