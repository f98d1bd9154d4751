#pragma once

#include <windows.h>

namespace torvane {

struct CompanyInfo;

/// Lets the user edit the record and save it to "Config.db"; returns when the dialog is closed.
void configureCompanyInfo(CompanyInfo& info, HWND owner);

} // namespace torvane
