#include "app/not_built_yet.h"

#include "app/event_log.h"

namespace torvane {

void notBuiltYet(const char* command) {
    LogEvent("STATUS", "%s is not built yet", command);
}

} // namespace torvane
