#include "tests/ui/driver/screen.h"

#include "tests/ui/driver/wait.h"

namespace torvane::driver {

RECT wholeScreen() {
    return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

void prepareScreen() {
    constexpr LONG kLeastWidth = 1280;
    constexpr LONG kLeastHeight = 720;
    // Otherwise the system would tell of windows in pixels of 96 to the inch.
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    const RECT screen = wholeScreen();
    if (screen.right < kLeastWidth || screen.bottom < kLeastHeight) {
        throw Failure("the screen is " + std::to_string(screen.right) + " x " + std::to_string(screen.bottom) +
                      " pixels; at least " + std::to_string(kLeastWidth) + " x " + std::to_string(kLeastHeight) +
                      " are needed");
    }
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\Torvane.exe\\X11 Driver", 0, nullptr,
                        REG_OPTION_VOLATILE, KEY_SET_VALUE, nullptr, &key, nullptr) != ERROR_SUCCESS) {
        throw Failure("the registry takes no settings");
    }
    const wchar_t no[] = L"N";
    RegSetValueExW(key, L"Managed", 0, REG_SZ, reinterpret_cast<const BYTE*>(no), sizeof no);
    RegCloseKey(key);
}

} // namespace torvane::driver
