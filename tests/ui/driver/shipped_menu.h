#pragma once

#include <string>
#include <vector>

namespace torvane::driver {

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

} // namespace torvane::driver
