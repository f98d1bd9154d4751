#include "window/drive_changes.h"

#include <dbt.h>

namespace torvane {

namespace {

/// GUID_DEVINTERFACE_DISK (ntddstor.h).
constexpr GUID kDisks{0x53f56307, 0xb6bf, 0x11d0, {0x94, 0xf2, 0x00, 0xa0, 0xc9, 0x1e, 0xfb, 0x8b}};

} // namespace

DriveChanges::~DriveChanges() {
    if (notification_ != nullptr) {
        UnregisterDeviceNotification(notification_);
    }
}

void DriveChanges::watch(HWND window) {
    DEV_BROADCAST_DEVICEINTERFACE_W filter{};
    filter.dbcc_size = sizeof(filter);
    filter.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
    filter.dbcc_classguid = kDisks;
    notification_ = RegisterDeviceNotificationW(window, &filter, DEVICE_NOTIFY_WINDOW_HANDLE);
}

bool DriveChanges::isDrive(WPARAM event, LPARAM data) {
    if ((event != DBT_DEVICEARRIVAL && event != DBT_DEVICEREMOVECOMPLETE) || data == 0) {
        return false;
    }
    // Volumes come with the same events, unasked for.
    const auto& header = *reinterpret_cast<const DEV_BROADCAST_HDR*>(data);
    return header.dbch_devicetype == DBT_DEVTYP_DEVICEINTERFACE &&
           header.dbch_size >= sizeof(DEV_BROADCAST_DEVICEINTERFACE_W) &&
           reinterpret_cast<const DEV_BROADCAST_DEVICEINTERFACE_W&>(header).dbcc_classguid == kDisks;
}

} // namespace torvane
