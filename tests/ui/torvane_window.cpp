#include "tests/ui/torvane_window.h"

#include "tests/ui/driver/input.h"

#include <utility>

namespace torvane::driver {
namespace {

/// A scan that has logged its end still has its last step to do, and until then the next one is refused. True when it
/// was refused, and the refusal is answered.
bool dismissLoaderStillWorking(const Program& program) {
    const auto box = program.dialog();
    if (!box || box->text() != "***** Working *****") {
        return false;
    }
    program.awaitBox().answer("OK");
    return true;
}

} // namespace

std::vector<LogEntry> TorvaneWindow::log() const {
    const ListView list = logList();
    const int rows = list.rowCount();
    std::vector<LogEntry> entries;
    entries.reserve(static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) {
        entries.push_back({list.cell(row, 0), list.cell(row, 1), list.cell(row, 2), list.cell(row, 3)});
    }
    return entries;
}

std::vector<std::string> TorvaneWindow::logMessages(const std::string& type) const {
    std::vector<std::string> messages;
    for (const LogEntry& entry : log()) {
        if (entry.type == type) {
            messages.push_back(entry.message);
        }
    }
    return messages;
}

std::vector<std::string> TorvaneWindow::logRowsFrom(int firstRow) const {
    const ListView list = logList();
    std::vector<std::string> rows;
    for (int row = firstRow; row < list.rowCount(); ++row) {
        rows.push_back(list.cell(row, 0) + ": " + list.cell(row, 3));
    }
    return rows;
}

void TorvaneWindow::press(int id) const {
    driver::press(control(id));
}

void TorvaneWindow::command(int id) const {
    window().post(WM_COMMAND, static_cast<WPARAM>(id));
    window().settle();
}

int TorvaneWindow::countLog(const std::string& messageStart) const {
    const ListView list = logList();
    int count = 0;
    for (int row = list.rowCount() - 1; row >= 0; --row) {
        count += list.cell(row, 3).starts_with(messageStart) ? 1 : 0;
    }
    return count;
}

void TorvaneWindow::startLoading() const {
    const int started = countLog("Beginning Drive Scan");
    int rows = logList().rowCount();
    press(kLoadDrives);
    await("the drive scan begins", [&] {
        if (dismissLoaderStillWorking(*program_)) {
            press(kLoadDrives);
        }
        const int before = std::exchange(rows, logList().rowCount());
        return (rows != before && countLog("Beginning Drive Scan") > started) || !program_->running();
    });
}

void TorvaneWindow::awaitLoaded() const {
    constexpr std::chrono::seconds kScanPatience{120};
    // A long log takes its time to read; nothing has ended while it has not grown.
    int rows = -1;
    const auto ended = [&] {
        const int before = std::exchange(rows, logList().rowCount());
        return rows != before && countLog("Drive Scan Completed") == countLog("Beginning Drive Scan");
    };
    await(
        "the drive scan ends", [&] { return !program_->running() || ended(); }, kScanPatience);
    if (!program_->running()) {
        throw Failure("during the drive scan " + program_->obituary());
    }
}

void TorvaneWindow::loadDrives() const {
    startLoading();
    awaitLoaded();
}

void TorvaneWindow::loadDrivesOnce() const {
    if (driveList().rowCount() == 0) {
        loadDrives();
    }
}

void TorvaneWindow::awaitProgressHidden() const {
    await("the progress bar is hidden", [this] { return !control(kScanProgress).visible(); });
}

void TorvaneWindow::setLogOpen(bool open) const {
    if (logOpen() != open) {
        press(kLogToggle);
        await("the log is shown or hidden", [&] { return logOpen() == open; });
    }
}

} // namespace torvane::driver
