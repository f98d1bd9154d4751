#pragma once

#include <cstdint>

namespace torvane {

/// How the transfer of one block ended.
enum class TransferOutcome : std::uint8_t {
    kWhole,      ///< every byte was moved
    kNotReached, ///< nothing was moved: the position could not be reached
    kFailed,     ///< it failed or came back short; what of the buffer or the medium changed is unknown
    kGone,       ///< likewise, and the device is not there any more
    kRefused,    ///< likewise, and the system does not let it be written there (ERROR_ACCESS_DENIED)
};

/// True when the transfer was tried and did not end whole.
[[nodiscard]] constexpr bool hasFailed(TransferOutcome outcome) {
    return outcome != TransferOutcome::kWhole && outcome != TransferOutcome::kNotReached;
}

} // namespace torvane
