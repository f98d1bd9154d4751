#pragma once

#include "base/owned_handle.h"

#include <memory>
#include <utility>

namespace torvane {

/// Starts a thread with default attributes. Null when the system has no room for it. Letting the handle go does not end
/// the thread.
inline UniqueHandle startThread(LPTHREAD_START_ROUTINE procedure, void* argument) {
    return UniqueHandle(CreateThread(nullptr, 0, procedure, argument, 0, nullptr));
}

/// Runs `work` on a thread of its own: it returns the thread's exit code (DWORD), and is destroyed there before the
/// thread ends. Null, with `work` destroyed here, when the system has no room for the thread.
template <typename Work>
[[nodiscard]] UniqueHandle startThread(Work work) {
    auto own = std::make_unique<Work>(std::move(work));
    UniqueHandle thread = startThread(
        [](void* argument) -> DWORD {
            const std::unique_ptr<Work> mine(static_cast<Work*>(argument));
            return (*mine)();
        },
        own.get());
    if (thread) {
        static_cast<void>(own.release()); // the thread's now
    }
    return thread;
}

} // namespace torvane
