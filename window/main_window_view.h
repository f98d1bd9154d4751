#pragma once

#include "state/main_view.h"
#include "window/log_list_delivery.h"

#include <windows.h>

#include <atomic>
#include <functional>

namespace torvane {

class MainDialog;

/// The main window as jobs see it: carries each call over to the window's own thread, where it runs whole before the
/// caller goes on. Rows of the log alone are not waited for; who asks the list finds them. Before the window exists and
/// after its end every call is ignored, and questions answer "nothing".
class MainWindowView : public MainView {
  public:
    /// The private message that carries a call: lParam is a `const WindowTask*`.
    static constexpr UINT kRunTaskMessage = WM_APP + 1;
    using WindowTask = std::function<void(MainDialog&)>;

    /// From now on calls go to this window; null: they are ignored.
    void attach(HWND window) { window_ = window; }

    /// Rows of the log on their way; the window answers its message.
    [[nodiscard]] LogListDelivery& logRows() { return logRows_; }

    void appendLogRow(const LogRow& row) override;
    void showScanProgress(int maximum) override;
    void setScanProgress(int position) override;
    void setScanStatus(std::string_view text) override;
    void hideScanProgress() override;
    void setWideProgress(int position) override;
    void addDriveRow(DriveRecord& record) override;
    void deleteDriveRows() override;
    void redrawDriveList() override;
    void showDrivesFound(int shown, int notShown) override;
    void setDriveStatus(const DriveRecord& record, std::string_view text) override;
    int driveRowCount() override;
    std::vector<DriveRecord*> tickedDrives() override;
    void clearHealthPanel() override;
    void startTimer(int id, int milliseconds) override;
    void stopTimer(int id) override;

  private:
    void onWindowThread(const WindowTask& task);

    std::atomic<HWND> window_{nullptr};
    LogListDelivery logRows_;
};

} // namespace torvane
