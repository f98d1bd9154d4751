#include "state/held_log_rows.h"

#include "state/event_log.h"

#include <utility>

namespace torvane {

namespace {

thread_local HeldLogRows* current = nullptr;

} // namespace

void HeldLogRows::add(const char* category, std::string message, bool fileAlone) {
    rows_.push_back({.category = category, .message = std::move(message), .fileAlone = fileAlone});
}

void HeldLogRows::giveOut() {
    for (const Row& row : std::exchange(rows_, {})) {
        if (row.fileAlone) {
            LogToFile(row.category.c_str(), "%s", row.message.c_str());
        } else {
            LogEvent(row.category.c_str(), "%s", row.message.c_str());
        }
    }
}

LogRowsHeld::LogRowsHeld(HeldLogRows& rows) : outer_(std::exchange(current, &rows)) {}

LogRowsHeld::~LogRowsHeld() {
    current = outer_;
}

HeldLogRows* heldLogRows() {
    return current;
}

} // namespace torvane
