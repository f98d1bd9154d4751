#pragma once

#include "base/owned_handle.h"

#include <memory>
#include <utility>

namespace torvane {

/// Runs `work` on a thread of its own, with default attributes: it returns the thread's exit code (DWORD), and is
/// destroyed there before the thread ends. Null, with `work` destroyed here, when the system has no room for the
/// thread. Letting the handle go does not end the thread.
template <typename Work>
[[nodiscard]] UniqueHandle startThread(Work work) {
    auto own = std::make_unique<Work>(std::move(work));
    const LPTHREAD_START_ROUTINE run = [](void* argument) -> DWORD {
        const std::unique_ptr<Work> mine(static_cast<Work*>(argument));
        return (*mine)();
    };
    UniqueHandle thread(CreateThread(nullptr, 0, run, own.get(), 0, nullptr));
    if (thread) {
        static_cast<void>(own.release()); // the thread's now
    }
    return thread;
}

} // namespace torvane
