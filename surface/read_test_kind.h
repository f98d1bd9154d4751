#pragma once

#include <cstdint>

namespace torvane {

/// The read tests; the application state keeps which one its dialog runs.
enum ReadTestKind : std::int32_t {
    kCriticalReadTest = 4000,
    kShortReadTest = 4001,
    kNistReadTest = 4002,
};

} // namespace torvane
