#include "app/app_state.h"
#include "app/main_dialog.h"
#include "app/main_window_view.h"
#include "resources/resource_ids.h"
#include "ui/prompts.h"

#include <winsock2.h>

#include <windows.h>

#include <commctrl.h>

#include <array>

namespace torvane {

namespace {

/// Windows Sockets, started for a scope.
class SocketsSession {
  public:
    SocketsSession() {
        WSADATA data{};
        started_ = WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }
    ~SocketsSession() {
        if (started_) {
            WSACleanup();
        }
    }
    SocketsSession(const SocketsSession&) = delete;
    SocketsSession& operator=(const SocketsSession&) = delete;

    [[nodiscard]] explicit operator bool() const { return started_; }

  private:
    bool started_ = false;
};

std::array<char, 256> loadText(int id) {
    std::array<char, 256> text{};
    LoadStringA(GetModuleHandleA(nullptr), static_cast<UINT>(id), text.data(), static_cast<int>(text.size()));
    return text;
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

void run() {
    const SocketsSession sockets;
    if (!sockets) {
        prompts::warn("Torvane", loadText(IDS_SOCKETS_FAILED).data());
        return;
    }
    initialiseControls();
    appState().view = &mainWindowView();
    MainDialog(appState(), mainWindowView()).runModal(nullptr);
}

} // namespace

} // namespace torvane

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    torvane::run();
    return 0;
}
