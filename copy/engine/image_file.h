#pragma once

#include "base/transfer_outcome.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace torvane {

/// An open image file, read and written at its current position. Closed by its destructor.
class ImageFile {
  public:
    virtual ~ImageFile() = default;

    /// Moves the whole span.
    [[nodiscard]] virtual TransferOutcome read(std::span<std::byte> bytes) = 0;
    [[nodiscard]] virtual TransferOutcome write(std::span<const std::byte> bytes) = 0;

    /// Brings what was written onto the medium: whole, failed or gone. May be called from another thread while the next
    /// bytes are written.
    [[nodiscard]] virtual TransferOutcome flush() = 0;

    /// Moves to the start of the file.
    [[nodiscard]] virtual bool rewind() = 0;

    /// Bytes; 0 when the system does not tell.
    [[nodiscard]] virtual std::uint64_t size() = 0;
};

using OpenImages = std::vector<std::unique_ptr<ImageFile>>;

/// What an image file is opened for.
enum class ImageUse : std::uint8_t {
    kNew,    ///< a new file, to be written; never in an old one's place
    kAgain,  ///< one that was just made, to be read from its medium, not from a cache; others may use it too
    kCheck,  ///< one of some day, to be read from its medium; it may be read-only, and others may use it
    kSource, ///< to be read alone: nobody may write to it meanwhile
};

} // namespace torvane
