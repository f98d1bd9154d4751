#include "ui/tool_tip.h"

#include "base/wide_text.h"
#include "ui/window_scale.h"

#include <commctrl.h>

namespace torvane {

namespace {

constexpr int kMaximumWidth = 600; // at 96 dots to the inch; a longer text takes more lines

} // namespace

void ToolTip::attach(HWND control, const std::string& text) {
    control_ = control;
    tip_ = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0,
                           GetParent(control), nullptr, GetModuleHandleA(nullptr), nullptr);
    send(TTM_ADDTOOLW, text);
}

void ToolTip::setText(const std::string& text) {
    if (tip_ != nullptr) {
        send(TTM_UPDATETIPTEXTW, text);
    }
}

void ToolTip::send(UINT message, const std::string& text) {
    SendMessageA(tip_, TTM_SETMAXTIPWIDTH, 0, scaleOf(control_).px(kMaximumWidth));
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
