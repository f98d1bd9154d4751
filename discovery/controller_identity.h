#pragma once

#include "base/bytes.h"
#include "records/device_identity.h"

namespace torvane {

/// Serial number (bytes 4-23), model (bytes 24-63) and firmware revision (bytes 64-71) of Identify Controller data
/// (NVMe Base Specification), each up to a NUL, blanks at both ends trimmed. Bytes missing from `identify` are no text.
[[nodiscard]] PrintedIdentity parseControllerIdentity(ByteView identify);

} // namespace torvane
