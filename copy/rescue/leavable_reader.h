#pragma once

#include "base/transfer_outcome.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace torvane {

/// Reads on a thread of its own, so that a read which never returns can be left: whoever waits for it goes, the thread
/// stays with what it owns until its read ends, or the program. One thread at a time may use this.
class LeavableReader {
  public:
    /// Moves the whole span from a place, in bytes.
    using Read = std::function<TransferOutcome(std::uint64_t, std::span<std::byte>)>;

    /// `read` is called on the reader's thread, and kept until its last call has ended: it owns what it uses. Where the
    /// system has no room for a thread, reads are made on the caller's, and none can be left.
    explicit LeavableReader(Read read);
    /// Never waits for a read.
    ~LeavableReader();
    LeavableReader(const LeavableReader&) = delete;
    LeavableReader& operator=(const LeavableReader&) = delete;

    /// None when `mayWait`, which is asked every tenth of a second, has said no before the read ended. From then on
    /// nothing can be read.
    [[nodiscard]] std::optional<TransferOutcome> read(std::uint64_t offset, std::span<std::byte> bytes,
                                                      const std::function<bool()>& mayWait);

  private:
    struct Shared;

    std::shared_ptr<Shared> shared_;
    bool threaded_ = false;
};

} // namespace torvane
