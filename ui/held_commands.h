#pragma once

#include <windows.h>

#include <vector>

namespace torvane {

/// The message, handled by every `Dialog`, by which a command that was held back reaches its dialog at last; `wParam`
/// is that of WM_COMMAND.
inline constexpr UINT kHeldCommandMessage = WM_APP + 100;

/// What becomes of the commands that reach dialogs while the window's thread waits for somebody (ui/waiting.h). Those
/// by which the user gets out of what he is in are kept in their order, and sent on their way when this goes. All
/// others are dropped: what they would work on then may be another drive than the one that the user saw. One at a time
/// is asked; everything belongs to the window's thread.
class HeldCommands {
  public:
    HeldCommands();
    ~HeldCommands();
    HeldCommands(const HeldCommands&) = delete;
    HeldCommands& operator=(const HeldCommands&) = delete;

    /// True once a command came by which the user gets out of what he is in.
    [[nodiscard]] bool wayOutTaken() const { return !commands_.empty(); }

    [[nodiscard]] static bool someoneIsWaitedFor();

    /// What a dialog asks before it carries out a command, with the `wParam` of its message. True: somebody is waited
    /// for, and the command was kept or dropped.
    [[nodiscard]] static bool holdsBack(HWND dialog, WPARAM wParam, bool wayOut);

  private:
    struct HeldCommand {
        HWND dialog;
        WPARAM wParam;
    };

    std::vector<HeldCommand> commands_;
    HeldCommands* outer_;
};

} // namespace torvane
