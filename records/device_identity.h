#pragma once

#include "records/partition_table.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// What the probe takes from a STORAGE_DEVICE_DESCRIPTOR (Win32, ntddstor.h). Texts are as the device gave them; absent
/// when their offset is zero or points outside what the device returned.
struct StorageDeviceTexts {
    std::int32_t busType = 0;
    std::optional<std::string> vendor;
    std::optional<std::string> product;
    std::optional<std::string> revision;
    std::optional<std::string> serialNumber;
};

/// What a device told of itself when it was probed. Its report, which may be of another drive, never changes it.
struct DeviceIdentity {
    std::optional<StorageDeviceTexts> descriptor; ///< none: the device did not answer
    std::string identifySerial;                   ///< of IDENTIFY DEVICE, without blanks around it; empty: not told
    std::optional<std::uint32_t> mediaChanges;    ///< since its driver started; none: not told
};

/// What an NVMe controller tells of itself (NVMe Base Specification, Identify Controller), and what its label has: the
/// system's descriptor often tells an EUI-64 as serial number. Texts are as the controller gave them; empty: not told.
struct PrintedIdentity {
    std::string serialNumber;
    std::string model;
    std::string firmware;

    bool operator==(const PrintedIdentity&) const = default;
};

/// The serial number that the device itself tells, without blanks around it: that of IDENTIFY DEVICE, else the
/// descriptor's. Empty when it tells none, or none that is printable.
[[nodiscard]] std::string deviceSerialNumber(const DeviceIdentity& device);

/// True when a report with that serial number is one of this device: the number is one of those that the device tells.
[[nodiscard]] bool isSerialNumberOf(const DeviceIdentity& device, std::string_view reported);

/// True when all that was told of the device at its probe is told again, and alike. `nowTold`: of the device that is
/// there now.
[[nodiscard]] bool isSameDevice(const DeviceIdentity& probed, const std::optional<StorageDeviceTexts>& nowTold);

/// How something that was told was found again.
enum class FoundAgain {
    kSame,    ///< or never told
    kNotTold, ///< told then, not told now
    kOther,
};

/// What names the disk in its partition table: `before` as it was last taken for the drive's own.
[[nodiscard]] FoundAgain findAgain(const std::optional<PartitionTable>& before,
                                   const std::optional<PartitionTable>& now);

/// Media changes since the device's driver started.
[[nodiscard]] FoundAgain findAgain(const std::optional<std::uint32_t>& before, const std::optional<std::uint32_t>& now);

} // namespace torvane
