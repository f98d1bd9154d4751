#include "copy/engine/block_sink.h"

#include "copy/engine/block_io.h"

namespace torvane {

TransferOutcome DriveSink::store(const BlockExtent& extent, std::span<const std::byte> bytes) {
    return WriteBlock(io_, drive_, bytes, extent.offset);
}

TransferOutcome HashingSink::store(const BlockExtent& extent, std::span<const std::byte> bytes) {
    hashing_.begin(bytes);
    const TransferOutcome outcome = inner_.store(extent, bytes);
    const bool hashed = hashing_.finish();
    hashedAll_ = hashedAll_ && hashed;
    return outcome;
}

} // namespace torvane
