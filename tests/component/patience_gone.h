#pragma once

#include "tests/component/import_patched.h"

#include <windows.h>

// The import slot of the function that is replaced. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&Sleep) __imp_Sleep;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane::testing {

/// For a scope the program's pauses take no time: what it would try again and again for a while is tried as often, and
/// over at once. For tests in which the thing that is waited for never comes.
class PatienceGone {
  private:
    static void WINAPI noPause(DWORD /*milliseconds*/) { SwitchToThread(); }

    ImportPatched<decltype(&Sleep)> patched_{__imp_Sleep, &noPause};
};

} // namespace torvane::testing
