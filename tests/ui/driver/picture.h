#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace torvane::driver {

/// Pixels copied from the screen.
class Picture {
  public:
    /// What the screen shows in a rectangle (screen pixels).
    [[nodiscard]] static Picture ofScreen(const RECT& rect);
    /// The same as soon as it has stood still for a while: what was painted just before has arrived on the screen.
    [[nodiscard]] static Picture atRest(const RECT& rect);
    /// A PNG file upon a colour. Throws when it cannot be read.
    [[nodiscard]] static Picture ofFile(const std::string& path, COLORREF background);
    /// An empty picture of one colour to draw on.
    Picture(int width, int height, COLORREF colour);

    [[nodiscard]] bool operator==(const Picture& other) const = default;

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] COLORREF at(int x, int y) const;
    /// The colour that most pixels have.
    [[nodiscard]] COLORREF commonest() const;
    /// The pixels that have exactly this colour.
    [[nodiscard]] int count(COLORREF colour) const;

    /// Draws an icon with its top-left corner at a place of the picture.
    void drawIcon(HICON icon, int x, int y); // NOLINT(bugprone-easily-swappable-parameters)

    /// Draws another picture with its top-left corner at a place that may lie outside this one; what does not fit is
    /// left out.
    void draw(const Picture& other, int x, int y); // NOLINT(bugprone-easily-swappable-parameters)

    /// Writes a line of black letters into the middle.
    void writeCentred(const std::string& text, const char* font, int height, int weight);

    /// Writes a PNG file, making the folders on its way. Throws when that fails.
    void save(const std::string& path) const;

  private:
    /// Lets `onto` draw into a device context that holds the picture.
    template <typename Paint>
    void paint(Paint&& onto);

    int width_;
    int height_;
    std::vector<DWORD> pixels_; ///< top row first, 0x00RRGGBB
};

/// Red, green, blue as "R80 G175 B228", for failure texts.
[[nodiscard]] std::string toText(COLORREF colour);

/// The sum of the three channels' differences, 0 to 765.
[[nodiscard]] int distance(COLORREF left, COLORREF right);

} // namespace torvane::driver
