#pragma once

#include "base/bytes.h"
#include "records/drive_record.h"

#include <cstdint>
#include <optional>
#include <span>

namespace torvane {

/// Opens a device for reading and writing, shared for both. Returns null on failure; the caller closes it.
[[nodiscard]] NativeHandle openDevice(const char* path, std::uint32_t flagsAndAttributes);

/// Opens a device for requests alone, without the right to read or write: a volume is not mounted for that. Returns
/// null on failure; the caller closes it.
[[nodiscard]] NativeHandle openDeviceForQuery(const char* path);

/// Sends a control request and returns what the device wrote into `output`, no more than it said it did. Nothing when
/// the request failed.
[[nodiscard]] std::optional<ByteView> requestFromDevice(NativeHandle device, std::uint32_t controlCode, ByteView input,
                                                        std::span<std::uint8_t> output);

/// True for the errors (GetLastError) of a request that the device or its driver does not know: it tells nothing, and
/// nothing is wrong.
[[nodiscard]] bool isUnknownRequest(std::uint32_t error);

} // namespace torvane
