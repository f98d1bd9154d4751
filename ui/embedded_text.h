#pragma once

#include <windows.h>

#include <string_view>

namespace torvane {

/// What the program carries as that resource; empty for null, and when it cannot be read. Valid as long as the program
/// runs.
[[nodiscard]] std::string_view resourceBytes(HRSRC resource);

/// The same of an RCDATA resource.
[[nodiscard]] std::string_view embeddedText(int resourceId);

} // namespace torvane
