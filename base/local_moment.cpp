#include "base/local_moment.h"

#include <windows.h>

namespace torvane {

LocalMoment localNow() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

} // namespace torvane
