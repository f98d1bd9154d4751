// A console tool that does what its arguments say, in their order. It writes without any buffer of its own.
//
//     out:TEXT    writes TEXT to the standard output
//     err:TEXT    writes TEXT to the standard error
//     crlf        writes CR LF to the standard output
//     bytes:HEX   writes the bytes to the standard output
//     bulk:N      writes N bytes to the standard output, lines of 100 bytes with their CR LF
//     args        writes every argument, one a line
//     window      writes how it was started: the console window, the start-up flags and the show-window word
//     set:HANDLE  sets the event behind the handle value, if this process has such a handle
//     sleep:MS    waits
//     until:FILE  waits until there is such a file, at most a minute
//     broadcast   tells every window that a setting has changed, and says whether each has answered
//     make:FILE   makes an empty file
//     start-own:A starts itself with the arguments A, separated by commas, and does not wait for it
//     hang-up     closes its standard output and error
//     die         is ended at once, as by a fault
//     exit:N      ends with exit code N, which is 0 otherwise
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void write(DWORD which, std::string_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        const auto length = static_cast<DWORD>(std::min<std::size_t>(text.size(), 1U << 20U));
        if (!WriteFile(GetStdHandle(which), text.data(), length, &written, nullptr) || written == 0) {
            std::exit(99);
        }
        text.remove_prefix(written);
    }
}

void print(std::string_view text) {
    write(STD_OUTPUT_HANDLE, text);
}

void printBytes(std::string_view hex) {
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        const char byte = static_cast<char>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16));
        print({&byte, 1});
    }
}

void printBulk(std::size_t count) {
    const std::string line = std::string(98, 'b') + "\r\n";
    std::string text;
    while (text.size() < count) {
        text += line;
    }
    print(std::string_view(text).substr(0, count));
}

void printWindow() {
    STARTUPINFOA startup{};
    GetStartupInfoA(&startup);
    print("console window " + std::to_string(GetConsoleWindow() != nullptr ? 1 : 0) + ", flags " +
          std::to_string(startup.dwFlags) + ", show " + std::to_string(startup.wShowWindow));
}

void setEvent(const std::string& handleValue) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number that crosses the process border as text
    SetEvent(reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(std::stoull(handleValue))));
}

void waitForFile(const char* name) {
    const ULONGLONG end = GetTickCount64() + 60000;
    while (GetFileAttributesA(name) == INVALID_FILE_ATTRIBUTES && GetTickCount64() < end) {
        Sleep(5);
    }
}

BOOL CALLBACK tellWindow(HWND window, LPARAM unanswered) {
    constexpr UINT kPatience = 10'000; // milliseconds
    DWORD_PTR answer = 0;
    if (SendMessageTimeoutW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"Environment"), SMTO_NORMAL,
                            kPatience, &answer) == 0 &&
        IsWindow(window) != FALSE) {
        ++*reinterpret_cast<int*>(unanswered);
    }
    return TRUE;
}

void broadcast() {
    int unanswered = 0;
    EnumWindows(&tellWindow, reinterpret_cast<LPARAM>(&unanswered));
    print(unanswered == 0 ? "answered\r\n" : "not answered\r\n");
}

void makeFile(const char* name) {
    CloseHandle(CreateFileA(name, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
}

/// The other one shares our output.
void startOwn(std::string arguments) {
    std::replace(arguments.begin(), arguments.end(), ',', ' ');
    std::string commandLine = "torvane_child_program.exe " + arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child{};
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &child)) {
        CloseHandle(child.hThread);
        CloseHandle(child.hProcess);
    }
}

/// The text behind "name:", or null when the argument is another one.
const char* valueOf(std::string_view argument, std::string_view name) {
    return argument.starts_with(name) ? argument.data() + name.size() : nullptr;
}

} // namespace

int main(int count, char** arguments) {
    int exitCode = 0;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (const char* const text = valueOf(argument, "out:")) {
            print(text);
        } else if (const char* const error = valueOf(argument, "err:")) {
            write(STD_ERROR_HANDLE, error);
        } else if (const char* const hex = valueOf(argument, "bytes:")) {
            printBytes(hex);
        } else if (const char* const size = valueOf(argument, "bulk:")) {
            printBulk(std::stoull(size));
        } else if (const char* const handle = valueOf(argument, "set:")) {
            setEvent(handle);
        } else if (const char* const milliseconds = valueOf(argument, "sleep:")) {
            Sleep(static_cast<DWORD>(std::stoul(milliseconds)));
        } else if (const char* const file = valueOf(argument, "until:")) {
            waitForFile(file);
        } else if (const char* const made = valueOf(argument, "make:")) {
            makeFile(made);
        } else if (const char* const own = valueOf(argument, "start-own:")) {
            startOwn(own);
        } else if (const char* const code = valueOf(argument, "exit:")) {
            exitCode = std::stoi(code);
        } else if (argument == "broadcast") {
            broadcast();
        } else if (argument == "crlf") {
            print("\r\n");
        } else if (argument == "hang-up") {
            CloseHandle(GetStdHandle(STD_OUTPUT_HANDLE));
            CloseHandle(GetStdHandle(STD_ERROR_HANDLE));
        } else if (argument == "die") {
            TerminateProcess(GetCurrentProcess(), 0xC0000005);
        } else if (argument == "window") {
            printWindow();
        } else if (argument == "args") {
            for (int k = 1; k < count; ++k) {
                print(std::string(arguments[k]) + "\r\n");
            }
        } else {
            return 98;
        }
    }
    return exitCode;
}
