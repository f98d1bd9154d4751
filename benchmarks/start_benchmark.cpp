// Times a start, from the process's first moment until its window is drawn and waits for its user: of the product, and
// of a program with an empty dialog and the same common controls.
//
//   torvane_start_benchmark.exe PACKAGE ROUNDS
//
// PACKAGE is the shippable folder; what runs is a copy of it, in the current folder, in which the tutorial was put
// away. In each round both programs start, in turn; one round before them warms the system. The last three lines
// printed: the median of each in milliseconds with the fastest and the slowest, and the difference of the medians.

#include "base/owned_handle.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace torvane {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

struct Contender {
    const char* name;
    fs::path program;
    std::vector<double> milliseconds;
};

BOOL CALLBACK noteVisible(HWND window, LPARAM processId) {
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    return owner == static_cast<DWORD>(processId) && IsWindowVisible(window) != FALSE ? FALSE : TRUE;
}

bool hasWindow(DWORD processId) {
    return EnumWindows(noteVisible, static_cast<LPARAM>(processId)) == FALSE;
}

/// Starts the program and ends it again; milliseconds until its window was drawn.
double timeStart(const fs::path& program) {
    const std::string folder = program.parent_path().string();
    std::string commandLine = '"' + program.string() + '"';
    STARTUPINFOA startUp{};
    startUp.cb = sizeof startUp;
    PROCESS_INFORMATION started{};
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, folder.c_str(),
                       &startUp, &started) == FALSE) {
        throw std::runtime_error("cannot be started: " + commandLine);
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    const auto begin = Clock::now();
    ResumeThread(thread.get());
    constexpr DWORD kPatience = 30'000;
    const auto patience = begin + std::chrono::milliseconds(kPatience);
    while (!hasWindow(started.dwProcessId) && Clock::now() < patience) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    // It waits for its user when there is nothing left to paint.
    const bool drawn = hasWindow(started.dwProcessId) && WaitForInputIdle(process.get(), kPatience) == 0;
    const std::chrono::duration<double, std::milli> taken = Clock::now() - begin;
    TerminateProcess(process.get(), 0);
    WaitForSingleObject(process.get(), kPatience);
    if (!drawn) {
        throw std::runtime_error("shows no window: " + commandLine);
    }
    return taken.count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

fs::path layOut(const fs::path& package) {
    fs::path folder = fs::absolute("start-benchmark");
    fs::remove_all(folder);
    fs::copy(package, folder, fs::copy_options::recursive);
    std::ofstream(folder / "TutorialData.db", std::ios::binary).write("\0\0\0\0", 4);
    return folder;
}

fs::path ownFolder() {
    std::string path(MAX_PATH, '\0');
    path.resize(GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return fs::path(path).parent_path();
}

int run(const fs::path& package, int rounds) {
    const fs::path folder = layOut(package);
    std::vector<Contender> contenders{{"empty dialog", ownFolder() / "torvane_empty_dialog.exe", {}},
                                      {"Torvane", folder / "Torvane.exe", {}}};
    for (int round = 0; round <= rounds; ++round) {
        for (Contender& contender : contenders) {
            const double taken = timeStart(contender.program);
            if (round > 0) { // the first one warms
                contender.milliseconds.push_back(taken);
            }
        }
    }
    for (const Contender& contender : contenders) {
        const auto [least, most] = std::minmax_element(contender.milliseconds.begin(), contender.milliseconds.end());
        std::printf("%-14s %8.1f ms, %8.1f to %8.1f\n", contender.name, median(contender.milliseconds), *least, *most);
    }
    std::printf("%-14s %8.1f ms\n", "difference",
                median(contenders[1].milliseconds) - median(contenders[0].milliseconds));
    fs::remove_all(folder);
    return 0;
}

} // namespace

} // namespace torvane

int main(int argumentCount, char** arguments) {
    const int rounds = argumentCount == 3 ? std::atoi(arguments[2]) : 0;
    if (rounds < 1) {
        std::fprintf(stderr, "usage: torvane_start_benchmark PACKAGE ROUNDS\n");
        return 2;
    }
    try {
        return torvane::run(arguments[1], rounds);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 2;
    }
}
