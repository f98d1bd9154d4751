#include "tests/ui/driver/input.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <fstream>
#include <string>
#include <vector>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;

int count(const std::string& text, const std::string& part) {
    int found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++found;
    }
    return found;
}

/// A drive of the demonstration's bench and the report that suits it.
struct Reported {
    const char* kind;
    const char* model;
    const char* fileName;
    int icons; ///< different ones on the page: the key has them all
};

const std::vector<Reported> kReported = {
    {"Ata", "Northwind HD500 Platter", "ReportNW5K00123417.pdf", 4},
    {"Ssd", "Quillmark SX240 Solid", "ReportQM240S7781055.pdf", 0},
    {"Nvme", "Harrowgate N512 Sprint", "Report0231_DCD7_F59C_5242..pdf", 4},
    {"NoSerialNumber", "Nameless", "ReportNot Available.pdf", 0},
};

class ReportCommandTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return BenchFolder::demo(); }
    void SetUp() override {
        UiTest::SetUp();
        if (torvane().driveList().rowCount() == 0) {
            torvane().loadDrives();
            torvane().awaitProgressHidden();
        }
    }

    void choose(const std::string& model) const {
        const ListView drives = torvane().driveList();
        drives.click(drives.rowWith(0, model));
    }
    void expectCompleted(const std::string& fileName) const {
        expectBox("***** REPORT COMPLETED*****", "Report for <" + fileName + "> successfully CREATED\n", BoxIcon::kNone,
                  "OK");
    }
    [[nodiscard]] std::vector<std::string> opened() const { return program().benchLog({"powershell", "opened="}); }
    void expectReported(const Reported& reported) const {
        const std::size_t rows = torvane().log().size();
        const std::size_t before = opened().size();
        choose(reported.model);
        for (const int command : {static_cast<int>(kCreateReport), static_cast<int>(kMenuCreateReport)}) {
            std::filesystem::remove(program().folder() / reported.fileName);
            if (command == kCreateReport) {
                torvane().press(command);
            } else {
                torvane().command(command);
            }
            expectCompleted(reported.fileName);
            const std::string pdf = readFile(program().folder() / reported.fileName);
            EXPECT_TRUE(pdf.starts_with("%PDF-") && pdf.ends_with("%%EOF\n"));
            // Each icon is a picture with another one that says where it is transparent.
            EXPECT_EQ(count(pdf, "/SMask"), reported.icons);
        }
        const auto runs = opened();
        ASSERT_EQ(runs.size(), before + 2);
        EXPECT_THAT(runs.back(), HasSubstr("opened=\"" + std::string(reported.fileName) + "\""));
        EXPECT_EQ(torvane().log().size(), rows) << "nothing went wrong";
        expectNoBox();
    }
};

TEST_F(ReportCommandTest, OfEachKindOfDriveIsWrittenOpenedAndTold) {
    for (const Reported& reported : kReported) {
        SCOPED_TRACE(reported.kind);
        expectReported(reported);
    }
}

TEST_F(ReportCommandTest, WithTheAddressThatShipsSaysSoAboveTheList) {
    const Window heading = torvane().window().child(kDrivesLabel);
    choose("Northwind HD500 Platter");
    torvane().press(kCreateReport);
    expectCompleted("ReportNW5K00123417.pdf");
    EXPECT_THAT(heading.text(), HasSubstr(R"(. The report names no company: see "Company Information")"));
    torvane().loadDrives();
    torvane().awaitProgressHidden();
    EXPECT_EQ(heading.text(), "&Attached: 12 drives, 2 not shown: see log");
}

TEST_F(ReportCommandTest, StandsOnItsAccessKey) {
    choose("Northwind HD500 Platter");
    bringToFront(torvane().window());
    pressKey(torvane().window(), 'R', VK_MENU);
    expectCompleted("ReportNW5K00123417.pdf");
}

TEST_F(ReportCommandTest, OfAFileThatAViewerHoldsIsToldAndNotOpened) {
    choose("Northwind HD500 Platter");
    const auto path = program().folder() / "ReportNW5K00123417.pdf";
    std::ofstream(path) << "an older report";
    const std::size_t before = opened().size();
    const HANDLE viewer = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(viewer, INVALID_HANDLE_VALUE);
    torvane().press(kCreateReport);
    const MessageBoxWindow box = program().awaitBox();
    EXPECT_EQ(box.caption(), "***** REPORT NOT SAVED *****");
    EXPECT_THAT(box.text(), HasSubstr("Report <ReportNW5K00123417.pdf> could not be saved: the older report of that "
                                      "name cannot be set aside"));
    box.answer("OK");
    CloseHandle(viewer);
    EXPECT_EQ(opened().size(), before);
    EXPECT_EQ(torvane().log().back().type, "ERROR");
    EXPECT_EQ(torvane().log().back().message, "Could not SAVE report file [ReportNW5K00123417.pdf]");
    EXPECT_EQ(readFile(path), "an older report");
}

TEST_F(ReportCommandTest, PrintsTheCompanyThatWasSaved) {
    choose("Northwind HD500 Platter");
    const auto path = program().folder() / "ReportNW5K00123417.pdf";
    torvane().press(kCreateReport);
    expectCompleted("ReportNW5K00123417.pdf");
    EXPECT_EQ(count(readFile(path), "/WinAnsiEncoding"), 0) << "the texts so far need no encoding";

    constexpr int kCompanyName = 1010;
    constexpr int kSaveCompany = 32802;
    torvane().command(kMenuCompany);
    const Window dialog = program().awaitDialog();
    SendMessageW(dialog.child(kCompanyName).handle(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"M\u00FCller"));
    dialog.post(WM_COMMAND, kSaveCompany);
    program().awaitBoxOver(dialog).answer("OK");
    pressKey(dialog, VK_ESCAPE);
    await("the dialog has closed", [&] { return !dialog.exists(); });

    torvane().press(kCreateReport);
    expectCompleted("ReportNW5K00123417.pdf");
    EXPECT_EQ(count(readFile(path), "/WinAnsiEncoding"), 1) << "the company's name does";
}

TEST_F(ReportCommandTest, OfADriveThatCannotBeReadIsRefusedAsUnsupported) {
    const auto path = program().folder() / "ReportNot Available.pdf";
    std::filesystem::remove(path);
    choose("100%  Hosti");
    const std::size_t rows = torvane().log().size();
    const std::size_t before = opened().size();
    for (const int command : {static_cast<int>(kCreateReport), static_cast<int>(kMenuCreateReport)}) {
        torvane().command(command);
        expectStopBox("****** UNSUPPORTED DEVICE ******", "Unsupported Device for Report");
    }
    expectNoBox();
    EXPECT_EQ(torvane().log().size(), rows);
    EXPECT_EQ(opened().size(), before);
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
} // namespace torvane::driver
