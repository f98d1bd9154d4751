#include "workbench/description/error_names.h"
#include "workbench/hooks/child_process.h"
#include "workbench/hooks/hook_functions.h"
#include "workbench/hooks/hooks.h"
#include "workbench/hooks/start_again.h"
#include "workbench/session/win32_text.h"

#include <array>
#include <cstring>
#include <string>
#include <utility>

namespace torvane::bench {
namespace {

// What CreateProcess was asked for; texts in UTF-16, empty application for none.
struct StartRequest {
    std::wstring application;
    std::wstring commandLine;
    LPSECURITY_ATTRIBUTES processSecurity;
    LPSECURITY_ATTRIBUTES threadSecurity;
    BOOL inherit;
    DWORD flags;
    LPVOID environment;
    std::wstring folder;
};

BOOL fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

const wchar_t* orNull(const std::wstring& text) {
    return text.empty() ? nullptr : text.c_str();
}

Tool toolOfRequest(const StartRequest& request, const CommandLine& line) {
    return toolOf(request.application.empty() ? line.program : request.application);
}

const ToolDescription& describedTool(BenchSession& session, Tool tool) {
    return tool == Tool::kDiskpart ? session.description().diskpart : session.description().powershell;
}

// Starts the stand-in in the tool's place, with the same arguments.
void redirect(StartRequest& request, const CommandLine& line, Tool tool) {
    const std::wstring program = standInPath(tool).wstring();
    request.application = program;
    request.commandLine = L"\"" + program + L"\"" + line.rest;
}

// What was asked for, before a stand-in took a tool's place.
struct Asked {
    std::string application;
    std::string commandLine;
};

void logStart(BenchSession& session, const Asked& asked, DWORD error) {
    LogLine line("bench", "start");
    line.quoted("command-line", asked.commandLine);
    if (!asked.application.empty()) {
        line.quoted("application", asked.application);
    }
    session.folder().log(line.result(error));
}

// A child that cannot be put on the bench must not run at all: it could reach real drives.
DWORD putOnBench(const PROCESS_INFORMATION& child) {
    const DWORD error = loadIntoProcess(child.hProcess, ownFolder() / "bench.dll");
    if (error != 0) {
        TerminateProcess(child.hProcess, error);
        CloseHandle(child.hThread);
        CloseHandle(child.hProcess);
    }
    return error;
}

// `create` calls the real function with the startup record that the caller brought.
template <typename Create>
BOOL startOnBench(BenchSession& session, StartRequest& request, LPPROCESS_INFORMATION out, Create create) {
    const Asked shown{.application = utf8FromWide(request.application),
                      .commandLine =
                          utf8FromWide(request.commandLine.empty() ? request.application : request.commandLine)};
    const CommandLine line = splitCommandLine(request.commandLine);
    const Tool tool = toolOfRequest(request, line);
    if (tool != Tool::kNone && describedTool(session, tool).missing) {
        logStart(session, shown, kErrorFileNotFound);
        return fail(kErrorFileNotFound);
    }
    if (tool != Tool::kNone) {
        redirect(request, line, tool);
    }
    std::vector<wchar_t> environment;
    if (request.environment != nullptr) {
        environment = environmentWithBench(request.environment, (request.flags & CREATE_UNICODE_ENVIRONMENT) != 0,
                                           session.folder().path().wstring());
    }
    const bool staysSuspended = (request.flags & CREATE_SUSPENDED) != 0;
    request.flags |= CREATE_SUSPENDED | (environment.empty() ? 0 : CREATE_UNICODE_ENVIRONMENT);
    PROCESS_INFORMATION child{};
    const DWORD error = startAgainWhenLost([&]() -> DWORD {
        if (create(environment.empty() ? request.environment : environment.data(), &child) == FALSE) {
            return GetLastError();
        }
        // The stand-ins know the bench by themselves.
        return tool == Tool::kNone ? putOnBench(child) : 0;
    });
    logStart(session, shown, error);
    if (error != 0) {
        return fail(error);
    }
    if (!staysSuspended) {
        ResumeThread(child.hThread);
    }
    *out = child;
    return TRUE;
}

BOOL WINAPI createProcessW(LPCWSTR application, LPWSTR commandLine, LPSECURITY_ATTRIBUTES processSecurity,
                           LPSECURITY_ATTRIBUTES threadSecurity, BOOL inherit, DWORD flags, LPVOID environment,
                           LPCWSTR folder, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION out) {
    const auto session = currentSession();
    if (!session) {
        return CreateProcessW(application, commandLine, processSecurity, threadSecurity, inherit, flags, environment,
                              folder, startup, out);
    }
    StartRequest request{application == nullptr ? L"" : application,
                         commandLine == nullptr ? L"" : commandLine,
                         processSecurity,
                         threadSecurity,
                         inherit,
                         flags,
                         environment,
                         folder == nullptr ? L"" : folder};
    return startOnBench(*session, request, out, [&](LPVOID block, LPPROCESS_INFORMATION child) {
        return CreateProcessW(orNull(request.application),
                              request.commandLine.empty() ? nullptr : request.commandLine.data(),
                              request.processSecurity, request.threadSecurity, request.inherit, request.flags, block,
                              orNull(request.folder), startup, child);
    });
}

// The texts go on in UTF-16; the startup record keeps its handles and flags, its own texts are converted too.
BOOL WINAPI createProcessA(LPCSTR application, LPSTR commandLine, LPSECURITY_ATTRIBUTES processSecurity,
                           LPSECURITY_ATTRIBUTES threadSecurity, BOOL inherit, DWORD flags, LPVOID environment,
                           LPCSTR folder, LPSTARTUPINFOA startup, LPPROCESS_INFORMATION out) {
    const auto session = currentSession();
    if (!session) {
        return CreateProcessA(application, commandLine, processSecurity, threadSecurity, inherit, flags, environment,
                              folder, startup, out);
    }
    const auto wide = [](LPCSTR text) { return text == nullptr ? std::wstring() : wideFromAnsi(text); };
    StartRequest request{wide(application), wide(commandLine), processSecurity, threadSecurity, inherit, flags,
                         environment,       wide(folder)};
    std::wstring desktop = wide(startup->lpDesktop);
    std::wstring title = wide(startup->lpTitle);
    // The list of attributes, such as the handles to inherit, knows no texts: it goes on as it is.
    STARTUPINFOEXW extended{};
    STARTUPINFOW& startupWide = extended.StartupInfo;
    startupWide.cb = sizeof(STARTUPINFOW);
    if ((flags & EXTENDED_STARTUPINFO_PRESENT) != 0) {
        startupWide.cb = sizeof(STARTUPINFOEXW);
        extended.lpAttributeList = reinterpret_cast<const STARTUPINFOEXA*>(startup)->lpAttributeList;
    }
    startupWide.lpDesktop = startup->lpDesktop == nullptr ? nullptr : desktop.data();
    startupWide.lpTitle = startup->lpTitle == nullptr ? nullptr : title.data();
    startupWide.dwX = startup->dwX;
    startupWide.dwY = startup->dwY;
    startupWide.dwXSize = startup->dwXSize;
    startupWide.dwYSize = startup->dwYSize;
    startupWide.dwXCountChars = startup->dwXCountChars;
    startupWide.dwYCountChars = startup->dwYCountChars;
    startupWide.dwFillAttribute = startup->dwFillAttribute;
    startupWide.dwFlags = startup->dwFlags;
    startupWide.wShowWindow = startup->wShowWindow;
    startupWide.cbReserved2 = startup->cbReserved2;
    startupWide.lpReserved2 = startup->lpReserved2;
    startupWide.hStdInput = startup->hStdInput;
    startupWide.hStdOutput = startup->hStdOutput;
    startupWide.hStdError = startup->hStdError;
    return startOnBench(*session, request, out, [&](LPVOID block, LPPROCESS_INFORMATION child) {
        return CreateProcessW(orNull(request.application),
                              request.commandLine.empty() ? nullptr : request.commandLine.data(),
                              request.processSecurity, request.threadSecurity, request.inherit, request.flags, block,
                              orNull(request.folder), &startupWide, child);
    });
}

// --- functions that bring new modules or new addresses into the process --------------------------------------------

// Loading may have brought modules with imports that still lead to the real functions.
HMODULE patched(HMODULE module) {
    const DWORD error = GetLastError();
    if (module != nullptr && currentSession()) {
        importPatch().apply();
    }
    SetLastError(error);
    return module;
}

HMODULE WINAPI loadLibraryA(LPCSTR name) {
    return patched(LoadLibraryA(name));
}

HMODULE WINAPI loadLibraryW(LPCWSTR name) {
    return patched(LoadLibraryW(name));
}

HMODULE WINAPI loadLibraryExA(LPCSTR name, HANDLE file, DWORD flags) {
    return patched(LoadLibraryExA(name, file, flags));
}

HMODULE WINAPI loadLibraryExW(LPCWSTR name, HANDLE file, DWORD flags) {
    return patched(LoadLibraryExW(name, file, flags));
}

FARPROC WINAPI getProcAddress(HMODULE module, LPCSTR name) {
    const FARPROC real = GetProcAddress(module, name);
    void* address = nullptr;
    std::memcpy(&address, &real, sizeof(address));
    void* replacement = real != nullptr && currentSession() ? importPatch().replacementOf(address) : nullptr;
    if (replacement == nullptr) {
        return real;
    }
    FARPROC function = nullptr;
    std::memcpy(&function, &replacement, sizeof(function));
    return function;
}

} // namespace

std::span<const Replacement> processReplacements() {
    static const std::array kReplacements = {
        Replacement{"CreateProcessA", hookAddress(createProcessA)},
        Replacement{"CreateProcessW", hookAddress(createProcessW)},
        Replacement{"LoadLibraryA", hookAddress(loadLibraryA)},
        Replacement{"LoadLibraryW", hookAddress(loadLibraryW)},
        Replacement{"LoadLibraryExA", hookAddress(loadLibraryExA)},
        Replacement{"LoadLibraryExW", hookAddress(loadLibraryExW)},
        Replacement{"GetProcAddress", hookAddress(getProcAddress)},
    };
    return kReplacements;
}

} // namespace torvane::bench
