#pragma once

#include <windows.h>

#include <string>

namespace torvane {

struct DriveRecord;

/// Tells in an image dialog which drive is imaged, and into which folder.
void showImageTexts(HWND dialog, const DriveRecord& source, const std::string& folder);

/// Tells in an image dialog where the image goes: the folder, or the image's whole name.
void showImagePlace(HWND dialog, const std::string& path);

} // namespace torvane
