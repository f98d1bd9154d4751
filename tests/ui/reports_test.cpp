#include "tests/ui/driver/input.h"
#include "tests/ui/health_bench.h"
#include "tests/ui/ui_test.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

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
    int icons; ///< different ones on the page
};

void PrintTo(const Reported& reported, std::ostream* stream) {
    *stream << reported.kind;
}

const std::vector<Reported> kReported = {
    {"Ata", "Northwind HD500 Platter", "ReportNW5K00123417.pdf", 1},
    {"Ssd", "Quillmark SX240 Solid", "ReportQM240S7781055.pdf", 0},
    {"Nvme", "Harrowgate N512 Sprint", "ReportHG51-2290-0077-A1.pdf", 1},
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
};

class ReportKindTest : public ReportCommandTest, public ::testing::WithParamInterface<Reported> {};

TEST_P(ReportKindTest, IsWrittenOpenedAndTold) {
    const std::size_t rows = torvane().log().size();
    const std::size_t before = opened().size();
    choose(GetParam().model);
    for (const int command : {static_cast<int>(kCreateReport), static_cast<int>(kMenuCreateReport)}) {
        std::filesystem::remove(program().folder() / GetParam().fileName);
        if (command == kCreateReport) {
            torvane().press(command);
        } else {
            torvane().command(command);
        }
        expectCompleted(GetParam().fileName);
        const std::string pdf = bytesOf(program().folder() / GetParam().fileName);
        EXPECT_TRUE(pdf.starts_with("%PDF-") && pdf.ends_with("%%EOF\n"));
        // Each icon is a picture with another one that says where it is transparent.
        EXPECT_EQ(count(pdf, "/SMask"), GetParam().icons);
    }
    const auto runs = opened();
    ASSERT_EQ(runs.size(), before + 2);
    EXPECT_THAT(runs.back(), HasSubstr("opened=\"" + std::string(GetParam().fileName) + "\""));
    EXPECT_EQ(torvane().log().size(), rows) << "nothing went wrong";
    expectNoBox();
}

INSTANTIATE_TEST_SUITE_P(All, ReportKindTest, ::testing::ValuesIn(kReported),
                         [](const auto& test) { return std::string(test.param.kind); });

TEST_F(ReportCommandTest, StandsOnItsAccessKey) {
    choose("Northwind HD500 Platter");
    bringToFront(torvane().window());
    pressKey(torvane().window(), 'R', VK_MENU);
    expectCompleted("ReportNW5K00123417.pdf");
}

TEST_F(ReportCommandTest, OfAFileThatAViewerHoldsIsLogged) {
    choose("Northwind HD500 Platter");
    const auto path = program().folder() / "ReportNW5K00123417.pdf";
    std::ofstream(path) << "an older report";
    const HANDLE viewer = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(viewer, INVALID_HANDLE_VALUE);
    torvane().press(kCreateReport);
    expectCompleted("ReportNW5K00123417.pdf");
    CloseHandle(viewer);
    EXPECT_EQ(torvane().log().back().type, "ERROR");
    EXPECT_EQ(torvane().log().back().message, "Could not SAVE report file [ReportNW5K00123417.pdf]");
    EXPECT_EQ(bytesOf(path), "an older report");
}

TEST_F(ReportCommandTest, PrintsTheCompanyThatWasSaved) {
    choose("Northwind HD500 Platter");
    const auto path = program().folder() / "ReportNW5K00123417.pdf";
    torvane().press(kCreateReport);
    expectCompleted("ReportNW5K00123417.pdf");
    EXPECT_EQ(count(bytesOf(path), "/WinAnsiEncoding"), 0) << "the texts so far need no encoding";

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
    EXPECT_EQ(count(bytesOf(path), "/WinAnsiEncoding"), 1) << "the company's name does";
}

class UnreadableDriveReportTest : public ReportCommandTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return healthBench(); }
};

TEST_F(UnreadableDriveReportTest, IsRefusedAsUnsupported) {
    choose("UNREADABLE");
    const std::size_t rows = torvane().log().size();
    for (const int command : {static_cast<int>(kCreateReport), static_cast<int>(kMenuCreateReport)}) {
        torvane().command(command);
        expectStopBox("****** UNSUPPORTED DEVICE ******", "Unsupported Device for Report");
    }
    expectNoBox();
    EXPECT_EQ(torvane().log().size(), rows);
    EXPECT_THAT(opened(), IsEmpty());
    for (const auto& file : std::filesystem::directory_iterator(program().folder())) {
        EXPECT_NE(file.path().extension(), ".pdf") << file.path();
    }
}

/// Serial numbers that are made to do harm.
class HostileSerialTest : public ReportCommandTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override {
        BenchFolder folder;
        folder.drive("0", drive(0, "Runner", R"($(calc);`\"&calc|calc'x)"));
        folder.drive("1", drive(1, "Climber", R"(\\..\\..\\climbed)"));
        folder.drive("2", drive(2, "Parameter", "X -ArgumentList Y"));
        return folder;
    }
    void expectReport(const std::string& model, const std::string& fileName) const {
        choose(model);
        torvane().press(kCreateReport);
        expectCompleted(fileName);
        EXPECT_TRUE(bytesOf(program().folder() / fileName).starts_with("%PDF-")) << fileName;
        ASSERT_FALSE(opened().empty());
        EXPECT_THAT(opened().back(), HasSubstr("opened=\"" + fileName + "\""));
    }

  private:
    static std::string drive(int number, const std::string& model, const std::string& serial) {
        return "{\"number\": " + std::to_string(number) + R"(, "bus": "nvme", "size": "64 MiB", "road": "nvme-query",
            "identity": {"product": ")" +
               model + R"(", "serial": ")" + serial + "\"}}";
    }
};

TEST_F(HostileSerialTest, RunsNoCommand) {
    expectReport("Runner", "Report__calc_____calc_calc_x.pdf");
    EXPECT_THAT(program().benchLog({"request=start", "calc.exe"}), IsEmpty());
}

TEST_F(HostileSerialTest, ClimbsNoFolder) {
    expectReport("Climber", "Report_.._.._climbed.pdf");
    EXPECT_FALSE(std::filesystem::exists(program().folder().parent_path() / "climbed.pdf"));
    EXPECT_FALSE(std::filesystem::exists(program().folder().parent_path().parent_path() / "climbed.pdf"));
}

TEST_F(HostileSerialTest, PassesNoParameter) {
    expectReport("Parameter", "ReportX -ArgumentList Y.pdf");
}

} // namespace
} // namespace torvane::driver
