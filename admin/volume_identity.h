#pragma once

#include "admin/destruction_warning.h"

#include <cstdint>
#include <optional>
#include <string>

namespace torvane {

/// Asks the system for the volume's label and serial number. None when the volume does not answer; no box of the
/// system's own asks for a medium then.
[[nodiscard]] std::optional<VolumeIdentity> readVolumeIdentity(const std::wstring& root);

/// Asks the volume with that name, "\\?\Volume{...}\", for the bytes of all its extents. None when it does not tell
/// them. It is not mounted for that.
[[nodiscard]] std::optional<std::uint64_t> readVolumeLength(const std::wstring& name);

} // namespace torvane
