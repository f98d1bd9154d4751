#pragma once

#include "base/fixed_text.h"

namespace torvane {

/// Lets the user choose the folder that files go to, and makes it the current folder too when that is asked for. 1 when
/// `folder` holds it; 0, after a box, when the user cancelled (then `folder` stays as it was) or when it could not be
/// made the current one. No command asks for the current folder.
[[nodiscard]] int ChooseDestinationFolder(FixedText<1024>& folder, bool makeCurrent);

} // namespace torvane
