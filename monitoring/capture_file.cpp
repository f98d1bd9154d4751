#include "monitoring/capture_file.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace torvane {

namespace {

/// Far more than all reports of one scan.
constexpr std::uint64_t kRoom = std::uint64_t{64} << 20;

bool hasRoom() {
    ULARGE_INTEGER free{};
    return GetDiskFreeSpaceExW(L".\\", &free, nullptr, nullptr) != FALSE && free.QuadPart >= kRoom;
}

UniqueFile makeFile(const std::wstring& name, SECURITY_ATTRIBUTES* inheritable) {
    return UniqueFile{CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, inheritable, CREATE_NEW,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr)};
}

} // namespace

UniqueFile makeCaptureFile(SECURITY_ATTRIBUTES* inheritable) {
    // What a power failure has left may have the name of a process of today.
    constexpr int kTries = 100;
    static std::atomic<unsigned> made{0};
    if (!hasRoom()) {
        return {};
    }
    const std::wstring begin = L"Torvane-" + std::to_wstring(GetCurrentProcessId()) + L"-";
    for (int i = 0; i < kTries; ++i) {
        UniqueFile file = makeFile(begin + std::to_wstring(made++) + L".tmp", inheritable);
        if (file || GetLastError() != ERROR_FILE_EXISTS) {
            return file;
        }
    }
    return {};
}

} // namespace torvane
