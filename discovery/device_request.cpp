#include "discovery/device_request.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>

namespace torvane {

NativeHandle openDevice(const char* path, std::uint32_t flagsAndAttributes) {
    const HANDLE device = CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, flagsAndAttributes, nullptr);
    return device == INVALID_HANDLE_VALUE ? nullptr : device;
}

NativeHandle openDeviceForQuery(const char* path) {
    const HANDLE device = CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    return device == INVALID_HANDLE_VALUE ? nullptr : device;
}

std::optional<ByteView> requestFromDevice(NativeHandle device, std::uint32_t controlCode, ByteView input,
                                          std::span<std::uint8_t> output) {
    // DeviceIoControl only reads its input, although it asks for a pointer to something that may change.
    void* const request = const_cast<std::uint8_t*>(input.data());
    DWORD returned = 0;
    if (DeviceIoControl(device, controlCode, input.empty() ? nullptr : request, static_cast<DWORD>(input.size()),
                        output.data(), static_cast<DWORD>(output.size()), &returned, nullptr) == 0) {
        return std::nullopt;
    }
    return ByteView(output).first(std::min<std::size_t>(returned, output.size()));
}

bool isUnknownRequest(std::uint32_t error) {
    return error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED;
}

} // namespace torvane
