#pragma once

#include "base/owned_handle.h"

namespace torvane {

/// A new file for what a tool prints, "Torvane-<process>-<number>.tmp" in the current folder, where reports lie too:
/// the machine's own volume, with the user's folder for temporary files, may be the one that fails. Readable and
/// writable. The system deletes it with its last handle, which may be one that a child has inherited, also when the
/// program crashes (CreateFile, FILE_FLAG_DELETE_ON_CLOSE). Empty when it cannot be made there, or when there is little
/// room: a tool would not say that its text was cut. `inheritable`: may be null.
[[nodiscard]] UniqueFile makeCaptureFile(SECURITY_ATTRIBUTES* inheritable);

} // namespace torvane
