#include "state/event_log.h"

#include "base/local_moment.h"
#include "state/app_state.h"
#include "state/log_row.h"

#include <cstdarg>

namespace torvane {

void LogEvent(const char* category, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string message = formatTextV(format, arguments);
    va_end(arguments);
    if (MainView* const view = appState().view) {
        view->appendLogRow(makeLogRow(category, localNow(), std::move(message)));
    }
}

void LogToFile(const char* category, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    static_cast<void>(makeLogRow(category, localNow(), formatTextV(format, arguments)));
    va_end(arguments);
}

} // namespace torvane
