#include "discovery/controller_identity.h"

#include "discovery/device_text.h"

#include <cstddef>
#include <string>

namespace torvane {

namespace {

// NVMe Base Specification, figure "Identify Controller Data Structure": ASCII, padded with blanks.
constexpr std::size_t kSerialNumberAt = 4;
constexpr std::size_t kSerialNumberWidth = 20;
constexpr std::size_t kModelAt = 24;
constexpr std::size_t kModelWidth = 40;
constexpr std::size_t kFirmwareAt = 64;
constexpr std::size_t kFirmwareWidth = 8;

std::string textAt(ByteView identify, std::size_t offset, std::size_t width) {
    std::string text;
    for (std::size_t i = offset; i < offset + width && i < identify.size() && identify[i] != 0; ++i) {
        text += static_cast<char>(identify[i]);
    }
    return std::string(trimBlanks(text));
}

} // namespace

PrintedIdentity parseControllerIdentity(ByteView identify) {
    return {.serialNumber = textAt(identify, kSerialNumberAt, kSerialNumberWidth),
            .model = textAt(identify, kModelAt, kModelWidth),
            .firmware = textAt(identify, kFirmwareAt, kFirmwareWidth)};
}

} // namespace torvane
