#pragma once

#include "admin/destruction_warning.h"

namespace torvane {

/// Asks the system for the volume's label and serial number. None when the volume does not answer; no box of the
/// system's own asks for a medium then.
[[nodiscard]] std::optional<VolumeIdentity> readVolumeIdentity(const std::wstring& root);

} // namespace torvane
