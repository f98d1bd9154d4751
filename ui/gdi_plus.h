#pragma once

#include <cstdint>

namespace torvane {

/// The GDI+ library, started for a scope. Its images (std::unique_ptr<Gdiplus::Image> is their guard) must be gone
/// before it is.
class GdiPlusSession {
  public:
    GdiPlusSession() = default;
    ~GdiPlusSession() { stop(); }
    GdiPlusSession(const GdiPlusSession&) = delete;
    GdiPlusSession& operator=(const GdiPlusSession&) = delete;

    /// False when the library cannot be started.
    bool start();
    void stop();

  private:
    std::uintptr_t token_ = 0; ///< 0: not started
};

} // namespace torvane
