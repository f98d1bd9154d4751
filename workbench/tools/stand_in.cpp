#include "workbench/tools/stand_in.h"

#include "workbench/description/bench_files.h"
#include "workbench/hooks/child_process.h"
#include "workbench/session/tool_delay.h"
#include "workbench/session/win32_text.h"

#include <windows.h>

#include <shellapi.h>

#include <array>

namespace torvane::bench {

namespace {

constexpr UINT kBroadcastPatience = 10'000; // milliseconds, for each window

std::string classOf(HWND window) {
    std::array<wchar_t, 256> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return utf8FromWide(name.data());
}

BOOL CALLBACK addWindow(HWND window, LPARAM windows) {
    reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
    return TRUE;
}

/// Tells every window on the desktop that a setting has changed, as a change of the file associations does, and waits
/// for each.
void broadcast(const StandIn& standIn) {
    std::vector<HWND> windows;
    EnumWindows(&addWindow, reinterpret_cast<LPARAM>(&windows));
    for (const HWND window : windows) {
        DWORD_PTR answer = 0;
        const LRESULT answered =
            SendMessageTimeoutW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"Environment"), SMTO_NORMAL,
                                kBroadcastPatience, &answer);
        const DWORD error = answered != 0 ? NO_ERROR : GetLastError();
        if (IsWindow(window) != FALSE) {
            LogLine line("bench", "broadcast");
            standIn.folder->log(line.quoted("window", classOf(window)).result(error));
        }
    }
}

} // namespace

std::unique_ptr<StandIn> openStandIn() {
    std::array<wchar_t, 1024> folder{};
    const DWORD length = GetEnvironmentVariableW(kBenchVariable, folder.data(), static_cast<DWORD>(folder.size()));
    auto standIn = std::make_unique<StandIn>();
    BenchReading reading = readBenchFolder(std::wstring(folder.data(), length < folder.size() ? length : 0));
    if (length == 0 || !reading.error.empty()) {
        print(STD_ERROR_HANDLE, "This stand-in works on a bench only. " + reading.error + "\r\n");
        return nullptr;
    }
    standIn->bench = std::move(reading.bench);
    standIn->folder = std::make_unique<BenchFolder>(std::wstring(folder.data(), length), standIn->bench);
    standIn->commandLine = utf8FromWide(GetCommandLineW());
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i) {
        standIn->arguments.push_back(ansiFromWide(words[i]));
    }
    LocalFree(words);
    return standIn;
}

void print(DWORD standardHandle, const std::string& bytes) {
    DWORD written = 0;
    WriteFile(GetStdHandle(standardHandle), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

bool obeyDescription(const StandIn& standIn, const ToolDescription& tool) {
    takeTime(*standIn.folder, tool, standIn.commandLine);
    if (tool.broadcasts) {
        broadcast(standIn);
    }
    if (tool.hasOutput) {
        print(STD_OUTPUT_HANDLE, tool.output);
    }
    return tool.hasOutput && !tool.acts;
}

void printOwn(const ToolDescription& tool, DWORD standardHandle, const std::string& bytes) {
    if (!tool.hasOutput) {
        print(standardHandle, bytes);
    }
}

int exitCodeOf(const ToolDescription& tool, std::uint32_t own) {
    return static_cast<int>(tool.hasExitCode ? tool.exitCode : own);
}

} // namespace torvane::bench
