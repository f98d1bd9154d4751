#include "workbench/description/bench_files.h"
#include "workbench/hooks/child_process.h"
#include "workbench/hooks/start_again.h"
#include "workbench/session/bench_folder.h"
#include "workbench/session/told_table.h"
#include "workbench/session/unique_handle.h"
#include "workbench/session/volatile_cache.h"
#include "workbench/session/win32_text.h"

#include <windows.h>

#include <shellapi.h>

#include <charconv>
#include <cstdio>
#include <exception>
#include <functional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace torvane::bench {
namespace {

constexpr int kWrong = 2;   // usage or description
constexpr int kNoStart = 3; // the program could not be started

using Arguments = std::span<const std::wstring>;

int complain(const std::string& text) {
    std::fputs((text + "\n").c_str(), stderr);
    return kWrong;
}

int usage() {
    return complain("usage: bench.exe <bench folder> <program> [arguments...]\n"
                    "       bench.exe --check <bench folder>\n"
                    "       bench.exe --lay-out [--fresh] <bench folder> <target folder>\n"
                    "       bench.exe --unplug|--plug|--swap <bench folder> <drive number>");
}

std::filesystem::path wholePath(const std::wstring& folder) {
    std::error_code failure;
    const std::filesystem::path whole = std::filesystem::weakly_canonical(folder, failure);
    return failure ? std::filesystem::path(folder) : whole;
}

int check(Arguments arguments) {
    if (arguments.size() != 1) {
        return usage();
    }
    const BenchReading reading = readBenchFolder(wholePath(arguments[0]));
    return reading.error.empty() ? 0 : complain(reading.error);
}

int layOut(Arguments arguments) {
    const bool fresh = !arguments.empty() && arguments[0] == L"--fresh";
    if (fresh) {
        arguments = arguments.subspan(1);
    }
    if (arguments.size() != 2) {
        return usage();
    }
    const std::string error = layOutBench(arguments[0], arguments[1], fresh);
    return error.empty() ? 0 : complain(error);
}

// `change` gets the state and the drive's number. A drive that was plugged in again is looked at anew.
int changeDrive(Arguments arguments, const std::function<void(BenchState&, std::uint32_t)>& change,
                bool pluggedIn = false) {
    if (arguments.size() != 2) {
        return usage();
    }
    const std::filesystem::path folder = wholePath(arguments[0]);
    const BenchReading reading = readBenchFolder(folder);
    if (!reading.error.empty()) {
        return complain(reading.error);
    }
    const std::string digits = utf8FromWide(arguments[1]);
    std::uint32_t number = 0;
    const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const DriveDescription* const drive = reading.bench.drive(number);
    if (failure != std::errc() || end != digits.data() + digits.size() || drive == nullptr) {
        return complain("no drive \"" + digits + "\" on this bench");
    }
    BenchFolder bench(folder, reading.bench);
    bench.changeState([&](BenchState& state) { change(state, number); });
    loseUnflushed(folder, *drive);
    if (pluggedIn) {
        readTableAnew(bench, reading.bench, bench.state().isSwapped(number) ? swappedDrive(*drive) : *drive);
    }
    return 0;
}

// One argument as the C library of the started program takes it apart again.
std::wstring quoted(const std::wstring& argument) {
    if (!argument.empty() && argument.find_first_of(L" \t\"") == std::wstring::npos) {
        return argument;
    }
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'\\') {
            ++backslashes;
        } else {
            // Backslashes count double in front of a quote only.
            text.append(c == L'"' ? backslashes * 2 + 1 : backslashes, L'\\');
            text += c;
            backslashes = 0;
        }
    }
    text.append(backslashes * 2, L'\\');
    return text + L"\"";
}

std::wstring commandLineOf(Arguments arguments) {
    std::wstring commandLine;
    for (const std::wstring& argument : arguments) {
        commandLine += (commandLine.empty() ? L"" : L" ") + quoted(argument);
    }
    return commandLine;
}

// The started programs end with the launcher, whatever ends it.
UniqueHandle jobThatEndsWithUs() {
    UniqueHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

int cannotStart(const std::wstring& program, const char* what, DWORD error) {
    complain(utf8FromWide(program) + ": " + what + ", error " + std::to_string(error));
    return kNoStart;
}

// A program that was started but does not run yet.
struct Started {
    UniqueHandle process;
    UniqueHandle mainThread;
};

// Both return a Win32 error, 0 for success.
DWORD startSuspended(const std::wstring& commandLine, Started& started) {
    std::wstring ownCommandLine = commandLine; // CreateProcess may write into its argument
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION child{};
    if (CreateProcessW(nullptr, ownCommandLine.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr,
                       &startup, &child) == FALSE) {
        return GetLastError();
    }
    started = {UniqueHandle(child.hProcess), UniqueHandle(child.hThread)};
    return 0;
}

DWORD putOnBench(const Started& started, const UniqueHandle& job) {
    AssignProcessToJobObject(job.get(), started.process.get());
    const DWORD error = loadIntoProcess(started.process.get(), ownFolder() / "bench.dll");
    if (error != 0) {
        // It must not run at all: it could reach real drives.
        TerminateProcess(started.process.get(), error);
    }
    return error;
}

int waitForEnd(const Started& started) {
    ResumeThread(started.mainThread.get());
    WaitForSingleObject(started.process.get(), INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(started.process.get(), &exitCode);
    return static_cast<int>(exitCode);
}

int run(Arguments arguments) {
    const std::filesystem::path folder = wholePath(arguments[0]);
    const BenchReading reading = readBenchFolder(folder);
    if (!reading.error.empty()) {
        return complain(reading.error);
    }
    SetEnvironmentVariableW(kBenchVariable, folder.c_str());
    const std::wstring& program = arguments[1];
    const std::wstring commandLine = commandLineOf(arguments.subspan(1));
    const UniqueHandle job = jobThatEndsWithUs();
    Started started;
    const char* failure = "";
    const DWORD error = startAgainWhenLost([&] {
        failure = "cannot be started";
        if (const DWORD startError = startSuspended(commandLine, started); startError != 0) {
            return startError;
        }
        failure = "bench.dll cannot be loaded into it";
        return putOnBench(started, job);
    });
    if (error != 0) {
        return cannotStart(program, failure, error);
    }
    return waitForEnd(started);
}

int launch(Arguments arguments) {
    if (arguments.empty()) {
        return usage();
    }
    if (arguments[0] == L"--check") {
        return check(arguments.subspan(1));
    }
    if (arguments[0] == L"--lay-out") {
        return layOut(arguments.subspan(1));
    }
    if (arguments[0] == L"--unplug") {
        return changeDrive(arguments.subspan(1), unplugDrive);
    }
    if (arguments[0] == L"--plug") {
        return changeDrive(arguments.subspan(1), plugDrive, true);
    }
    if (arguments[0] == L"--swap") {
        return changeDrive(arguments.subspan(1), swapDrive);
    }
    return arguments.size() < 2 || arguments[0].starts_with(L"--") ? usage() : run(arguments);
}

} // namespace
} // namespace torvane::bench

int main() {
    try {
        int count = 0;
        wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
        const std::vector<std::wstring> arguments(words + 1, words + count);
        LocalFree(words);
        return torvane::bench::launch(arguments);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench: %s\n", failure.what());
        return 1;
    }
}
