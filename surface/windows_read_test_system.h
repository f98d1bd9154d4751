#pragma once

#include "surface/read_test_system.h"

namespace torvane {

class MainView;

/// The read tests' world as it is.
class WindowsReadTestSystem : public ReadTestSystem {
  public:
    /// `view`: null in tests that need no window.
    explicit WindowsReadTestSystem(MainView* view) : view_(view) {}

    ReadBuffer allocate(std::size_t size) override;
    std::uint32_t milliseconds() override;
    void beginFineClock() override;
    void endFineClock() override;
    int random() override;
    void log(const char* category, const std::string& text) override;
    void logJob(const std::string& text) override;
    void setDriveStatus(const DriveRecord& drive, const std::string& text) override;
    void setWideProgress(int position) override;

  private:
    MainView* view_;
};

} // namespace torvane
