#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace torvane {

/// The shop's own file, beside the program.
inline constexpr const char* kLogoFileName = "logo.png";

/// A picture on white paper, row by row from the top, 3 bytes a pixel: red, green, blue.
struct LogoPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

struct LogoReading {
    std::optional<LogoPicture> picture;
    std::string error; ///< why there is none although there is a file; empty without a file
};

/// Reads a PNG file of up to 8 MiB and 4,000 pixels in each direction, of any colour type and depth; what is
/// transparent becomes white. On any thread.
[[nodiscard]] LogoReading readLogo(const char* fileName);

} // namespace torvane
