#include "ui/fixed_font.h"

namespace torvane {

UniqueFont makeFixedFont(int height, int width) {
    return UniqueFont{CreateFontW(height, width, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                  OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH | FF_MODERN,
                                  L"Consolas")};
}

} // namespace torvane
