#include "discovery/auto_mount.h"

#include "base/bytes.h"
#include "base/owned_handle.h"
#include "discovery/device_request.h"

#include <windows.h>

#include <winioctl.h>

#include <array>
#include <cstdint>

namespace torvane {

namespace {

// From <mountmgr.h> of the driver kit; mingw's has neither.
constexpr std::uint32_t kQueryAutoMount = CTL_CODE('m', 15, METHOD_BUFFERED, FILE_ANY_ACCESS);
constexpr std::uint32_t kEnabled = 1; // MOUNTMGR_AUTO_MOUNT_STATE; 0: disabled
constexpr std::size_t kAnswerBytes = 4;

} // namespace

std::optional<bool> readAutoMount() {
    const UniqueHandle manager{openDeviceForQuery(R"(\\.\MountPointManager)")};
    std::array<std::uint8_t, kAnswerBytes> buffer{};
    const auto answer =
        manager ? requestFromDevice(manager.get(), kQueryAutoMount, {}, buffer) : std::optional<ByteView>();
    if (!answer || answer->size() < kAnswerBytes) {
        return std::nullopt;
    }
    return loadLe<std::uint32_t>(*answer, 0) == kEnabled;
}

} // namespace torvane
