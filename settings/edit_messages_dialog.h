#pragma once

#include "records/message_table.h"

#include <windows.h>

namespace torvane {

/// Lets the user edit the texts of the advice messages; returns when the dialog is closed.
void editMessages(MessageTable& messages, HWND owner);

} // namespace torvane
