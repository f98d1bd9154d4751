#include "workbench/bench_api.h"
#include "workbench/description/bench_files.h"
#include "workbench/hooks/child_process.h"
#include "workbench/hooks/hooks.h"
#include "workbench/session/told_table.h"
#include "workbench/session/volatile_cache.h"
#include "workbench/session/win32_text.h"

#include <windows.h>

#include <array>
#include <string>

namespace torvane::bench {
namespace {

std::string errorText;

const char* orNull(const std::string& text) {
    errorText = text;
    return errorText.empty() ? nullptr : errorText.c_str();
}

// The bench that a parent process put this one on; empty when there is none.
std::wstring inheritedFolder() {
    std::array<wchar_t, 1024> folder{};
    const DWORD length = GetEnvironmentVariableW(kBenchVariable, folder.data(), static_cast<DWORD>(folder.size()));
    return length < folder.size() ? std::wstring(folder.data(), length) : std::wstring();
}

std::string openBench(const std::wstring& folder) {
    BenchClose();
    std::string error;
    std::shared_ptr<BenchSession> session = BenchSession::open(folder, error);
    if (!session) {
        return error;
    }
    SetEnvironmentVariableW(kBenchVariable, session->folder().path().c_str());
    installHooks(std::move(session));
    return {};
}

/// A drive that was plugged in again is looked at anew.
int changeDrive(int number, void (*change)(BenchState&, std::uint32_t), bool pluggedIn = false) {
    const std::shared_ptr<BenchSession> session = currentSession();
    const BenchDrive* const drive = session ? session->drive(static_cast<std::uint32_t>(number)) : nullptr;
    if (drive == nullptr) {
        return 0;
    }
    session->folder().changeState([&](BenchState& state) { change(state, drive->description().number); });
    loseUnflushed(session->folder().path(), drive->description());
    if (pluggedIn) {
        readTableAnew(session->folder(), session->description(), drive->description());
    }
    return 1;
}

} // namespace
} // namespace torvane::bench

using namespace torvane::bench;

const char* BenchOpen(const char* folder) {
    return orNull(openBench(wideFromUtf8(folder)));
}

const char* BenchOpenW(const wchar_t* folder) {
    return orNull(openBench(folder));
}

void BenchClose(void) {
    if (currentSession()) {
        removeHooks();
        SetEnvironmentVariableW(kBenchVariable, nullptr);
    }
}

const char* BenchLayOut(const char* source, const char* target) {
    return orNull(layOutBench(wideFromUtf8(source), wideFromUtf8(target), true));
}

int BenchUnplug(int drive) {
    return changeDrive(drive, unplugDrive);
}

int BenchPlug(int drive) {
    return changeDrive(drive, plugDrive, true);
}

int BenchSwap(int drive) {
    return changeDrive(drive, swapDrive);
}

// In a process that was started on a bench the library refuses to load when that bench cannot be opened, and its
// starter then ends the process before its first instruction.
BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
    if (reason != DLL_PROCESS_ATTACH) {
        return TRUE;
    }
    DisableThreadLibraryCalls(module);
    const std::wstring folder = inheritedFolder();
    return folder.empty() || openBench(folder).empty() ? TRUE : FALSE;
}
