#pragma once

#include <optional>
#include <string>

namespace torvane {

/// The folder behind a share of this computer; empty when Windows does not tell it. None when the server is another
/// computer, as far as its name tells: this one's own names, "localhost" and loopback addresses are known, an alias and
/// an address in the network are not.
[[nodiscard]] std::optional<std::wstring> localShareFolder(const std::wstring& server, const std::wstring& share);

} // namespace torvane
