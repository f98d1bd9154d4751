#pragma once

#include <windows.h>

#include <vector>

namespace torvane {

/// The commands that reach dialogs while the window's thread waits for somebody (ui/waiting.h): kept in their order,
/// and sent on their way again when this goes. One at a time is asked; everything belongs to the window's thread.
class HeldCommands {
  public:
    HeldCommands();
    ~HeldCommands();
    HeldCommands(const HeldCommands&) = delete;
    HeldCommands& operator=(const HeldCommands&) = delete;

    /// True once a command came by which the user gets out of what he is in.
    [[nodiscard]] bool wayOutTaken() const { return wayOutTaken_; }

    /// What a dialog asks before it carries out a command. True: somebody is waited for, and the command was kept.
    [[nodiscard]] static bool holdsBack(const MSG& command, bool wayOut);

  private:
    std::vector<MSG> commands_;
    HeldCommands* outer_;
    bool wayOutTaken_ = false;
};

} // namespace torvane
