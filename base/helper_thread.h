#pragma once

#include <system_error>
#include <thread>
#include <utility>

namespace torvane {

/// Starts a thread beside a job's own. The result has no thread when the system has no room for one.
template <typename Work>
[[nodiscard]] std::thread startHelperThread(Work&& work) {
    try {
        return std::thread(std::forward<Work>(work));
    } catch (const std::system_error&) { // how the library reports it
        return {};
    }
}

} // namespace torvane
