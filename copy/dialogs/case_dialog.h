#pragma once

#include <windows.h>

namespace torvane {

struct CaseInformation;

/// Lets the user change what is given along with an image; returns when the dialog is closed. Only OK changes it.
void editCaseInformation(CaseInformation& information, HWND owner);

} // namespace torvane
