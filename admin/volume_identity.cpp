#include "admin/volume_identity.h"

#include "base/wide_text.h"

#include <windows.h>

#include <array>

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

} // namespace torvane
