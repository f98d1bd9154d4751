#pragma once

#include "base/owned_handle.h"

namespace torvane {

/// A new file for what a tool prints, in the system's folder for temporary files (GetTempPath), readable and writable.
/// The system deletes it with its last handle, which may be one that a child has inherited, also when the program
/// crashes (CreateFile, FILE_FLAG_DELETE_ON_CLOSE). Empty when there is no such folder, or little room in it: a tool
/// would not say that its text was cut. `inheritable`: may be null.
[[nodiscard]] UniqueFile makeCaptureFile(SECURITY_ATTRIBUTES* inheritable);

} // namespace torvane
