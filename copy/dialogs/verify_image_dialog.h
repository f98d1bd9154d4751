#pragma once

#include "copy/engine/block_hasher.h"

#include <windows.h>

#include <string_view>

namespace torvane {

struct AppState;

/// Lets the user compare the file `image` with digests, at first those that were found; returns when the dialog is
/// closed.
void showVerifyImageDialog(AppState& state, std::string_view image, const Digests& found, HWND owner);

} // namespace torvane
