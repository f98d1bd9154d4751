#include "base/program_folder.h"
#include "resources/resource_ids.h"
#include "settings/shipped_defaults.h"
#include "state/app_state.h"
#include "state/day_log_file.h"
#include "window/main_dialog.h"
#include "window/main_window_view.h"
#include "window/start_up.h"
#include "window/work_folder.h"

#include <winsock2.h>

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <string>

namespace torvane {

namespace {

bool startSockets() {
    WSADATA data{};
    return WSAStartup(MAKEWORD(2, 2), &data) == 0;
}

std::string loadText(int id) {
    std::array<char, 256> text{};
    LoadStringA(GetModuleHandleA(nullptr), static_cast<UINT>(id), text.data(), static_cast<int>(text.size()));
    return text.data();
}

void initialiseControls() {
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
}

/// The window as other threads see it. Never destroyed, as the state is: a worker may still be logging while the
/// process ends.
MainWindowView& mainWindowView() {
    static MainWindowView& view = *new MainWindowView;
    return view;
}

/// Beside the program, which works in its own folder: a stick that a technician carries keeps its own log. Never
/// destroyed, for the same reason.
DayLogFile& dayLogFile() {
    static DayLogFile& file = *new DayLogFile(folderOfProgram());
    return file;
}

void runMainDialog() {
    initialiseControls();
    appState().view = &mainWindowView();
    MainDialog(appState(), mainWindowView()).runModal(nullptr);
}

} // namespace

} // namespace torvane

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    // Before anything is loaded: from beside the program, or from the current folder, nothing ever is.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    // Whoever meets a card that was pulled tells it; a box of the system's would hold a job up until it is answered.
    SetErrorMode(SEM_FAILCRITICALERRORS);
    torvane::appState().eventLogFile = &torvane::dayLogFile();
    torvane::runProgram({.provideFiles = [] { torvane::provideMissingFiles(torvane::folderOfProgram()); },
                         .chooseFolder = torvane::chooseWorkFolder,
                         .startSockets = torvane::startSockets,
                         .endSockets = [] { WSACleanup(); },
                         .socketsFailedText = [] { return torvane::loadText(IDS_SOCKETS_FAILED); },
                         .codePage = [] { return GetACP(); },
                         .runMainDialog = torvane::runMainDialog});
    return 0;
}
