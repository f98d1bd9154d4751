#include "ui/tool_tip.h"

#include <commctrl.h>

#include <utility>

namespace torvane {

namespace {

constexpr LPARAM kMaximumWidth = 600; // pixels; a longer text takes more lines

} // namespace

void ToolTip::attach(HWND control, const std::string& text) {
    control_ = control;
    tip_ = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0,
                           GetParent(control), nullptr, GetModuleHandleA(nullptr), nullptr);
    SendMessageA(tip_, TTM_SETMAXTIPWIDTH, 0, kMaximumWidth);
    send(TTM_ADDTOOLA, text);
}

void ToolTip::setText(const std::string& text) {
    if (tip_ != nullptr) {
        send(TTM_UPDATETIPTEXTA, text);
    }
}

void ToolTip::send(UINT message, std::string text) {
    TOOLINFOA tool{};
    tool.cbSize = sizeof(tool);
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = GetParent(control_);
    tool.uId = reinterpret_cast<UINT_PTR>(control_);
    tool.lpszText = text.data();
    SendMessageA(tip_, message, 0, reinterpret_cast<LPARAM>(&tool));
}

} // namespace torvane
