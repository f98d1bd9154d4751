#include "ui/tool_tip.h"

#include "base/wide_text.h"

#include <commctrl.h>

namespace torvane {

namespace {

constexpr LPARAM kMaximumWidth = 600; // pixels; a longer text takes more lines

} // namespace

void ToolTip::attach(HWND control, const std::string& text) {
    control_ = control;
    tip_ = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0,
                           GetParent(control), nullptr, GetModuleHandleA(nullptr), nullptr);
    SendMessageA(tip_, TTM_SETMAXTIPWIDTH, 0, kMaximumWidth);
    send(TTM_ADDTOOLW, text);
}

void ToolTip::setText(const std::string& text) {
    if (tip_ != nullptr) {
        send(TTM_UPDATETIPTEXTW, text);
    }
}

void ToolTip::send(UINT message, const std::string& text) {
    std::wstring ownText = wideText(text);
    TOOLINFOW tool{};
    tool.cbSize = sizeof(tool);
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = GetParent(control_);
    tool.uId = reinterpret_cast<UINT_PTR>(control_);
    tool.lpszText = ownText.data();
    SendMessageA(tip_, message, 0, reinterpret_cast<LPARAM>(&tool));
}

} // namespace torvane
