#include "window/shutdown_guard.h"

#include "state/event_log.h"
#include "window/shutdown_reason.h"

#include <string>
#include <string_view>

namespace torvane {

void showShutdownReason(HWND window, JobKinds atWork) {
    ShutdownBlockReasonDestroy(window);
    if (const char* const reason = shutdownReason(atWork)) {
        const std::string_view text(reason);
        ShutdownBlockReasonCreate(window, std::wstring(text.begin(), text.end()).c_str());
    }
}

bool mayEndSession(JobKinds atWork) {
    const char* const reason = shutdownReason(atWork);
    if (reason == nullptr) {
        return true;
    }
    LogEvent("STATUS", "Windows asked to end the session. Refused: %s", reason);
    return false;
}

void noteSessionEnd(JobKinds atWork) {
    const char* const reason = shutdownReason(atWork);
    LogToFile("STATUS", "Windows ends the session%s%s", reason != nullptr ? " all the same: " : "",
              reason != nullptr ? reason : "");
}

} // namespace torvane
