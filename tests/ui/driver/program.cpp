#include "tests/ui/driver/program.h"

#include "base/owned_handle.h"
#include "tests/ui/driver/text.h"
#include "workbench/hooks/start_again.h"

#include <tlhelp32.h>

#include <fstream>
#include <sstream>

namespace torvane::driver {
namespace fs = std::filesystem;
namespace {

constexpr const wchar_t* kProgramName = L"Torvane.exe";
constexpr const char* kLauncherOutput = "launcher-output.txt";
constexpr const char* kHurryFile = "hurry"; ///< in the bench folder
/// A fresh program on a busy machine, with a simulated bench to read first.
constexpr std::chrono::milliseconds kStartPatience{60'000};

/// A job object whose processes end with its last handle.
HANDLE makeJob() {
    HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (job == nullptr ||
        SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits) == FALSE) {
        throw Failure("the system gives no job object");
    }
    return job;
}

/// Starts a program without a window of its own. Throws when it cannot be started.
PROCESS_INFORMATION startProcess(std::wstring commandLine, STARTUPINFOW startup, DWORD flags, BOOL inherit,
                                 const wchar_t* folder) {
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    const DWORD error = bench::startAgainWhenLost([&]() -> DWORD {
        return CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, inherit, CREATE_NO_WINDOW | flags, nullptr,
                              folder, &startup, &process) != FALSE
                   ? 0
                   : GetLastError();
    });
    if (error != 0) {
        throw Failure("error " + std::to_string(error) + ", cannot start " + toUtf8(commandLine));
    }
    return process;
}

UniqueFile createInheritableFile(const fs::path& path) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    return UniqueFile(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// The dialogs' furniture: menus and the like are top-level windows as well.
bool isDialog(const Window& window) {
    if (!window.visible()) {
        return false;
    }
    const std::string name = window.className();
    return name != "#32768" && name != "tooltips_class32" && name != "IME" && name != "ComboLBox";
}

/// The drive list is what only the main window has.
bool isMainWindow(const Window& window) {
    constexpr int kDriveList = 6002;
    return window.visible() && window.hasChild(kDriveList);
}

} // namespace

Launch freshRun(const std::string& name, const BenchFolder& bench) {
    const fs::path folder = runsFolder() / name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    fs::copy(packageFolder(), folder / "program", fs::copy_options::recursive);
    // The tutorial was read and put away in an earlier run.
    std::ofstream(folder / "program" / "TutorialData.db", std::ios::binary).write("\0\0\0\0", 4);
    bench.writeTo(folder / "bench");
    return {workbenchFolder() / "bench.exe", folder / "bench", folder / "program" / kProgramName, {}};
}

Program::Program(Launch launch) : launch_(std::move(launch)), job_(makeJob()) {
    try {
        start();
    } catch (...) {
        close();
        throw;
    }
}

Program::~Program() {
    close();
}

void Program::close() {
    kill();
    for (const HANDLE handle : {process_, launcher_}) {
        if (handle != nullptr) {
            WaitForSingleObject(handle, 10'000);
            CloseHandle(handle);
        }
    }
    CloseHandle(job_);
}

void Program::start() {
    startLauncher();
    const auto launcherEnded = [this] { return WaitForSingleObject(launcher_, 0) == WAIT_OBJECT_0; };
    await(
        "the program has started", [&] { return findProcess() || launcherEnded(); }, kStartPatience);
    if (process_ == nullptr) {
        adoptEndedProgram();
    }
    awaitMainWindow();
}

// A program may end before anybody saw it: then the launcher has ended with its exit code and had nothing to complain
// of.
void Program::adoptEndedProgram() {
    if (!launcherOutput().empty()) {
        throw Failure("the launcher ended without the program: " + launcherOutput());
    }
    DuplicateHandle(GetCurrentProcess(), launcher_, GetCurrentProcess(), &process_, 0, FALSE, DUPLICATE_SAME_ACCESS);
}

void Program::startLauncher() {
    const std::wstring commandLine = L"\"" + launch_.launcher.wstring() + L"\" \"" + launch_.bench.wstring() +
                                     L"\" \"" + launch_.program.wstring() + L"\"";
    const UniqueFile output = createInheritableFile(folder() / kLauncherOutput);
    STARTUPINFOW startup{};
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output.get();
    startup.hStdError = output.get();
    // Suspended, so that it is in the job before it can start anything itself.
    const fs::path startFolder = launch_.startFolder.empty() ? folder() : launch_.startFolder;
    const PROCESS_INFORMATION process = startProcess(commandLine, startup, CREATE_SUSPENDED, TRUE, startFolder.c_str());
    launcher_ = process.hProcess;
    launcherId_ = process.dwProcessId;
    AssignProcessToJobObject(job_, process.hProcess);
    ResumeThread(process.hThread);
    CloseHandle(process.hThread);
}

void Program::awaitMainWindow() {
    await(
        "a window of the program is there", [&] { return findMainWindow() || dialog() || !starting(); },
        kStartPatience);
    // A dialog may have come up together with the main window.
    if (findMainWindow()) {
        mainWindow_.awaitPainted();
    }
}

// The launcher starts the program again when the system has lost it on its way; what was seen first has ended then.
bool Program::starting() {
    if (running()) {
        return true;
    }
    if (WaitForSingleObject(launcher_, 0) == WAIT_OBJECT_0) {
        return false;
    }
    (void)findProcess();
    return true;
}

bool Program::findMainWindow() {
    for (const Window& window : topLevelWindows(processId_)) {
        if (isMainWindow(window)) {
            mainWindow_ = window;
        }
    }
    return mainWindow_.exists();
}

std::vector<std::string> Program::benchLog(const std::vector<std::string>& texts) const {
    return readLog(launch_.bench / "bench.log", texts);
}

bool Program::findProcess() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more != FALSE; more = Process32NextW(snapshot, &entry)) {
        if (entry.th32ParentProcessID == launcherId_ && entry.th32ProcessID != processId_ &&
            lstrcmpiW(entry.szExeFile, kProgramName) == 0) {
            if (process_ != nullptr) {
                CloseHandle(process_);
            }
            processId_ = entry.th32ProcessID;
            process_ = OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION, FALSE, processId_);
            break;
        }
    }
    CloseHandle(snapshot);
    return process_ != nullptr;
}

std::string Program::launcherOutput() const {
    return readFile(folder() / kLauncherOutput);
}

bool Program::running() const {
    return process_ != nullptr && WaitForSingleObject(process_, 0) == WAIT_TIMEOUT;
}

DWORD Program::awaitEnd(std::chrono::milliseconds limit) {
    await(
        "the program has ended", [this] { return !running(); }, limit);
    DWORD code = 0;
    GetExitCodeProcess(process_, &code);
    return code;
}

std::string Program::obituary() const {
    if (running()) {
        return {};
    }
    DWORD code = 0;
    GetExitCodeProcess(process_, &code);
    constexpr DWORD kFirstException = 0xC0000000;
    std::ostringstream text;
    text << "the program " << (code >= kFirstException ? "crashed with exception 0x" : "ended with exit code 0x")
         << std::hex << code;
    return text.str();
}

std::optional<Window> Program::dialog() const {
    for (const Window& window : topLevelWindows(processId_)) {
        if (isDialog(window) && !(window == mainWindow_) && !isMainWindow(window)) {
            return window;
        }
    }
    return std::nullopt;
}

Window Program::awaitDialog(std::chrono::milliseconds limit) const {
    std::optional<Window> found;
    if (!waitUntil([&] { return (found = dialog()).has_value() || !running(); }, limit)) {
        throw Failure("no window opened");
    }
    if (!found) {
        throw Failure("no window opened: " + obituary());
    }
    return *found;
}

MessageBoxWindow Program::awaitBox(std::chrono::milliseconds limit) const {
    const Window window = awaitDialog(limit);
    // Its controls appear a moment after the box itself.
    await("the window is a message box: " + window.describe(), [&] { return MessageBoxWindow::isOne(window); });
    return MessageBoxWindow(window);
}

MessageBoxWindow Program::awaitBoxOver(const Window& dialog) const {
    Window box;
    await("a box opens over " + dialog.describe(), [&] {
        for (const Window& window : topLevelWindows(processId_)) {
            if (isDialog(window) && !(window == dialog) && !isMainWindow(window) && MessageBoxWindow::isOne(window)) {
                box = window;
            }
        }
        return box.exists();
    });
    return MessageBoxWindow(box);
}

void Program::runLauncher(const std::wstring& option, int drive) const {
    const std::wstring commandLine = L"\"" + launch_.launcher.wstring() + L"\" " + option + L" \"" +
                                     launch_.bench.wstring() + L"\" " + std::to_wstring(drive);
    const PROCESS_INFORMATION process = startProcess(commandLine, {}, 0, FALSE, nullptr);
    CloseHandle(process.hThread);
    WaitForSingleObject(process.hProcess, 30'000);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hProcess);
    if (code != 0) {
        throw Failure("the launcher ended with " + std::to_string(code));
    }
}

void Program::unplug(int drive) const {
    runLauncher(L"--unplug", drive);
}

void Program::plug(int drive) const {
    runLauncher(L"--plug", drive);
}

void Program::swap(int drive) const {
    runLauncher(L"--swap", drive);
}

void Program::hurry() const {
    if (!std::ofstream(launch_.bench / kHurryFile)) {
        throw Failure("the bench cannot be told to hurry");
    }
}

void Program::takeTime() const {
    fs::remove(launch_.bench / kHurryFile);
}

void Program::kill() const {
    TerminateJobObject(job_, 1);
}

} // namespace torvane::driver
