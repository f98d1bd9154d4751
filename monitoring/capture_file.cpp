#include "monitoring/capture_file.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace torvane {

namespace {

/// Far more than all reports of one scan.
constexpr std::uint64_t kRoom = std::uint64_t{64} << 20;

/// With a backslash at its end; empty when the system names none.
std::wstring temporaryFolder() {
    std::array<wchar_t, MAX_PATH + 2> path{};
    const DWORD length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    return {path.data(), length < path.size() ? length : 0};
}

bool hasRoom(const std::wstring& folder) {
    ULARGE_INTEGER free{};
    return GetDiskFreeSpaceExW(folder.c_str(), &free, nullptr, nullptr) != FALSE && free.QuadPart >= kRoom;
}

UniqueFile makeFile(const std::wstring& path, SECURITY_ATTRIBUTES* inheritable) {
    return UniqueFile{CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, inheritable, CREATE_NEW,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr)};
}

} // namespace

UniqueFile makeCaptureFile(SECURITY_ATTRIBUTES* inheritable) {
    // What a power failure has left may have the name of a process of today.
    constexpr int kTries = 100;
    static std::atomic<unsigned> made{0};
    const std::wstring folder = temporaryFolder();
    if (folder.empty() || !hasRoom(folder)) {
        return {};
    }
    const std::wstring begin = folder + L"Torvane-" + std::to_wstring(GetCurrentProcessId()) + L"-";
    for (int i = 0; i < kTries; ++i) {
        UniqueFile file = makeFile(begin + std::to_wstring(made++) + L".tmp", inheritable);
        if (file || GetLastError() != ERROR_FILE_EXISTS) {
            return file;
        }
    }
    return {};
}

} // namespace torvane
