#include "admin/volume_identity.h"

#include "base/ascii.h"
#include "base/wide_text.h"
#include "discovery/disk_place.h"
#include "discovery/volume_query.h"

#include <windows.h>

#include <array>
#include <numeric>

namespace torvane {

namespace {

/// Keeps the system from showing boxes of its own for a scope, on this thread.
class QuietErrors {
  public:
    QuietErrors() { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previous_); }
    ~QuietErrors() { SetThreadErrorMode(previous_, nullptr); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

  private:
    DWORD previous_ = 0;
};

} // namespace

std::optional<VolumeIdentity> readVolumeIdentity(const std::wstring& root) {
    const QuietErrors quiet;
    std::array<char, MAX_PATH + 1> label{};
    DWORD serialNumber = 0;
    if (!GetVolumeInformationA(ansiText(root).c_str(), label.data(), static_cast<DWORD>(label.size()), &serialNumber,
                               nullptr, nullptr, nullptr, 0)) {
        return std::nullopt;
    }
    label.back() = '\0';
    return VolumeIdentity{label.data(), serialNumber};
}

std::optional<std::uint64_t> readVolumeLength(const std::wstring& name) {
    const VolumeAnswer answer = askForExtents(asciiText(volumeDeviceOf(name)).c_str());
    if (!answer.whole) {
        return std::nullopt;
    }
    return std::accumulate(
        answer.extents.begin(), answer.extents.end(), std::uint64_t{0},
        [](std::uint64_t sum, const VolumeExtent& extent) { return sum + static_cast<std::uint64_t>(extent.length); });
}

} // namespace torvane
