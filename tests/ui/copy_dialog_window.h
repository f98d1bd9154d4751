#pragma once

#include "tests/ui/driver/list_view.h"
#include "tests/ui/driver/program.h"

#include <string>

namespace torvane::driver {

/// A copy dialog's buttons and what else its users find in it; ids are written down here once more so that a
/// renumbering is noticed.
struct CopyDialogIds {
    int start;
    int terminate;
    int exit;
};
inline constexpr CopyDialogIds kCloneIds{1012, 1013, 1014};
inline constexpr CopyDialogIds kImageIds{1017, 1018, 1019};
inline constexpr CopyDialogIds kForensicIds{1026, 1027, 1028};
inline constexpr CopyDialogIds kImageToDriveIds{1023, 1024, 1025};
inline constexpr CopyDialogIds kVerifyImageIds{1331, 1332, 1333};
inline constexpr CopyDialogIds kRescueIds{1355, 1356, 1357};
inline constexpr int kVerifyImage = 48; // in the main window's system menu
inline constexpr int kRescueTicked = 64;
inline constexpr int kReverseClone = 1016;
inline constexpr int kCopyStatus = 1080;
inline constexpr int kCopyLosses = 1095;
inline constexpr int kMountingHint = 1101;
inline constexpr int kVerifyAfterwards = 1360;
inline constexpr int kImagingText = 1083;
inline constexpr int kFolderText = 1084;
inline constexpr int kImagePathText = 1085;
inline constexpr int kSourceList = 6003;
inline constexpr int kDestinationList = 6004;

/// An open copy dialog.
class CopyDialogWindow {
  public:
    CopyDialogWindow(const Window& window, const CopyDialogIds& ids) : window_(window), ids_(ids) {}

    [[nodiscard]] const Window& window() const { return window_; }
    [[nodiscard]] Window startButton() const { return window_.child(ids_.start); }
    [[nodiscard]] Window terminateButton() const { return window_.child(ids_.terminate); }
    [[nodiscard]] Window exitButton() const { return window_.child(ids_.exit); }
    void start() const;
    void terminate() const;
    void exit() const;
    /// Presses "Exit" and waits until the dialog has gone.
    void leave() const;

    [[nodiscard]] std::string status() const { return window_.child(kCopyStatus).text(); }
    /// What the job has lost, in words.
    [[nodiscard]] Window losses() const { return window_.child(kCopyLosses); }
    void awaitStatus(const std::string& text) const;
    /// Waits until the status line has a text that begins so.
    void awaitStatusStart(const std::string& start) const;

    [[nodiscard]] ListView destinations() const { return ListView(window_.child(kDestinationList)); }
    void tickDestination(const std::string& model) const;

  private:
    Window window_;
    CopyDialogIds ids_;
};

/// Answers the warning that a destination will be overwritten.
void answerWarning(const Program& program, const std::string& word);

/// Waits until the warning is open.
[[nodiscard]] Window awaitWarning(const Program& program);

} // namespace torvane::driver
