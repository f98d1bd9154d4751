#pragma once

#include "workbench/hooks/import_patch.h"

#include <windows.h>

#include <span>

// The functions that stand in for the system's. Each has the contract of the one that it replaces: what concerns the
// bench's devices is answered here, everything else goes to the real function untouched.
namespace torvane::bench {

[[nodiscard]] std::span<const Replacement> fileReplacements();
[[nodiscard]] std::span<const Replacement> volumeReplacements();
[[nodiscard]] std::span<const Replacement> volumeSearchReplacements();
[[nodiscard]] std::span<const Replacement> pathReplacements();
[[nodiscard]] std::span<const Replacement> processReplacements();
[[nodiscard]] std::span<const Replacement> objectReplacements();
[[nodiscard]] std::span<const Replacement> lookReplacements();

/// The patch that is in force; set by `installHooks`. For functions that load modules or look functions up.
[[nodiscard]] ImportPatch& importPatch();

/// The address of a function as the tables above hold it.
template <typename Function>
[[nodiscard]] void* hookAddress(Function* function) {
    return reinterpret_cast<void*>(function);
}

} // namespace torvane::bench
