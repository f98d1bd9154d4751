#include "ui/held_commands.h"

#include <utility>

namespace torvane {

namespace {

HeldCommands* current = nullptr; // the window's thread alone

} // namespace

HeldCommands::HeldCommands() : outer_(std::exchange(current, this)) {}

HeldCommands::~HeldCommands() {
    current = outer_;
    for (const MSG& command : commands_) {
        PostMessageA(command.hwnd, command.message, command.wParam, command.lParam);
    }
}

bool HeldCommands::holdsBack(const MSG& command, bool wayOut) {
    if (current == nullptr) {
        return false;
    }
    current->commands_.push_back(command);
    current->wayOutTaken_ = current->wayOutTaken_ || wayOut;
    return true;
}

} // namespace torvane
