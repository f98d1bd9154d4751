#include "base/wide_text.h"
#include "ui/prompt_owner.h"
#include "ui/prompts.h"
#include "ui/whole_caption.h"

#include <atomic>

namespace torvane::prompts {

namespace {

std::atomic<HWND> mainOwner{nullptr};

int show(const char* caption, const char* text, UINT style) {
    const WholeCaption wholeCaption;
    return MessageBoxW(owner(), wideText(text).c_str(), wideText(caption).c_str(), style | MB_SETFOREGROUND);
}

} // namespace

void setOwner(HWND window) {
    mainOwner = window;
}

HWND owner() {
    const HWND window = mainOwner;
    return window == nullptr ? nullptr : GetLastActivePopup(window);
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

bool askDefaultNo(const char* caption, const char* text) {
    return show(caption, text, MB_YESNO | MB_DEFBUTTON2) == IDYES;
}

} // namespace torvane::prompts
