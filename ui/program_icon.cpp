#include "ui/program_icon.h"

#include <commctrl.h>

namespace torvane {

UniqueIcon programIcon(int resourceId, PixelSize size) {
    HICON icon = nullptr;
    LoadIconWithScaleDown(GetModuleHandleA(nullptr), MAKEINTRESOURCEW(resourceId), size.width, size.height, &icon);
    return UniqueIcon{icon};
}

} // namespace torvane
