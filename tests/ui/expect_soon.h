#pragma once

#include "tests/ui/driver/wait.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace torvane::driver {

/// True when everything that `look()` expects holds; what fails in it is not reported.
template <typename Look>
[[nodiscard]] bool holds(Look&& look) {
    ::testing::TestPartResultArray results;
    {
        const ::testing::ScopedFakeTestPartResultReporter kept(
            ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
        look();
    }
    for (int i = 0; i < results.size(); ++i) {
        if (results.GetTestPartResult(i).failed()) {
            return false;
        }
    }
    return true;
}

/// Expects what `look()` expects of the screen. The screen shows what a window has painted a moment later, so `look` is
/// called again and again until all of it holds; when the time is over, the failures of one more look are the test's.
template <typename Look>
void expectSoon(Look&& look) {
    if (!waitUntil([&] { return holds(look); })) {
        look();
    }
}

} // namespace torvane::driver
