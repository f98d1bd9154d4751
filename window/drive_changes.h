#pragma once

#include <windows.h>

namespace torvane {

/// Hears of drives that come and go: the window gets WM_DEVICECHANGE for each (RegisterDeviceNotification, interface
/// class of disks), also for one without any volume.
class DriveChanges {
  public:
    DriveChanges() = default;
    ~DriveChanges();
    DriveChanges(const DriveChanges&) = delete;
    DriveChanges& operator=(const DriveChanges&) = delete;

    /// Where the system refuses, nothing is heard.
    void watch(HWND window);

    /// Of a WM_DEVICECHANGE: whether it tells that a drive has come or gone.
    [[nodiscard]] static bool isDrive(WPARAM event, LPARAM data);

  private:
    HDEVNOTIFY notification_ = nullptr;
};

} // namespace torvane
