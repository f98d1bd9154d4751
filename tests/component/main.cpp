#include <gmock/gmock.h>

#include <windows.h>

int main(int argumentCount, char** arguments) {
    // Wine makes its desktop when a window is first asked for, in a process that inherits the handles of whoever asked.
    // Asked for here, it holds none of them; asked for by a tool, it would keep the tool's output file open.
    GetDesktopWindow();
    testing::InitGoogleMock(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
