#include "base/tool_watch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace torvane {
namespace {

using namespace std::chrono_literals;

class Patient : public ToolWatch {
  public:
    [[nodiscard]] bool mayBegin() override { return true; }
    [[nodiscard]] bool mayGoOn(const ToolAtWork&) override { return true; }
};

TEST(ToolWatch, IsThatOfTheInnermostScopeAndOfItsThread) {
    EXPECT_EQ(toolWatch(), nullptr);
    Patient outer;
    const ToolWatchScope outerScope(outer);
    {
        Patient inner;
        const ToolWatchScope innerScope(inner);
        EXPECT_EQ(toolWatch(), &inner);
        std::thread([] { EXPECT_EQ(toolWatch(), nullptr); }).join();
    }
    EXPECT_EQ(toolWatch(), &outer);
}

TEST(ToolWatch, NeedNotCareForTheEndOfATool) {
    Patient patient;
    patient.ended();
    EXPECT_TRUE(patient.mayBegin());
}

TEST(ToolWatch, SubjectIsThatOfTheInnermostScope) {
    EXPECT_EQ(toolSubject(), "");
    const ToolSubject outer("drive 1");
    {
        const ToolSubject inner("drive 12");
        EXPECT_EQ(toolSubject(), "drive 12");
    }
    EXPECT_EQ(toolSubject(), "drive 1");
}

TEST(ToolWatch, NamesADriveByItsNumber) {
    EXPECT_EQ(driveSubject(12), "drive 12");
}

TEST(ToolWatch, NamesTheToolOfACommandLine) {
    EXPECT_EQ(toolName("smartctl.exe --scan"), "smartctl");
    EXPECT_EQ(toolName("diskpart /s script.txt"), "diskpart");
    EXPECT_EQ(toolName("PowerShell.EXE"), "powershell");
    EXPECT_EQ(toolName(R"("C:\Program Files\tool.exe" /x)"), "tool");
    EXPECT_EQ(toolName(R"( C:\tools\tool /x)"), "tool");
    EXPECT_EQ(toolName(".exe"), ".exe");
    EXPECT_EQ(toolName(""), "");
    EXPECT_EQ(programWord("\"unfinished tool"), "unfinished tool");
}

TEST(ToolWatch, SaysWhoIsWaitedForAndHowLong) {
    EXPECT_EQ(stillWaitingText({"smartctl", "drive 3", 40'900ms}), "still waiting for smartctl on drive 3, 40 s");
    EXPECT_EQ(stillWaitingText({"diskpart", "", 5s}), "still waiting for diskpart, 5 s");
}

} // namespace
} // namespace torvane
