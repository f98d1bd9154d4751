#pragma once

#include "surface/read_test_system.h"

namespace torvane {

struct AppState;

/// The read tests' world as it is.
class WindowsReadTestSystem : public ReadTestSystem {
  public:
    explicit WindowsReadTestSystem(AppState& state) : state_(state) {}

    bool seek(const DriveRecord& drive, std::uint64_t offset) override;
    bool read(const DriveRecord& drive, std::uint64_t offset, std::span<std::byte> bytes) override;
    ReadBuffer allocate(std::size_t size) override;
    std::uint32_t milliseconds() override;
    void beginFineClock() override;
    void endFineClock() override;
    int random() override;
    void log(const char* category, const std::string& text) override;
    void setDriveStatus(const DriveRecord& drive, const std::string& text) override;
    void setWideProgress(int position) override;

  private:
    AppState& state_;
};

} // namespace torvane
