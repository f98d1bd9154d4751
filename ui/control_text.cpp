#include "ui/control_text.h"

namespace torvane {

std::string controlText(HWND control) {
    std::string text(static_cast<std::size_t>(GetWindowTextLengthA(control)) + 1, '\0');
    text.resize(static_cast<std::size_t>(GetWindowTextA(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

} // namespace torvane
