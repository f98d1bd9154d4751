#pragma once

#include "tests/component/import_patched.h"

// The import slot of the function that fails here. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&GetDiskFreeSpaceExW) __imp_GetDiskFreeSpaceExW;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane::testing {

/// For a scope the current folder tells no room, so that no tool can run ahead of its turn.
class NoCaptures {
  private:
    static BOOL WINAPI refuse(LPCWSTR /*folder*/, PULARGE_INTEGER /*available*/, PULARGE_INTEGER /*total*/,
                              PULARGE_INTEGER /*free*/) {
        return FALSE;
    }

    ImportPatched<decltype(__imp_GetDiskFreeSpaceExW)> patched_{__imp_GetDiskFreeSpaceExW, &refuse};
};

} // namespace torvane::testing
