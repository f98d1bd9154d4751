#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace torvane {

/// What the program begins and ends with; the entry point fills it in with the system's own.
struct StartUpSteps {
    std::function<void()> provideFiles;             ///< makes the user's files that are missing beside the program
    std::function<void()> chooseFolder;             ///< makes the folder current in which the program works
    std::function<bool()> startSockets;             ///< false when Windows Sockets cannot be started
    std::function<void()> endSockets;               ///< called only when they were started
    std::function<std::string()> socketsFailedText; ///< what the user is told when they were not
    std::function<std::uint32_t()> codePage;        ///< the process's own (GetACP)
    std::function<void()> runMainDialog;            ///< returns when the user has left the program
};

/// Runs the program from its start to its end: the main dialog, with Windows Sockets started around it. When they
/// cannot be started, the user is told so and the program ends without a window. Where the code page is not UTF-8, for
/// which the manifest asks, the user is told what that means.
void runProgram(const StartUpSteps& steps);

} // namespace torvane
