#include <windows.h>

#include <delayimp.h>

// The compiler's helper writes a function's address into its slot of the import table when it is called for the first
// time, and newer linkers of GNU binutils place that table where nothing may be written.

namespace {

FARPROC WINAPI makeSlotWritable(unsigned notification, PDelayLoadInfo load) {
    if (notification == dliNotePreGetProcAddress) {
        DWORD before = 0;
        VirtualProtect(load->ppfn, sizeof *load->ppfn, PAGE_READWRITE, &before);
    }
    return nullptr; // the helper goes on by itself
}

} // namespace

PfnDliHook __pfnDliNotifyHook2 = makeSlotWritable; // NOLINT(bugprone-reserved-identifier): the helper's name
