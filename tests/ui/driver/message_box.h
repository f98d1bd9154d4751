#pragma once

#include "tests/ui/driver/window.h"

#include <ostream>
#include <string>
#include <vector>

namespace torvane::driver {

enum class BoxIcon { kNone, kStop, kQuestion, kExclamation, kInformation, kUnknown };

std::ostream& operator<<(std::ostream& stream, BoxIcon icon);

/// An open message box.
class MessageBoxWindow {
  public:
    explicit MessageBoxWindow(const Window& window) : window_(window) {}

    /// True for a dialog that looks like a message box: texts, at most one icon, and buttons that close it.
    [[nodiscard]] static bool isOne(const Window& window);

    [[nodiscard]] const Window& window() const { return window_; }
    [[nodiscard]] std::string caption() const { return window_.text(); }
    /// False when the box is too narrow for its caption and the close box beside it.
    [[nodiscard]] bool showsWholeCaption() const;
    [[nodiscard]] std::string text() const;
    /// The icon that the box shows, recognised by its picture.
    [[nodiscard]] BoxIcon icon() const;
    /// The buttons' words without access keys, from left to right.
    [[nodiscard]] std::vector<std::string> buttons() const;

    /// Presses the button with that word and returns when the box is gone.
    void answer(const std::string& word) const;

  private:
    Window window_;
};

/// The text of a button or menu item without its access key's mark.
[[nodiscard]] std::string withoutAccessKey(const std::string& text);
/// Its access key in upper case; 0 when it has none.
[[nodiscard]] char accessKey(const std::string& text);

} // namespace torvane::driver
