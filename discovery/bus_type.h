#pragma once

#include <cstdint>
#include <string_view>

namespace torvane {

/// STORAGE_BUS_TYPE values (Win32, ntddstor.h) on which the probe decides.
enum BusType : std::int32_t {
    kBusTypeUnknown = 0,
    kBusTypeScsi = 1,
    kBusTypeAta = 3,
    kBusTypeUsb = 7,
    kBusTypeRaid = 8,
    kBusTypeSata = 11,
    kBusTypeNvme = 17,
};

/// The bus's name, "Unknown" to "NVM Express"; "Unknown" too for a number outside 0 to 17.
[[nodiscard]] std::string_view busTypeText(std::int32_t busType);

} // namespace torvane
