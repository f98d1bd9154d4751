#include "ui/tool_tip.h"

#include <commctrl.h>

#include <string>

namespace torvane {

void addToolTip(HWND control, const char* text) {
    const HWND dialog = GetParent(control);
    const HWND tip = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP, 0, 0, 0, 0,
                                     dialog, nullptr, GetModuleHandleA(nullptr), nullptr);
    std::string ownText = text;
    TOOLINFOA tool{};
    tool.cbSize = sizeof(tool);
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = dialog;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = ownText.data();
    SendMessageA(tip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

} // namespace torvane
