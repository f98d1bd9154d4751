#include "records/device_identity.h"

#include "base/ascii.h"
#include "records/serial_number.h"

#include <functional>

namespace torvane {

namespace {

std::optional<std::string> descriptorSerial(const DeviceIdentity& device) {
    return device.descriptor ? device.descriptor->serialNumber : std::nullopt;
}

/// What was not told is not compared.
template <typename Told>
bool isToldAgain(const std::optional<Told>& before, const std::optional<Told>& now) {
    return !before || before == now;
}

template <typename Told, typename Same>
FoundAgain compareTold(const std::optional<Told>& before, const std::optional<Told>& now, Same same) {
    if (!before) {
        return FoundAgain::kSame;
    }
    if (!now) {
        return FoundAgain::kNotTold;
    }
    return same(*before, *now) ? FoundAgain::kSame : FoundAgain::kOther;
}

} // namespace

std::string deviceSerialNumber(const DeviceIdentity& device) {
    for (const std::string& told : {device.identifySerial, descriptorSerial(device).value_or("")}) {
        const std::string_view serial = withoutBlanksAround(told);
        if (!serial.empty() && isPrintableAscii(serial)) {
            return std::string(serial);
        }
    }
    return {};
}

bool isSerialNumberOf(const DeviceIdentity& device, std::string_view reported) {
    return isSameSerialNumber(device.identifySerial, reported) ||
           isSameSerialNumber(descriptorSerial(device).value_or(""), reported);
}

bool isSameDevice(const DeviceIdentity& probed, const std::optional<StorageDeviceTexts>& nowTold) {
    if (!probed.descriptor) {
        return true;
    }
    const StorageDeviceTexts& before = *probed.descriptor;
    return nowTold && before.busType == nowTold->busType && isToldAgain(before.vendor, nowTold->vendor) &&
           isToldAgain(before.product, nowTold->product) && isToldAgain(before.revision, nowTold->revision) &&
           isToldAgain(before.serialNumber, nowTold->serialNumber);
}

FoundAgain findAgain(const std::optional<PartitionTable>& before, const std::optional<PartitionTable>& now) {
    return compareTold(before, now, nameSameDisk);
}

FoundAgain findAgain(const std::optional<std::uint32_t>& before, const std::optional<std::uint32_t>& now) {
    return compareTold(before, now, std::equal_to<>());
}

} // namespace torvane
