#pragma once

#include "copy/rescue/rescue_system.h"

namespace torvane {

/// A rescue's drive and image as they are: Win32 handles.
class WindowsRescueSystem : public RescueSystem {
  public:
    std::unique_ptr<RescueDrive> openDrive(const DriveRecord& drive, const DriveRecord* destination) override;
    std::unique_ptr<RescueImage> openImage(const std::string& path) override;
    std::optional<std::string> readText(const std::string& path) override;
    void pause() override;
};

} // namespace torvane
