#include "ui/control_text.h"

#include "base/wide_text.h"

namespace torvane {

std::wstring wideControlText(HWND control) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::string controlText(HWND control) {
    return ansiText(wideControlText(control));
}

void setWindowText(HWND control, const std::string& text) {
    SetWindowTextW(control, wideText(text).c_str());
}

} // namespace torvane
