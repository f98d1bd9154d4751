#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torvane::bench {

/// Win32 error numbers as <winerror.h> has them, for code that includes no Windows header.
inline constexpr std::uint32_t kErrorInvalidFunction = 1;
inline constexpr std::uint32_t kErrorFileNotFound = 2;
inline constexpr std::uint32_t kErrorPathNotFound = 3;
inline constexpr std::uint32_t kErrorAccessDenied = 5;
inline constexpr std::uint32_t kErrorWriteProtect = 19;
inline constexpr std::uint32_t kErrorNotReady = 21;
inline constexpr std::uint32_t kErrorCrc = 23;
inline constexpr std::uint32_t kErrorSeek = 25;
inline constexpr std::uint32_t kErrorSectorNotFound = 27;
inline constexpr std::uint32_t kErrorInvalidParameter = 87;
inline constexpr std::uint32_t kErrorSemTimeout = 121;
inline constexpr std::uint32_t kErrorInsufficientBuffer = 122;
inline constexpr std::uint32_t kErrorMoreData = 234;
inline constexpr std::uint32_t kErrorIoDevice = 1117;
inline constexpr std::uint32_t kErrorDeviceNotConnected = 1167;
inline constexpr std::uint32_t kErrorRevisionMismatch = 1306;

/// The number behind a name such as "ERROR_CRC"; nothing for a name that is not in the table.
[[nodiscard]] std::optional<std::uint32_t> errorNumber(std::string_view name);

/// The error's name; its number in decimal when the table has no name for it.
[[nodiscard]] std::string errorName(std::uint32_t number);

} // namespace torvane::bench
