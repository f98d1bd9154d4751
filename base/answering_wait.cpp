#include "base/answering_wait.h"

namespace torvane {

namespace {

/// Answers what was sent until the time is over or one of the handles is signalled; as MsgWaitForMultipleObjects, but
/// that messages do not end it.
DWORD waitAnswering(DWORD count, const HANDLE* handles, DWORD milliseconds) {
    const ULONGLONG begin = GetTickCount64();
    for (DWORD left = milliseconds;;) {
        const DWORD waited = MsgWaitForMultipleObjects(count, handles, FALSE, left, QS_SENDMESSAGE);
        if (waited != WAIT_OBJECT_0 + count) {
            return waited;
        }
        MSG message{};
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE); // dispatches what was sent
        if (milliseconds != INFINITE) {
            const ULONGLONG gone = GetTickCount64() - begin;
            if (gone >= milliseconds) {
                return WAIT_TIMEOUT; // also where somebody sends without end
            }
            left = static_cast<DWORD>(milliseconds - gone);
        }
    }
}

} // namespace

bool awaitAnswering(HANDLE handle, DWORD milliseconds) {
    const bool failed = waitAnswering(1, &handle, milliseconds) == WAIT_FAILED;
    return WaitForSingleObject(handle, failed ? milliseconds : 0) != WAIT_TIMEOUT;
}

void pauseAnswering(DWORD milliseconds) {
    waitAnswering(0, nullptr, milliseconds);
}

} // namespace torvane
