#include "ui/prompt_owner.h"
#include "ui/prompts.h"

#include <atomic>

namespace torvane::prompts {

namespace {

std::atomic<HWND> mainOwner{nullptr};

// The dialog or box that is open above the main window: a new box belongs in front of it, whichever thread shows it.
HWND currentOwner() {
    const HWND window = mainOwner;
    return window == nullptr ? nullptr : GetLastActivePopup(window);
}

int show(const char* caption, const char* text, UINT style) {
    return MessageBoxA(currentOwner(), text, caption, style | MB_SETFOREGROUND);
}

} // namespace

void setOwner(HWND window) {
    mainOwner = window;
}

void stop(const char* caption, const char* text) {
    show(caption, text, MB_OK | MB_ICONSTOP);
}

void inform(const char* caption, const char* text) {
    show(caption, text, MB_OK);
}

void warn(const char* caption, const char* text) {
    show(caption, text, MB_OK | MB_ICONEXCLAMATION);
}

bool ask(const char* caption, const char* text) {
    return show(caption, text, MB_YESNO) == IDYES;
}

} // namespace torvane::prompts
