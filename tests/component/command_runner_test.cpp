#include "monitoring/command_runner.h"

#include "base/tool_watch.h"
#include "state/app_state.h"
#include "tests/component/handle_count.h"
#include "tests/component/import_patched.h"
#include "tests/component/patience_gone.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/recording_main_view.h"
#include "ui/owned.h"

#include <winioctl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// The import slots of the functions whose arguments matter. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&CreateFileA) __imp_CreateFileA;
extern decltype(&CreateProcessA) __imp_CreateProcessA;
extern decltype(&GlobalAlloc) __imp_GlobalAlloc;
extern decltype(&ReadFile) __imp_ReadFile;
extern decltype(&GetFileSize) __imp_GetFileSize;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::readFile;
using testing::writeFile;

class CommandRunner : public ::testing::Test {
  protected:
    int run(const std::string& arguments, const char* output = "output.txt") {
        return PARSE_BuildDataFile(output, ("torvane_child_program.exe " + arguments).c_str());
    }
    LoadedText load(const char* fileName) { return PARSE_LoadFileIntoBuffer(fileName); }

    /// Everything logged so far, as "CATEGORY: message".
    [[nodiscard]] std::vector<std::string> log() const {
        std::vector<std::string> rows;
        for (const LogRow& row : view_.logRows()) {
            rows.push_back(row.category + ": " + row.message);
        }
        return rows;
    }

  private:
    testing::ScratchFolder folder_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
};

// --- PARSE_BuildDataFile

TEST_F(CommandRunner, AnswersWhatAToolSendsToAWindowOfItsThread) {
    const HWND window = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(run("broadcast"), 1);
    EXPECT_EQ(readFile("output.txt"), "answered\r\n");
    DestroyWindow(window);
}

TEST_F(CommandRunner, CapturesTheOutputByteForByte) {
    EXPECT_EQ(run("out:one crlf bytes:00FF0A0D80 \"out:two words\""), 1);
    EXPECT_EQ(readFile("output.txt"), std::string("one\r\n\x00\xFF\x0A\x0D\x80two words", 19));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(CommandRunner, CapturesStandardErrorInterleavedWithStandardOutput) {
    EXPECT_EQ(run("out:a err:b out:c err:d crlf"), 1);
    EXPECT_EQ(readFile("output.txt"), "abcd\r\n");
}

TEST_F(CommandRunner, ReturnsAfterTheChildsEndAndSucceedsWhateverItsExitCode) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(run("sleep:300 out:late exit:7"), 1);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
    EXPECT_EQ(readFile("output.txt"), "late");
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(CommandRunner, CreatesTheFileAnewOnEveryRun) {
    writeFile("output.txt", "what an earlier and much longer run printed");
    EXPECT_EQ(run("out:new"), 1);
    EXPECT_EQ(readFile("output.txt"), "new");
}

TEST_F(CommandRunner, CapturesFiftyMegabytes) {
    EXPECT_EQ(run("bulk:50000000 out:end"), 1);
    const std::string output = readFile("output.txt");
    ASSERT_EQ(output.size(), 50'000'003U);
    EXPECT_EQ(output.substr(output.size() - 5), "\r\nend");
}

TEST_F(CommandRunner, HandsTheCommandLineOnUnchanged) {
    EXPECT_EQ(run("args out:%s%n%d \"out:a b\" out:100%"), 1);
    EXPECT_EQ(readFile("output.txt"), "args\r\nout:%s%n%d\r\nout:a b\r\nout:100%\r\n%s%n%da b100%");
}

TEST_F(CommandRunner, StartsTheChildWithoutAWindow) {
    EXPECT_EQ(run("window"), 1);
    EXPECT_EQ(readFile("output.txt"), "console window 0, flags " + std::to_string(STARTF_USESTDHANDLES) + ", show 0");
}

struct SeenFileRequest {
    std::string name;
    DWORD access = 0;
    DWORD sharing = 0;
    DWORD disposition = 0;
    DWORD flags = 0;
    bool hasAttributes = false;
    SECURITY_ATTRIBUTES attributes{};
    HANDLE result = nullptr;
};
std::vector<SeenFileRequest> seenFiles;
decltype(&CreateFileA) realCreateFile;

HANDLE WINAPI watchedCreateFile(LPCSTR name, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES attributes,
                                DWORD disposition, DWORD flags, HANDLE templateFile) {
    const HANDLE result = realCreateFile(name, access, sharing, attributes, disposition, flags, templateFile);
    const DWORD error = GetLastError();
    seenFiles.push_back({name, access, sharing, disposition, flags, attributes != nullptr,
                         attributes != nullptr ? *attributes : SECURITY_ATTRIBUTES{}, result});
    SetLastError(error);
    return result;
}

TEST_F(CommandRunner, OpensItsFilesExactlySo) {
    seenFiles.clear();
    {
        const testing::ImportPatched watched(__imp_CreateFileA, &watchedCreateFile);
        realCreateFile = watched.original();
        EXPECT_EQ(run("out:x"), 1);
        EXPECT_TRUE(load("output.txt"));
    }
    ASSERT_GE(seenFiles.size(), 2U);

    const SeenFileRequest& output = seenFiles.front();
    EXPECT_EQ(output.name, "output.txt");
    EXPECT_EQ(output.access, 0xC0000180U);
    EXPECT_EQ(output.sharing, static_cast<DWORD>(FILE_SHARE_READ | FILE_SHARE_WRITE));
    EXPECT_EQ(output.disposition, static_cast<DWORD>(CREATE_ALWAYS));
    EXPECT_EQ(output.flags, 0U);
    ASSERT_TRUE(output.hasAttributes);
    EXPECT_EQ(output.attributes.nLength, 0U);
    EXPECT_EQ(output.attributes.lpSecurityDescriptor, nullptr);
    EXPECT_EQ(output.attributes.bInheritHandle, TRUE);

    const SeenFileRequest& text = seenFiles.back();
    EXPECT_EQ(text.name, "output.txt");
    EXPECT_EQ(text.access, 0x80000080U);
    EXPECT_EQ(text.sharing, static_cast<DWORD>(FILE_SHARE_READ));
    EXPECT_EQ(text.disposition, static_cast<DWORD>(OPEN_EXISTING));
    EXPECT_FALSE(text.hasAttributes);
}

struct SeenProcessRequest {
    bool named = false;
    std::string commandLine;
    bool hasAttributes = false;
    BOOL inherit = FALSE;
    DWORD flags = 0;
    bool hasEnvironmentOrFolder = false;
    STARTUPINFOA startup{};
    std::string application;
};
SeenProcessRequest seenProcess;
decltype(&CreateProcessA) realCreateProcess;

BOOL WINAPI watchedCreateProcess(LPCSTR name, LPSTR commandLine, LPSECURITY_ATTRIBUTES process,
                                 LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags, LPVOID environment,
                                 LPCSTR folder, LPSTARTUPINFOA startup, LPPROCESS_INFORMATION child) {
    seenProcess = {name != nullptr,
                   commandLine,
                   process != nullptr || thread != nullptr,
                   inherit,
                   flags,
                   environment != nullptr || folder != nullptr,
                   *startup,
                   name != nullptr ? name : ""};
    const BOOL result =
        realCreateProcess(name, commandLine, process, thread, inherit, flags, environment, folder, startup, child);
    commandLine[0] = '!'; // as the system may: the argument is the callee's
    return result;
}

TEST_F(CommandRunner, StartsTheChildExactlySo) {
    const std::string commandLine = "torvane_child_program.exe out:x";
    seenFiles.clear();
    {
        const testing::ImportPatched watchedFiles(__imp_CreateFileA, &watchedCreateFile);
        realCreateFile = watchedFiles.original();
        const testing::ImportPatched watchedProcesses(__imp_CreateProcessA, &watchedCreateProcess);
        realCreateProcess = watchedProcesses.original();
        EXPECT_EQ(PARSE_BuildDataFile("output.txt", commandLine.c_str()), 1);
    }
    EXPECT_EQ(commandLine, "torvane_child_program.exe out:x") << "the caller's own text is left alone";
    EXPECT_FALSE(seenProcess.named);
    EXPECT_EQ(seenProcess.commandLine, commandLine);
    EXPECT_FALSE(seenProcess.hasAttributes);
    EXPECT_EQ(seenProcess.inherit, TRUE);
    EXPECT_EQ(seenProcess.flags, 0x08080000U) << "no window, and a list of what is inherited";
    EXPECT_FALSE(seenProcess.hasEnvironmentOrFolder);

    const STARTUPINFOA& startup = seenProcess.startup;
    EXPECT_EQ(startup.cb, sizeof(STARTUPINFOEXA));
    EXPECT_EQ(startup.dwFlags, static_cast<DWORD>(STARTF_USESTDHANDLES));
    EXPECT_EQ(startup.wShowWindow, SW_HIDE);
    EXPECT_EQ(startup.hStdInput, nullptr);
    ASSERT_EQ(seenFiles.size(), 1U);
    EXPECT_EQ(startup.hStdOutput, seenFiles.front().result);
    EXPECT_EQ(startup.hStdError, seenFiles.front().result);
    EXPECT_EQ(startup.lpTitle, nullptr);
    EXPECT_EQ(startup.lpDesktop, nullptr);
    EXPECT_EQ(startup.cbReserved2, 0);
}

TEST_F(CommandRunner, LetsTheChildInheritNothingButItsOutputWhateverIsInheritable) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    const UniqueHandle inheritable{CreateEventA(&attributes, TRUE, FALSE, nullptr)};
    const auto value = std::to_string(reinterpret_cast<std::uintptr_t>(inheritable.get()));
    EXPECT_EQ(run("set:" + value), 1);
    EXPECT_EQ(WaitForSingleObject(inheritable.get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));

    // A child of the system's plain start does reach the event, so the check above can fail.
    std::string command = "torvane_child_program.exe set:" + value;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child{};
    ASSERT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                               &startup, &child));
    const UniqueHandle process{child.hProcess};
    const UniqueHandle thread{child.hThread};
    WaitForSingleObject(process.get(), INFINITE);
    EXPECT_EQ(WaitForSingleObject(inheritable.get(), 0), WAIT_OBJECT_0);
}

TEST_F(CommandRunner, ChildrenStartedLaterDoNotInheritTheOutputOfOneThatRuns) {
    seenFiles.clear();
    const testing::ImportPatched watchedFiles(__imp_CreateFileA, &watchedCreateFile);
    realCreateFile = watchedFiles.original();
    const testing::ImportPatched watchedProcesses(__imp_CreateProcessA, &watchedCreateProcess);
    realCreateProcess = watchedProcesses.original();
    std::atomic<bool> ended = false;
    std::thread runner([&] {
        EXPECT_EQ(run("out:first until:seen.txt"), 1);
        ended = true;
    });
    bool inheritable = true;
    while (inheritable && !ended) {
        std::error_code none;
        DWORD flags = HANDLE_FLAG_INHERIT;
        if (std::filesystem::exists("output.txt", none) && std::filesystem::file_size("output.txt", none) == 5) {
            GetHandleInformation(seenFiles.front().result, &flags);
        }
        inheritable = (flags & HANDLE_FLAG_INHERIT) != 0;
        Sleep(5);
    }
    EXPECT_FALSE(inheritable) << "while the child ran";
    writeFile("seen.txt", "");
    runner.join();
}

TEST_F(CommandRunner, TheOutputCanBeReadWhileTheChildRuns) {
    std::thread runner([this] { EXPECT_EQ(run("out:first until:seen.txt out:last"), 1); });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    std::string seen;
    while (seen.empty() && std::chrono::steady_clock::now() < deadline) {
        const UniqueFile file{CreateFileA("output.txt", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, 0, nullptr)};
        char bytes[16]{};
        DWORD count = 0;
        if (file && ReadFile(file.get(), bytes, sizeof bytes, &count, nullptr)) {
            seen.assign(bytes, count);
        }
        Sleep(5);
    }
    EXPECT_EQ(seen, "first");
    writeFile("seen.txt", "");
    runner.join();
    EXPECT_EQ(readFile("output.txt"), "firstlast");
}

TEST_F(CommandRunner, LogsAnOutputFileThatCannotBeCreated) {
    EXPECT_EQ(run("out:x", "no such folder\\output.txt"), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [no such folder\\output.txt] CREATE_ALWAYS FAILED"));
}

TEST_F(CommandRunner, LogsAMissingExecutableAndLeavesAnEmptyFile) {
    writeFile("output.txt", "old");
    EXPECT_EQ(PARSE_BuildDataFile("output.txt", "no-such-tool.exe --scan"), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [output.txt] CreateProcess FAILED"));
    ASSERT_TRUE(std::filesystem::exists("output.txt"));
    EXPECT_EQ(std::filesystem::file_size("output.txt"), 0U);
}

TEST_F(CommandRunner, LogsAnExecutableThatIsNone) {
    writeFile("broken.exe", "this is no program");
    EXPECT_EQ(PARSE_BuildDataFile("output.txt", "broken.exe"), 0);
    EXPECT_EQ(PARSE_BuildDataFile("output.txt", ""), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [output.txt] CreateProcess FAILED",
                                   "ERROR: PARSE_BuildDataFile: [output.txt] CreateProcess FAILED"));
}

TEST_F(CommandRunner, NamesAreLoggedAsTheyStand) {
    EXPECT_EQ(run("out:x", "none\\%s%n.txt"), 0);
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [none\\%s%n.txt] CREATE_ALWAYS FAILED"));
}

TEST_F(CommandRunner, FindsAToolInTheCurrentFolder) {
    char program[MAX_PATH]{};
    ASSERT_NE(SearchPathA(nullptr, "torvane_child_program.exe", nullptr, sizeof program, program, nullptr), 0U);
    std::filesystem::copy_file(program, "tool-in-this-folder.exe");
    EXPECT_EQ(PARSE_BuildDataFile("output.txt", "tool-in-this-folder.exe out:found"), 1);
    EXPECT_EQ(readFile("output.txt"), "found");
}

TEST_F(CommandRunner, LeavesNoHandleOpen) {
    testing::expectNoHandleLost([this] {
        run("out:x");
        run("out:x", "no such folder\\output.txt");
        PARSE_BuildDataFile("output.txt", "no-such-tool.exe");
        load("output.txt");
        load("missing.txt");
    });
}

TEST_F(CommandRunner, KeepsWhatAChildPrintedThatDiedOrHungUp) {
    EXPECT_EQ(run("out:first die out:second"), 1);
    EXPECT_EQ(readFile("output.txt"), "first");
    EXPECT_EQ(run("out:first hang-up sleep:100 exit:3"), 1);
    EXPECT_EQ(readFile("output.txt"), "first");
    EXPECT_EQ(run("exit:1"), 1) << "a silent one";
    EXPECT_EQ(readFile("output.txt"), "");
    EXPECT_THAT(log(), IsEmpty());
}

// --- tools of the system

/// The full path that a system function gives.
std::string systemFolder() {
    char path[MAX_PATH]{};
    GetSystemDirectoryA(path, sizeof path);
    return path;
}

void copyChildProgramTo(const char* name) {
    char program[MAX_PATH]{};
    ASSERT_NE(SearchPathA(nullptr, "torvane_child_program.exe", nullptr, sizeof program, program, nullptr), 0U);
    std::filesystem::copy_file(program, name);
}

TEST_F(CommandRunner, AToolOfTheSystemStartsFromTheSystemsFolderWhateverLiesHere) {
    const std::string own = systemFolder() + R"(\WindowsPowerShell\v1.0\powershell.exe)";
    ASSERT_TRUE(std::filesystem::exists(own)) << "the check below could not fail";
    copyChildProgramTo("powershell.exe");
    const std::string stranger = (std::filesystem::current_path() / "powershell.exe").string();
    {
        const testing::ImportPatched watched(__imp_CreateProcessA, &watchedCreateProcess);
        realCreateProcess = watched.original();
        EXPECT_EQ(PARSE_BuildDataFile("output.txt", "powershell out:planted"), 1);
        EXPECT_EQ(PARSE_BuildDataFile("output.txt", "powershell out:planted"), 1);
    }
    EXPECT_EQ(seenProcess.application, own);
    EXPECT_EQ(seenProcess.commandLine, "powershell out:planted");
    EXPECT_EQ(readFile("output.txt").find("planted"), std::string::npos);
    EXPECT_THAT(log(), ElementsAre("ERROR: [" + stranger + "] does not belong to Windows and is not used: [" + own +
                                   "] is started"))
        << "once";
}

TEST_F(CommandRunner, AToolThatTheSystemDoesNotHaveIsSearchedByItsTextAndNamed) {
    ASSERT_FALSE(std::filesystem::exists(systemFolder() + R"(\diskpart.exe)")) << "the check below could not fail";
    copyChildProgramTo("diskpart.exe");
    EXPECT_EQ(PARSE_BuildDataFile("output.txt", "diskpart out:found"), 1);
    EXPECT_EQ(readFile("output.txt"), "found");
    EXPECT_THAT(log(), ElementsAre("ERROR: [" + (std::filesystem::current_path() / "diskpart.exe").string() +
                                   "] does not belong to Windows and is started all the same: Windows has none"));
}

// --- tools that somebody watches

/// Has enough of a tool as soon as a file is there, or at once.
class PatientUntil : public ToolWatch {
  public:
    explicit PatientUntil(const char* file) : file_(file) {}
    [[nodiscard]] bool mayBegin() override { return !impatient_; }
    [[nodiscard]] bool mayGoOn(const ToolAtWork& tool) override {
        seen_ = tool;
        impatient_ = std::filesystem::exists(file_);
        return !impatient_;
    }
    void ended() override { ++ended_; }

    [[nodiscard]] const ToolAtWork& seen() const { return seen_; }
    [[nodiscard]] int endedCount() const { return ended_; }

  private:
    const char* file_;
    bool impatient_ = false;
    ToolAtWork seen_;
    int ended_ = 0;
};

TEST_F(CommandRunner, AWatchedToolIsEndedWithWhatItStartedAndNoOtherBegins) {
    PatientUntil watch("enough.txt");
    const ToolWatchScope watched(watch);
    const ToolSubject subject("drive 3");
    std::thread impatience([] {
        while (!std::filesystem::exists("output.txt") || std::filesystem::file_size("output.txt") != 5) {
            Sleep(5);
        }
        writeFile("enough.txt", "");
    });
    // The child's own child holds the output too, and would keep it open for a minute.
    EXPECT_EQ(run("start-own:until:never.txt out:first until:never.txt out:last"), 0);
    impatience.join();
    EXPECT_EQ(watch.seen().name, "torvane_child_program");
    EXPECT_EQ(watch.seen().subject, "drive 3");
    EXPECT_GE(watch.seen().runsSince.count(), 1);
    EXPECT_EQ(watch.endedCount(), 1);
    EXPECT_EQ(run("out:second", "second.txt"), 0);
    EXPECT_FALSE(std::filesystem::exists("second.txt"));
    {
        const testing::PatienceGone atOnce;
        const LoadedText text = load("output.txt");
        ASSERT_TRUE(text) << "somebody still holds it";
        EXPECT_STREQ(text.get(), "first");
    }
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_BuildDataFile: [output.txt] TERMINATED before the tool was done",
                                   "ERROR: PARSE_BuildDataFile: [second.txt] TERMINATED before the tool was done"));
}

TEST_F(CommandRunner, AWatchedToolIsResumedOnceItBelongsToItsGroup) {
    PatientUntil watch("never.txt");
    const ToolWatchScope watched(watch);
    const testing::ImportPatched watchedProcesses(__imp_CreateProcessA, &watchedCreateProcess);
    realCreateProcess = watchedProcesses.original();
    EXPECT_EQ(run("out:x"), 1);
    EXPECT_EQ(seenProcess.flags, 0x08080004U) << "no window, a list of what is inherited, and suspended";
    EXPECT_EQ(readFile("output.txt"), "x");
}

TEST_F(CommandRunner, WhatAWatchedToolStartedOutlivesAToolThatEndedByItself) {
    PatientUntil watch("never.txt");
    const ToolWatchScope watched(watch);
    EXPECT_EQ(run("start-own:until:go.txt,make:made.txt"), 1);
    writeFile("go.txt", "");
    for (int patience = 6000; !std::filesystem::exists("made.txt") && patience > 0; --patience) {
        Sleep(10);
    }
    EXPECT_TRUE(std::filesystem::exists("made.txt"));
}

// --- PARSE_LoadFileIntoBuffer

bool isZero(const char* begin, std::size_t count) {
    return std::all_of(begin, begin + count, [](char byte) { return byte == '\0'; });
}

TEST_F(CommandRunner, LoadsTheWholeFileWithZerosBehindIt) {
    const std::string bytes("one\r\n\0two\xFF", 10);
    writeFile("text.txt", bytes);
    const LoadedText text = load("text.txt");
    ASSERT_TRUE(text);
    EXPECT_EQ(std::string_view(text.get(), bytes.size()), bytes);
    EXPECT_TRUE(isZero(text.get() + bytes.size(), 1024));
    EXPECT_GE(GlobalSize(text.get()), bytes.size() + 1024);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(CommandRunner, LoadsAnEmptyFileAsAnEmptyText) {
    writeFile("empty.txt", "");
    const LoadedText text = load("empty.txt");
    ASSERT_TRUE(text);
    EXPECT_TRUE(isZero(text.get(), 1024));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(CommandRunner, LoadsWhatTheChildPrinted) {
    EXPECT_EQ(run("out:abc crlf"), 1);
    const LoadedText text = load("output.txt");
    ASSERT_TRUE(text);
    EXPECT_STREQ(text.get(), "abc\r\n");
}

TEST_F(CommandRunner, WaitsAMomentForAWriterToCloseTheFile) {
    writeFile("busy.txt", "x");
    UniqueFile writer{
        CreateFileA("busy.txt", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)};
    ASSERT_TRUE(writer);
    std::thread closer([&] {
        Sleep(300);
        writer.reset();
    });
    EXPECT_TRUE(load("busy.txt"));
    closer.join();
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(CommandRunner, LogsAFileThatCannotBeOpened) {
    EXPECT_FALSE(load("missing.txt"));
    writeFile("busy.txt", "x");
    const UniqueFile writer{
        CreateFileA("busy.txt", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)};
    ASSERT_TRUE(writer);
    const testing::PatienceGone atOnce;
    EXPECT_FALSE(load("busy.txt")) << "somebody may still be writing into it";
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_LoadFileIntoBuffer: [missing.txt] OPEN_WXISTING FAILED",
                                   "ERROR: PARSE_LoadFileIntoBuffer: [busy.txt] OPEN_WXISTING FAILED"));
}

/// Makes a file of `size` bytes that takes no room on the disk.
void makeSparseFile(const char* name, std::int64_t size) {
    const UniqueFile file{CreateFileA(name, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr)};
    ASSERT_TRUE(file);
    DWORD count = 0;
    DeviceIoControl(file.get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &count, nullptr);
    LARGE_INTEGER end{};
    end.QuadPart = size;
    ASSERT_TRUE(SetFilePointerEx(file.get(), end, nullptr, FILE_BEGIN));
    ASSERT_TRUE(SetEndOfFile(file.get()));
}

TEST_F(CommandRunner, RefusesAFileOfFourGibibytes) {
    makeSparseFile("large.txt", (std::int64_t{1} << 32) + 5);
    EXPECT_FALSE(load("large.txt"));
    makeSparseFile("large.txt", std::int64_t{1} << 32);
    EXPECT_FALSE(load("large.txt"));
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_LoadFileIntoBuffer: Could not READ [large.txt] for processing",
                                   "ERROR: PARSE_LoadFileIntoBuffer: Could not READ [large.txt] for processing"));
}

HGLOBAL WINAPI allocateNothing(UINT, SIZE_T) {
    return nullptr;
}

TEST_F(CommandRunner, LogsABlockThatCannotBeAllocated) {
    makeSparseFile("large.txt", (std::int64_t{1} << 32) + 5);
    writeFile("small.txt", "abc");
    {
        const testing::ImportPatched patched(__imp_GlobalAlloc, &allocateNothing);
        EXPECT_FALSE(load("small.txt"));
        EXPECT_FALSE(load("large.txt"));
    }
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_LoadFileIntoBuffer: Could not allocate [1027] bytes of memory",
                                   "ERROR: PARSE_LoadFileIntoBuffer: Could not allocate [4294968325] bytes of memory"));
}

decltype(&ReadFile) realReadFile;

BOOL WINAPI readOneByteLess(HANDLE file, LPVOID buffer, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
    return realReadFile(file, buffer, size - 1, count, overlapped);
}

BOOL WINAPI readThenFail(HANDLE file, LPVOID buffer, DWORD size, LPDWORD count, LPOVERLAPPED overlapped) {
    realReadFile(file, buffer, size, count, overlapped);
    SetLastError(ERROR_CRC);
    return FALSE;
}

TEST_F(CommandRunner, LogsAShortAndAFailedRead) {
    writeFile("text.txt", "some text");
    for (const auto replacement : {&readOneByteLess, &readThenFail}) {
        const testing::ImportPatched patched(__imp_ReadFile, replacement);
        realReadFile = patched.original();
        EXPECT_FALSE(load("text.txt"));
    }
    EXPECT_TRUE(load("text.txt"));
    EXPECT_THAT(log(), ElementsAre("ERROR: PARSE_LoadFileIntoBuffer: Could not READ [text.txt] for processing",
                                   "ERROR: PARSE_LoadFileIntoBuffer: Could not READ [text.txt] for processing"));
}

TEST_F(CommandRunner, LogsWhatIsNoPlainFile) {
    constexpr const char* kPipe = R"(\\.\pipe\torvane-not-a-plain-file)";
    const UniqueFile pipe{
        CreateNamedPipeA(kPipe, PIPE_ACCESS_OUTBOUND, PIPE_TYPE_MESSAGE | PIPE_WAIT, 1, 64, 64, 0, nullptr)};
    ASSERT_TRUE(pipe);
    EXPECT_FALSE(load(kPipe));
    EXPECT_THAT(log(), ElementsAre(std::string("ERROR: PARSE_LoadFileIntoBuffer: Could not READ [") + kPipe +
                                   "] for processing"));
}

DWORD WINAPI tellNoSize(HANDLE, LPDWORD high) {
    *high = 0;
    SetLastError(NO_ERROR);
    return 0;
}

BOOL WINAPI waitForEver(HANDLE, LPVOID, DWORD, LPDWORD, LPOVERLAPPED) {
    ADD_FAILURE() << "a pipe that nobody writes to is read";
    return FALSE;
}

// As Windows does, and a newer Wine.
TEST_F(CommandRunner, ReadsNoPipeWhoseSizeIsToldAsZero) {
    constexpr const char* kPipe = R"(\\.\pipe\torvane-that-nobody-writes-to)";
    const UniqueFile pipe{
        CreateNamedPipeA(kPipe, PIPE_ACCESS_OUTBOUND, PIPE_TYPE_MESSAGE | PIPE_WAIT, 1, 64, 64, 0, nullptr)};
    ASSERT_TRUE(pipe);
    const testing::ImportPatched size(__imp_GetFileSize, &tellNoSize);
    const testing::ImportPatched read(__imp_ReadFile, &waitForEver);
    EXPECT_FALSE(load(kPipe));
    EXPECT_THAT(log(), ElementsAre(std::string("ERROR: PARSE_LoadFileIntoBuffer: Could not READ [") + kPipe +
                                   "] for processing"));
}

TEST_F(CommandRunner, LeavesNoHandleOpenWhenTheBlockOrTheReadFails) {
    writeFile("text.txt", "some text");
    const auto failAll = [this] {
        {
            const testing::ImportPatched patched(__imp_GlobalAlloc, &allocateNothing);
            EXPECT_FALSE(load("text.txt"));
        }
        for (const auto replacement : {&readOneByteLess, &readThenFail}) {
            const testing::ImportPatched patched(__imp_ReadFile, replacement);
            realReadFile = patched.original();
            EXPECT_FALSE(load("text.txt"));
        }
    };
    failAll(); // what the system opens at its first use stays open
    const DWORD before = testing::openHandleCount();
    for (int i = 0; i < 5; ++i) {
        failAll();
    }
    EXPECT_LE(testing::lowestHandleCount(before), before);
}

} // namespace
} // namespace torvane
