// The least that a program with a dialog and the product's common controls needs to start: what ./measure compares the
// product's start with.

#include <windows.h>

#include <commctrl.h>

namespace {

INT_PTR CALLBACK procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, 0);
        return TRUE;
    }
    return message == WM_INITDIALOG ? TRUE : FALSE;
}

} // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    DialogBoxParamW(instance, MAKEINTRESOURCEW(100), nullptr, procedure, 0);
    return 0;
}
