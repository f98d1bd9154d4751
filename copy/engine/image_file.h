#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

/// An open image file, read and written at its current position. Closed by its destructor.
class ImageFile {
  public:
    virtual ~ImageFile() = default;

    /// True when the whole span was transferred.
    [[nodiscard]] virtual bool read(std::span<std::byte> bytes) = 0;
    [[nodiscard]] virtual bool write(std::span<const std::byte> bytes) = 0;

    /// Moves to the start of the file.
    [[nodiscard]] virtual bool rewind() = 0;

    /// Bytes; 0 when the system does not tell.
    [[nodiscard]] virtual std::uint64_t size() = 0;
};

} // namespace torvane
