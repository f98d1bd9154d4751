#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace torvane {

/// A NUL-terminated 8-bit text in a field of `Width` bytes, terminator included.
///
/// Every copy is cut at `Width - 1` bytes, so outside text of any length is safe to assign. A default-constructed field
/// is zero-filled, as the records that hold it are.
template <std::size_t Width>
class FixedText {
  public:
    static_assert(Width > 1);

    /// Replaces the text; what does not fit is cut. The rest of the field is zero-filled.
    void assign(std::string_view text) {
        bytes_.fill('\0');
        const std::size_t length = std::min(text.size(), Width - 1);
        std::copy_n(text.begin(), length, bytes_.begin());
    }

    void clear() { bytes_.fill('\0'); }

    /// The text up to its first NUL.
    [[nodiscard]] std::string_view view() const {
        const auto end = std::find(bytes_.begin(), bytes_.end() - 1, '\0');
        return {bytes_.data(), static_cast<std::size_t>(end - bytes_.begin())};
    }

    [[nodiscard]] const char* c_str() const { return bytes_.data(); }
    [[nodiscard]] bool empty() const { return bytes_.front() == '\0'; }

    /// The field's bytes but for the last, which stays NUL: for layouts that overwrite the start of a text in place.
    [[nodiscard]] std::span<char> writableBytes() { return std::span<char>(bytes_).first(Width - 1); }

  private:
    std::array<char, Width> bytes_{};
};

} // namespace torvane
