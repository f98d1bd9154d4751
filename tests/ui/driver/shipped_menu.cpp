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

} // namespace

std::vector<MenuItem> shippedMainMenu() {
    const auto file = packageFolder() / "Torvane.exe";
    const HMODULE module = LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const HMENU menu = module == nullptr ? nullptr : LoadMenuW(module, MAKEINTRESOURCEW(kMainMenu));
    if (menu == nullptr) {
        throw Failure("no main menu in " + file.string());
    }
    std::vector<MenuItem> items = readItems(menu);
    DestroyMenu(menu);
    FreeLibrary(module);
    return items;
}

} // namespace torvane::driver
