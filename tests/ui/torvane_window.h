#pragma once

#include "tests/ui/driver/list_view.h"
#include "tests/ui/driver/program.h"

#include <string>
#include <vector>

namespace torvane::driver {

// Control and command ids of the main window, as its users' scripts know them. They are written down here once more so
// that a renumbering is noticed.

enum ControlId : int {
    kLogToggle = 1011,
    kLoadDrives = 1024,
    kCreateReport = 1025,
    kEnableMounting = 1026,
    kDisableMounting = 1027,
    kClone = 1028,
    kDriveToImage = 1029,
    kImageToDrive = 1030,
    kForensicImage = 1031,
    kDataServices = 1032,
    kWorkOrder = 1033,
    kTerminate = 1034,
    kExit = 1035,
    kShortTest = 1036,
    kCriticalTest = 1037,
    kNistTest = 1038,
    kQuickDiskView = 1039,
    kDrivesLabel = 1050,
    kScanStatus = 1051,
    kScanProgress = 1052,
    kLogList = 6001,
    kDriveList = 6002,
};

enum MenuCommand : int {
    kMenuDriveDetails = 1371,
    kMenuCopyDriveRow = 1340,
    kMenuCopySerialNumber = 1341,
    kMenuCopyLogRows = 1342,
    kMenuSelectLogRows = 1343,
    kMenuSaveLog = 1344,
    kMenuExit = 32771,
    kMenuLoadDrives = 32772,
    kMenuNothing1 = 32773,
    kMenuEnableMounting = 32774,
    kMenuDisableMounting = 32775,
    kMenuCreateReport = 32777,
    kMenuShortTest = 32783,
    kMenuCriticalTest = 32784,
    kMenuClone = 32786,
    kMenuDriveToImage = 32787,
    kMenuTerminate = 32788,
    kMenuWorkOrder = 32789,
    kMenuNistTest = 32790,
    kMenuSuggestions = 32792,
    kMenuCompany = 32800,
    kMenuNothing2 = 32804,
    kMenuDataServices = 32805,
    kMenuImageToDrive = 32807,
    kMenuBitLocker = 32810,
    kMenuPortable = 32811,
    kMenuHelp = 32813,
    kMenuSpace = 65535,
};

/// One row of the event log.
struct LogEntry {
    std::string type;
    std::string date;
    std::string time;
    std::string message;
};

/// What a user does with Torvane's main window.
class TorvaneWindow {
  public:
    explicit TorvaneWindow(const Program& program) : program_(&program) {}

    [[nodiscard]] const Window& window() const { return program_->mainWindow(); }
    [[nodiscard]] Window control(int id) const { return window().child(id); }
    [[nodiscard]] ListView driveList() const { return ListView(control(kDriveList)); }
    [[nodiscard]] ListView logList() const { return ListView(control(kLogList)); }
    [[nodiscard]] std::vector<LogEntry> log() const;
    /// The messages of the log's rows of one type.
    [[nodiscard]] std::vector<std::string> logMessages(const std::string& type) const;
    /// The log from a row on, as "TYPE: message".
    [[nodiscard]] std::vector<std::string> logRowsFrom(int firstRow) const;

    void press(int id) const;
    /// Sends the command of a menu item or button as the system does, and returns when it has run or has opened a box.
    void command(int id) const;

    /// Presses "Load Drives".
    void startLoading() const;
    /// Waits until the scan that was started last has logged its end.
    void awaitLoaded() const;
    /// Loads the drives and waits for them.
    void loadDrives() const;
    /// Loads the drives unless some are listed.
    void loadDrivesOnce() const;
    /// Waits until the progress bar of the last scan has gone.
    void awaitProgressHidden() const;

    [[nodiscard]] bool logOpen() const { return control(kLogList).visible(); }
    void setLogOpen(bool open) const;

  private:
    [[nodiscard]] int countLog(const std::string& messageStart) const;

    const Program* program_;
};

} // namespace torvane::driver
