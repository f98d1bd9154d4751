#pragma once

#include <windows.h>

namespace torvane {

/// Keeps the system from falling asleep while the calling thread is in the scope; the screen may go dark.
class StayAwake {
  public:
    StayAwake() { SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED); }
    ~StayAwake() { SetThreadExecutionState(ES_CONTINUOUS); }
    StayAwake(const StayAwake&) = delete;
    StayAwake& operator=(const StayAwake&) = delete;
};

} // namespace torvane
