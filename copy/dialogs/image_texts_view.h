#pragma once

#include <windows.h>

#include <string>

namespace torvane {

struct DriveRecord;

/// Tells in an image dialog which drive is imaged, and into which folder.
void showImageTexts(HWND dialog, const DriveRecord& source, const std::string& folder);

} // namespace torvane
