#pragma once

#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

#include <memory>
#include <string_view>

namespace torvane {

// Pictures (PNG) that the program carries as resources. Null when there is none or it cannot be read. GDI+ must be
// running for as long as they live.

/// An RCDATA resource.
[[nodiscard]] std::unique_ptr<Gdiplus::Bitmap> embeddedPicture(int resourceId);

/// The rendering of the picture `name` for a screen of `dpi` dots to the inch, one of kRenderingDpis.
[[nodiscard]] std::unique_ptr<Gdiplus::Bitmap> embeddedRendering(std::string_view name, int dpi);

} // namespace torvane
