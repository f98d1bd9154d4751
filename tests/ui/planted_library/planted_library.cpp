// A library that lies where it does not belong. Whoever loads it finds a file "<its path>.loaded" afterwards.
#include <windows.h>

#include <array>
#include <string>

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        std::array<char, 1024> path{};
        GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size()));
        CloseHandle(CreateFileA((std::string(path.data()) + ".loaded").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                CREATE_ALWAYS, 0, nullptr));
    }
    return TRUE;
}
