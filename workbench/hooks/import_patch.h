#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace torvane::bench {

/// A function of the system and what stands in for it.
struct Replacement {
    const char* name;
    void* function;
};

/// Redirects imports of the process's modules. Imports are recognised by the address that they hold, so it does not
/// matter through which DLL or by which ordinal a module imports a function. The system's own core (ntdll, kernel32,
/// kernelbase) and the module that holds this code keep calling the real functions.
class ImportPatch {
  public:
    /// `replacements` must outlive the patch.
    explicit ImportPatch(std::span<const Replacement> replacements);

    /// Patches every module that is loaded now; imports that are patched already stay so.
    void apply();
    /// Puts the original addresses back.
    void restore();
    /// What stands in for the function at `address`; null when nothing does.
    [[nodiscard]] void* replacementOf(const void* address) const;

  private:
    struct Target {
        std::array<void*, 3> originals; ///< as kernel32, kernelbase and user32 have it; some may be the same, or null
        void* function;
    };
    struct Patched {
        HMODULE module;
        void** slot;
        void* original;
    };

    void patchModule(HMODULE module);
    void patchImports(HMODULE module, std::uint32_t directoryAddress);

    std::vector<Target> targets_;
    std::vector<HMODULE> untouched_;
    std::mutex mutex_;
    std::vector<Patched> patched_;
};

} // namespace torvane::bench
