#include "ui/gdi_plus.h"

#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

namespace torvane {

bool GdiPlusSession::start() {
    const Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) {
        return false;
    }
    token_ = token;
    return true;
}

void GdiPlusSession::stop() {
    if (token_ != 0) {
        Gdiplus::GdiplusShutdown(token_);
        token_ = 0;
    }
}

} // namespace torvane
