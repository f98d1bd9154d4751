#include "discovery/disk_attributes.h"

#include "base/bytes.h"
#include "discovery/device_request.h"

#include <windows.h>

#include <winioctl.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace torvane {

namespace {

// From <winioctl.h> of Windows 7 on; mingw's has neither.
constexpr std::uint32_t kGetDiskAttributes = CTL_CODE(IOCTL_DISK_BASE, 0x003c, METHOD_BUFFERED, FILE_ANY_ACCESS);
constexpr std::uint64_t kAttributeReadOnly = 2;

// GET_DISK_ATTRIBUTES: 32-bit version and reserved word, 64-bit attributes.
constexpr std::size_t kAttributesOffset = 8;
constexpr std::size_t kAnswerBytes = 16;

} // namespace

std::optional<bool> readReadOnlyAttribute(NativeHandle device) {
    std::array<std::uint8_t, kAnswerBytes> buffer{};
    const auto answer = requestFromDevice(device, kGetDiskAttributes, {}, buffer);
    if (!answer || answer->size() < kAnswerBytes) {
        return std::nullopt;
    }
    return (loadLe<std::uint64_t>(*answer, kAttributesOffset) & kAttributeReadOnly) != 0;
}

} // namespace torvane
