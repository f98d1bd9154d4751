#include "settings/message_file.h"
#include "settings/messages.h"
#include "state/app_state.h"
#include "tests/component/saving_program/message_tables.h"
#include "tests/component/scratch_folder.h"
#include "tests/support/recording_main_view.h"
#include "ui/owned.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

using testing::kNewTable;
using testing::kOldTable;
using testing::readFile;
using testing::tableOf;
using testing::writeFile;

std::string bytesOf(char table) {
    const auto bytes = serializeMessageTable(tableOf(table));
    return {bytes.begin(), bytes.end()};
}

/// A process of its own that saves messages into the current folder.
class SavingProcess {
  public:
    explicit SavingProcess(const std::string& task) {
        std::string commandLine = "torvane_saving_program.exe " + task;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION child{};
        EXPECT_TRUE(CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                                   nullptr, &startup, &child));
        process_.reset(child.hProcess);
        CloseHandle(child.hThread);
    }

    void kill() { TerminateProcess(process_.get(), testing::kDied); }

    [[nodiscard]] int exitCode() {
        EXPECT_EQ(WaitForSingleObject(process_.get(), 120000), WAIT_OBJECT_0);
        DWORD code = 0;
        GetExitCodeProcess(process_.get(), &code);
        return static_cast<int>(code);
    }

  private:
    UniqueHandle process_;
};

class MessagesCrash : public ::testing::Test {
  protected:
    MessagesCrash() { writeFile(kMessageFileName, bytesOf(kOldTable)); }
    ~MessagesCrash() override { appState().messages.clear(); }

    /// Which table the file is, whole: 'o', 'n', or '?' for anything else.
    static char tableInFile() {
        const std::string bytes = readFile(kMessageFileName);
        return bytes == bytesOf(kOldTable) ? kOldTable : bytes == bytesOf(kNewTable) ? kNewTable : '?';
    }

    /// What the next start of the program finds, and whether it can save again.
    static void expectUsable() {
        EXPECT_EQ(LoadMessages(appState().messages), 1);
        EXPECT_EQ(saveMessages(appState().messages, tableOf(kNewTable)), 1);
        EXPECT_EQ(tableInFile(), kNewTable);
        EXPECT_EQ(GetFileAttributesA("Message.db.new"), INVALID_FILE_ATTRIBUTES);
    }

  private:
    testing::ScratchFolder folder_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
};

TEST_F(MessagesCrash, AtAnyMomentOfASaveLeavesTheOldFileOrTheNewOne) {
    std::string found;
    for (int moment = 0;; ++moment) {
        writeFile(kMessageFileName, bytesOf(kOldTable));
        const int exitCode = SavingProcess("die-at:" + std::to_string(moment)).exitCode();
        found += tableInFile();
        expectUsable();
        if (exitCode != testing::kDied) {
            EXPECT_EQ(exitCode, testing::kSaved);
            break;
        }
        ASSERT_LT(moment, 50);
    }
    // Before and behind the creation; before, within and behind the writing; behind flushing and closing; before the
    // renaming: eight times the old one. Behind the renaming, and after the whole save, the new one.
    EXPECT_EQ(found, "oooooooonn");
}

TEST_F(MessagesCrash, OfAProcessThatIsKilledLeavesTheOldFileOrTheNewOne) {
    for (int round = 0; round < 20; ++round) {
        SavingProcess saver("for-ever");
        for (int patience = 60000; tableInFile() != kNewTable && patience > 0; --patience) {
            Sleep(1);
        }
        Sleep(static_cast<DWORD>(round)); // another moment in each round
        saver.kill();
        EXPECT_EQ(saver.exitCode(), testing::kDied);
        EXPECT_NE(tableInFile(), '?') << round;
        expectUsable();
        writeFile(kMessageFileName, bytesOf(kOldTable));
    }
}

} // namespace
} // namespace torvane
