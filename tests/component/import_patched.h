#pragma once

#include <windows.h>

namespace torvane::testing {

/// Puts a function of the test in the place of a system function, for this program and a scope. `slot` is the program's
/// import slot of the function, which the linker calls __imp_<name>:
///
///     extern "C" decltype(&GlobalAlloc) __imp_GlobalAlloc;
///     const ImportPatched patched(__imp_GlobalAlloc, &allocateNothing);
template <typename Function>
class ImportPatched {
  public:
    ImportPatched(Function& slot, Function replacement) : slot_(slot), original_(slot) { put(replacement); }
    ~ImportPatched() { put(original_); }
    ImportPatched(const ImportPatched&) = delete;
    ImportPatched& operator=(const ImportPatched&) = delete;

    [[nodiscard]] Function original() const { return original_; }

  private:
    void put(Function function) {
        DWORD before = 0;
        VirtualProtect(&slot_, sizeof slot_, PAGE_READWRITE, &before);
        slot_ = function;
        VirtualProtect(&slot_, sizeof slot_, before, &before);
    }

    Function& slot_;
    Function original_;
};

} // namespace torvane::testing
