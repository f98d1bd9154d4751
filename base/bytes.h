#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

using ByteView = std::span<const std::uint8_t>;

/// Reads an unsigned little-endian number of `sizeof(Number)` bytes at `offset`.
/// Bytes outside the view read as zero, so that an offset taken from a device needs no check of its own.
template <typename Number>
[[nodiscard]] constexpr Number loadLe(ByteView bytes, std::size_t offset) {
    Number value = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        if (offset < bytes.size() && i < bytes.size() - offset) {
            value = static_cast<Number>(value | (static_cast<Number>(bytes[offset + i]) << (8 * i)));
        }
    }
    return value;
}

[[nodiscard]] constexpr std::uint16_t loadLe16(ByteView bytes, std::size_t offset) {
    return loadLe<std::uint16_t>(bytes, offset);
}
[[nodiscard]] constexpr std::uint32_t loadLe32(ByteView bytes, std::size_t offset) {
    return loadLe<std::uint32_t>(bytes, offset);
}
[[nodiscard]] constexpr std::uint64_t loadLe64(ByteView bytes, std::size_t offset) {
    return loadLe<std::uint64_t>(bytes, offset);
}

/// Writes `value` little-endian at `offset`; bytes that would fall outside `bytes` are not written.
template <typename Number>
constexpr void storeLe(std::span<std::uint8_t> bytes, std::size_t offset, Number value) {
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        if (offset < bytes.size() && i < bytes.size() - offset) {
            bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
    }
}

/// A 32-bit number in a record's layout: four bytes, little-endian, at any address.
class LittleEndian32 {
  public:
    constexpr LittleEndian32() = default;
    constexpr LittleEndian32& operator=(std::uint32_t value) {
        storeLe(bytes_, 0, value);
        return *this;
    }
    constexpr operator std::uint32_t() const { return loadLe32(bytes_, 0); }

  private:
    std::array<std::uint8_t, 4> bytes_{};
};

} // namespace torvane
