#pragma once

#include <string>
#include <vector>

namespace torvane::driver {

// What the program's file in the shippable folder carries.

/// One item of a menu as the program's file carries it. (A running program's menus are its own: other processes may
/// choose from them but not read them.)
struct MenuItem {
    int id = 0; ///< 0: separator; -1: popup
    std::string text;
    std::vector<MenuItem> items; ///< of a popup
};

/// The main menu's items, from the program in the shippable folder.
[[nodiscard]] std::vector<MenuItem> shippedMainMenu();

/// An entry of the string table of the program in the shippable folder.
[[nodiscard]] std::string shippedString(unsigned id);

/// The manifest by which the system starts that program, without its comments.
[[nodiscard]] std::string shippedManifest();

/// The program's version resource.
struct ShippedVersion {
    std::string file;    ///< the numbers, "1.2.0.0"
    std::string product; ///< the numbers
    std::string fileText;
    std::string productText;
    std::string productName;
    std::string description;
    std::string originalFileName;
};
[[nodiscard]] ShippedVersion shippedVersion();

/// The size of a PNG file's picture, in pixels. Throws when the bytes are none.
struct PngSize {
    int width = 0;
    int height = 0;
    bool operator==(const PngSize&) const = default;
};
[[nodiscard]] PngSize pngSize(const std::string& bytes);

/// The size of the rendering of a picture that the program carries for screens of `dpi` dots to the inch. Throws when
/// it has none.
[[nodiscard]] PngSize shippedRenderingSize(const std::string& picture, int dpi);

/// The widths of the pictures in the program's first icon, which the system shows for the file.
[[nodiscard]] std::vector<int> shippedIconWidths();

} // namespace torvane::driver
