#include "ui/held_commands.h"

#include <utility>

namespace torvane {

namespace {

HeldCommands* current = nullptr; // the window's thread alone

} // namespace

HeldCommands::HeldCommands() : outer_(std::exchange(current, this)) {}

HeldCommands::~HeldCommands() {
    current = outer_;
    for (const HeldCommand& command : commands_) {
        PostMessageA(command.dialog, kHeldCommandMessage, command.wParam, 0);
    }
}

bool HeldCommands::someoneIsWaitedFor() {
    return current != nullptr;
}

bool HeldCommands::holdsBack(HWND dialog, WPARAM wParam, bool wayOut) {
    if (current != nullptr && wayOut) {
        current->commands_.push_back({dialog, wParam});
    }
    return current != nullptr;
}

} // namespace torvane
