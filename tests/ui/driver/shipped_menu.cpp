#include "tests/ui/driver/shipped_menu.h"

#include "tests/ui/driver/bench_folder.h"
#include "tests/ui/driver/text.h"
#include "tests/ui/driver/wait.h"

#include <windows.h>

#include <array>

namespace torvane::driver {
namespace {

constexpr int kMainMenu = 129;

std::vector<MenuItem> readItems(HMENU menu) { // NOLINT(misc-no-recursion): a menu is as deep as it is
    std::vector<MenuItem> items;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        std::array<wchar_t, 256> text{};
        GetMenuStringW(menu, static_cast<UINT>(i), text.data(), static_cast<int>(text.size()), MF_BYPOSITION);
        MenuItem item{static_cast<int>(GetMenuItemID(menu, i)), toUtf8(text.data()), {}};
        if (const HMENU popup = GetSubMenu(menu, i); popup != nullptr) {
            item.items = readItems(popup);
        }
        items.push_back(item);
    }
    return items;
}

/// The program's file, opened for its resources.
class ShippedProgram {
  public:
    ShippedProgram()
        : module_(LoadLibraryExW((packageFolder() / "Torvane.exe").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)) {
        if (module_ == nullptr) {
            throw Failure("the shipped program cannot be opened");
        }
    }
    ~ShippedProgram() { FreeLibrary(module_); }
    ShippedProgram(const ShippedProgram&) = delete;
    ShippedProgram& operator=(const ShippedProgram&) = delete;

    [[nodiscard]] HMODULE module() const { return module_; }

  private:
    HMODULE module_;
};

} // namespace

std::vector<MenuItem> shippedMainMenu() {
    const ShippedProgram program;
    const HMENU menu = LoadMenuW(program.module(), MAKEINTRESOURCEW(kMainMenu));
    if (menu == nullptr) {
        throw Failure("no main menu in the shipped program");
    }
    std::vector<MenuItem> items = readItems(menu);
    DestroyMenu(menu);
    return items;
}

std::string shippedString(unsigned id) {
    const ShippedProgram program;
    std::array<wchar_t, 512> text{};
    if (LoadStringW(program.module(), id, text.data(), static_cast<int>(text.size())) == 0) {
        throw Failure("no string " + std::to_string(id) + " in the shipped program");
    }
    return toUtf8(text.data());
}

} // namespace torvane::driver
