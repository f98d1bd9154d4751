#include "state/event_log.h"

#include "base/local_moment.h"
#include "state/app_state.h"
#include "state/held_log_rows.h"
#include "state/log_row.h"

#include <cstdarg>
#include <cstdint>
#include <string>
#include <utility>

namespace torvane {

namespace {

void show(const LogRow& row) {
    if (MainView* const view = appState().view) {
        view->appendLogRow(row);
    }
}

// What the file complains of is shown and not kept: it would fail in the same way.
void keep(const LocalMoment& when, const LogRow& row) {
    EventLogFile* const file = appState().eventLogFile;
    if (file == nullptr) {
        return;
    }
    if (std::optional<std::string> complaint = file->append(when, row)) {
        show(makeLogRow("ERROR", when, std::move(*complaint)));
    }
}

enum class RowPlace : std::uint8_t { kListAndFile, kFileAlone };

void log(RowPlace place, const char* category, std::string message) {
    const bool fileAlone = place == RowPlace::kFileAlone;
    if (HeldLogRows* const held = heldLogRows()) {
        held->add(category, std::move(message), fileAlone);
        return;
    }
    const LocalMoment now = localNow();
    const LogRow row = makeLogRow(category, now, std::move(message));
    keep(now, row);
    if (!fileAlone) {
        show(row);
    }
}

} // namespace

void LogEvent(const char* category, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string message = formatTextV(format, arguments);
    va_end(arguments);
    log(RowPlace::kListAndFile, category, std::move(message));
}

void LogToFile(const char* category, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string message = formatTextV(format, arguments);
    va_end(arguments);
    log(RowPlace::kFileAlone, category, std::move(message));
}

} // namespace torvane
