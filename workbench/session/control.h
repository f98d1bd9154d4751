#pragma once

#include "workbench/session/bench_session.h"

#include <cstdint>
#include <span>
#include <vector>

namespace torvane::bench {

/// One DeviceIoControl. `in` is a copy: callers often pass the same memory for both directions.
struct ControlRequest {
    DWORD code = 0;
    std::vector<std::uint8_t> in;
    std::span<std::uint8_t> out;
};

struct ControlResult {
    DWORD error = 0;
    DWORD bytes = 0; ///< returned in `out`
};

/// Answers a control request as the drive's, volume's or port's driver would, and logs it.
[[nodiscard]] ControlResult controlDevice(BenchSession& session, OpenDevice& device, const ControlRequest& request);

/// The request's Windows name, or "ioctl:0x........".
[[nodiscard]] std::string controlName(DWORD code);

} // namespace torvane::bench
