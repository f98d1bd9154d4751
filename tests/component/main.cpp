#include "tests/component/import_patched.h"
#include "workbench/hooks/start_again.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <cstring>

// The import slot of the function that is replaced. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateProcessA) __imp_CreateProcessA;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

/// As the system gives it now: of a bench that is open, the bench's own.
decltype(&CreateProcessA) currentCreateProcess() {
    const FARPROC address = GetProcAddress(GetModuleHandleA("kernel32.dll"), "CreateProcessA");
    decltype(&CreateProcessA) function = nullptr;
    std::memcpy(&function, &address, sizeof function);
    return function;
}

/// Starts a program again that was lost while it started, as a bench does; many a test has no bench.
BOOL WINAPI createProcessAgainWhenLost(LPCSTR application, LPSTR commandLine, LPSECURITY_ATTRIBUTES processSecurity,
                                       LPSECURITY_ATTRIBUTES threadSecurity, BOOL inherit, DWORD flags,
                                       LPVOID environment, LPCSTR folder, LPSTARTUPINFOA startup,
                                       LPPROCESS_INFORMATION out) {
    const DWORD error = torvane::bench::startAgainWhenLost([&]() -> DWORD {
        const BOOL started = currentCreateProcess()(application, commandLine, processSecurity, threadSecurity, inherit,
                                                    flags, environment, folder, startup, out);
        return started != FALSE ? 0 : GetLastError();
    });
    SetLastError(error);
    return error == 0 ? TRUE : FALSE;
}

} // namespace

int main(int argumentCount, char** arguments) {
    // Wine makes its desktop when a window is first asked for, in a process that inherits the handles of whoever asked.
    // Asked for here, it holds none of them; asked for by a tool, it would keep the tool's output file open.
    GetDesktopWindow();
    const torvane::testing::ImportPatched patched(__imp_CreateProcessA, &createProcessAgainWhenLost);
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
