#pragma once

#include "tests/ui/driver/bench_folder.h"
#include "tests/ui/driver/message_box.h"
#include "tests/ui/driver/wait.h"
#include "tests/ui/driver/window.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace torvane::driver {

/// What is started, and where.
struct Launch {
    std::filesystem::path launcher;    ///< bench.exe
    std::filesystem::path bench;       ///< the bench folder
    std::filesystem::path program;     ///< Torvane.exe
    std::filesystem::path startFolder; ///< the current folder at its start; empty: the program's own
};

/// A folder of its own in `runsFolder()` with a fresh copy of the shippable folder and of the bench in it.
[[nodiscard]] Launch freshRun(const std::string& name, const BenchFolder& bench);

/// The shipped program, started on a bench. When the object goes, the program and everything that it started are gone.
class Program {
  public:
    /// Returns when the main window is on the screen and takes input, or a dialog is in its place.
    explicit Program(Launch launch);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] DWORD processId() const { return processId_; }
    [[nodiscard]] const Window& mainWindow() const { return mainWindow_; }
    /// The program's current folder.
    [[nodiscard]] std::filesystem::path folder() const { return launch_.program.parent_path(); }
    /// Lines of the bench's log that contain every one of the texts, in order.
    [[nodiscard]] std::vector<std::string> benchLog(const std::vector<std::string>& texts = {}) const;

    [[nodiscard]] bool running() const;
    /// Waits for the program's own end; its exit code.
    DWORD awaitEnd(std::chrono::milliseconds limit = kPatience);
    /// "ended with exit code 0x..", or "crashed with ..."; empty while it runs.
    [[nodiscard]] std::string obituary() const;

    /// The open window in front of the main one, if any: message box or dialog.
    [[nodiscard]] std::optional<Window> dialog() const;
    [[nodiscard]] Window awaitDialog(std::chrono::milliseconds limit = kPatience) const;
    [[nodiscard]] MessageBoxWindow awaitBox(std::chrono::milliseconds limit = kPatience) const;
    /// The message box in front of an open dialog.
    [[nodiscard]] MessageBoxWindow awaitBoxOver(const Window& dialog) const;

    /// Makes a drive of the bench vanish, or brings it back.
    void unplug(int drive) const;
    void plug(int drive) const;
    /// Puts another one of equal size in a drive's place, or the drive back.
    void swap(int drive) const;

    /// From now on nothing on the bench takes its time, however long a delay was described: lets go what a test has
    /// held.
    void hurry() const;
    /// Delays last again as described.
    void takeTime() const;

    /// Ends the program at once, whatever it is doing. Safe to call from another thread and more than once.
    void kill() const;

  private:
    void start();
    void close();
    void startLauncher();
    void adoptEndedProgram();
    void awaitMainWindow();
    void runLauncher(const std::wstring& option, int drive) const;
    [[nodiscard]] bool findProcess();
    [[nodiscard]] bool starting();
    [[nodiscard]] bool findMainWindow();
    [[nodiscard]] std::string launcherOutput() const;

    Launch launch_;
    HANDLE job_ = nullptr;
    HANDLE launcher_ = nullptr;
    HANDLE process_ = nullptr;
    DWORD launcherId_ = 0;
    DWORD processId_ = 0;
    Window mainWindow_;
};

} // namespace torvane::driver
