#include "tests/ui/driver/remote_memory.h"

#include "tests/ui/driver/wait.h"

namespace torvane::driver {

RemoteMemory::RemoteMemory(HWND window, std::size_t size) {
    DWORD id = 0;
    GetWindowThreadProcessId(window, &id);
    process_ = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id);
    if (process_ == nullptr) {
        throw Failure("the window's process is gone");
    }
    memory_ = VirtualAllocEx(process_, nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (memory_ == nullptr) {
        CloseHandle(process_);
        throw Failure("no memory in the window's process");
    }
}

RemoteMemory::~RemoteMemory() {
    VirtualFreeEx(process_, memory_, 0, MEM_RELEASE);
    CloseHandle(process_);
}

void RemoteMemory::write(std::size_t offset, const void* bytes, std::size_t size) const {
    if (WriteProcessMemory(process_, static_cast<char*>(memory_) + offset, bytes, size, nullptr) == FALSE) {
        throw Failure("cannot write into the window's process");
    }
}

void RemoteMemory::read(std::size_t offset, void* bytes, std::size_t size) const {
    if (ReadProcessMemory(process_, static_cast<char*>(memory_) + offset, bytes, size, nullptr) == FALSE) {
        throw Failure("cannot read from the window's process");
    }
}

std::uintptr_t RemoteMemory::address(std::size_t offset) const {
    return reinterpret_cast<std::uintptr_t>(memory_) + offset;
}

} // namespace torvane::driver
