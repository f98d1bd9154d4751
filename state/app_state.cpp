#include "state/app_state.h"

#include <cstddef>
#include <new>

namespace torvane {

AppState& appState() {
    // Statically allocated and never destroyed: a worker may still be looking at it while the process ends.
    alignas(AppState) static std::byte storage[sizeof(AppState)];
    static AppState* const state = new (storage) AppState;
    return *state;
}

} // namespace torvane
