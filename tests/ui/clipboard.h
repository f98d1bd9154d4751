#pragma once

#include <string>

namespace torvane::driver {

/// The clipboard for a scope: nobody else has it meanwhile.
class Clipboard {
  public:
    Clipboard();
    ~Clipboard();
    Clipboard(const Clipboard&) = delete;
    Clipboard& operator=(const Clipboard&) = delete;

    [[nodiscard]] static std::wstring text(); ///< "(nothing)" when there is none
    static void empty();
};

/// Its text, which is ASCII.
[[nodiscard]] std::string clipboardText();

} // namespace torvane::driver
