#pragma once

#include <string>

namespace torvane {

// Empty where the system does not tell.

/// The machine's name in its network, in full: "desk-4.lab.example", or "DESK-4" outside a domain (GetComputerNameEx,
/// ComputerNameDnsFullyQualified).
[[nodiscard]] std::wstring machineName();

/// The name by which the user has logged on (GetUserName).
[[nodiscard]] std::wstring userName();

} // namespace torvane
