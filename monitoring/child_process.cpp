#include "monitoring/child_process.h"

#include "base/answering_wait.h"

#include <cstddef>
#include <memory>
#include <string>

namespace torvane {
namespace {

/// A start-up record that names the handles which the child inherits, whatever else is inheritable.
class StartUp {
  public:
    explicit StartUp(HANDLE output) : output_(output) {
        record_.StartupInfo.cb = sizeof(STARTUPINFOA);
        record_.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
        record_.StartupInfo.wShowWindow = SW_HIDE;
        record_.StartupInfo.hStdOutput = output;
        record_.StartupInfo.hStdError = output;
        if (makeList()) {
            record_.StartupInfo.cb = sizeof(STARTUPINFOEXA);
        }
    }
    ~StartUp() {
        if (record_.lpAttributeList != nullptr) {
            DeleteProcThreadAttributeList(record_.lpAttributeList);
        }
    }
    StartUp(const StartUp&) = delete;
    StartUp& operator=(const StartUp&) = delete;

    [[nodiscard]] STARTUPINFOA* record() { return &record_.StartupInfo; }
    [[nodiscard]] DWORD flags() const {
        const bool extended = record_.StartupInfo.cb == sizeof(STARTUPINFOEXA);
        return CREATE_NO_WINDOW | (extended ? EXTENDED_STARTUPINFO_PRESENT : 0);
    }

  private:
    // Without a list, the child inherits what is inheritable at that moment.
    bool makeList() {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        memory_ = std::make_unique<std::byte[]>(size);
        auto* const list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.get());
        if (InitializeProcThreadAttributeList(list, 1, 0, &size) == FALSE) {
            return false;
        }
        record_.lpAttributeList = list;
        return UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, &output_, sizeof output_, nullptr,
                                         nullptr) != FALSE;
    }

    HANDLE output_;
    std::unique_ptr<std::byte[]> memory_;
    STARTUPINFOEXA record_{};
};

bool setLimits(HANDLE group, DWORD flags) {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = flags;
    return SetInformationJobObject(group, JobObjectExtendedLimitInformation, &limits, sizeof limits) != FALSE;
}

/// A group whose members end with its last handle; null when the system gives none.
UniqueHandle makeGroup(HANDLE process) {
    UniqueHandle group{CreateJobObjectA(nullptr, nullptr)};
    if (!group || !setLimits(group.get(), JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE) ||
        AssignProcessToJobObject(group.get(), process) == FALSE) {
        return {};
    }
    return group;
}

} // namespace

ChildProcess::ChildProcess(const std::string& application, const char* commandLine, HANDLE output, bool watched) {
    // What is watched does nothing before it belongs to its group, so that all it starts belongs to it, too.
    const DWORD suspended = watched ? CREATE_SUSPENDED : 0;
    std::string ownCommandLine(commandLine); // CreateProcess may write into its argument
    StartUp startUp(output);
    PROCESS_INFORMATION child{};
    if (CreateProcessA(application.empty() ? nullptr : application.c_str(), ownCommandLine.data(), nullptr, nullptr,
                       TRUE, startUp.flags() | suspended, nullptr, nullptr, startUp.record(), &child) == FALSE) {
        return;
    }
    process_.reset(child.hProcess);
    if (watched) {
        group_ = makeGroup(child.hProcess);
    }
    const UniqueHandle mainThread{child.hThread};
    ResumeThread(mainThread.get());
}

// A tool that tells all windows of something waits for the answer of each, of hidden ones too.
bool ChildProcess::awaitEnd(std::chrono::milliseconds limit) const {
    return awaitAnswering(process_.get(), static_cast<DWORD>(limit.count()));
}

void ChildProcess::awaitEnd() const {
    while (!awaitAnswering(process_.get(), INFINITE)) {
    }
}

void ChildProcess::kill() {
    constexpr UINT kExitCode = 1;
    if (group_) {
        TerminateJobObject(group_.get(), kExitCode);
    }
    TerminateProcess(process_.get(), kExitCode);
}

void ChildProcess::end() {
    constexpr std::chrono::seconds kPatience{1};
    kill();
    static_cast<void>(awaitEnd(kPatience));
}

void ChildProcess::letGo() {
    if (group_) {
        setLimits(group_.get(), 0);
    }
}

} // namespace torvane
