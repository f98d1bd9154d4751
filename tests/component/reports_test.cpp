#include "reports/create_report.h"

#include "base/system_error.h"
#include "reports/pdf_page.h"
#include "state/app_state.h"
#include "tests/component/handle_count.h"
#include "tests/component/hard_folder.h"
#include "tests/component/import_patched.h"
#include "tests/component/package_folder.h"
#include "tests/component/test_bench.h"
#include "tests/support/direct_waiting.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"
#include "tests/unit/reports_test_drives.h"
#include "ui/owned.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <hpdf.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// The linker puts this in the place of the library's function (--wrap), for the test in which it fails.
extern "C" {
HPDF_Doc __real_HPDF_New(HPDF_Error_Handler handler, void* data); // NOLINT: the linker's names
HPDF_Doc __wrap_HPDF_New(HPDF_Error_Handler handler, void* data); // NOLINT

extern decltype(&CreateFileW) __imp_CreateFileW;           // NOLINT
extern decltype(&FlushFileBuffers) __imp_FlushFileBuffers; // NOLINT
extern decltype(&MoveFileExW) __imp_MoveFileExW;           // NOLINT
extern decltype(&GetACP) __imp_GetACP;                     // NOLINT
extern decltype(&WriteFile) __imp_WriteFile;               // NOLINT
}

namespace {
bool documentsFail = false;
}

HPDF_Doc __wrap_HPDF_New(HPDF_Error_Handler handler, void* data) { // NOLINT
    return documentsFail ? nullptr : __real_HPDF_New(handler, data);
}

namespace torvane::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kIcons[] = {"report-green-32.png", "report-blue-32.png", "report-yellow-32.png",
                                  "report-red-32.png"};

/// A report is made in a folder of its own, with the icons beside it, on a bench that has a powershell.
class Reports : public ::testing::Test {
  protected:
    Reports() {
        bench_.open();
        for (const char* icon : kIcons) {
            fs::copy_file(packageFolder() / icon, icon);
        }
        appState().activeDrive = &drive_;
        appState().activeDriveChosen = 1;
        appState().companyInfo = reportedCompany();
    }
    ~Reports() override {
        appState().activeDrive = nullptr;
        appState().activeDriveChosen = 0;
        appState().companyInfo = {};
        appState().messages = {};
        appState().chosen.reportFileName.clear();
    }

    /// Creates the report, which the user is told of as `fileName`.
    void create(const std::string& fileName) {
        user_.expectInform("***** REPORT COMPLETED*****", "Report for <" + fileName + "> successfully CREATED\n");
        CreateReport(appState());
        EXPECT_EQ(appState().chosen.reportFileName.view(), fileName);
    }

    /// Creates the report, which cannot be saved: a box says why, and nothing is opened.
    void createInVain(const std::string& reason) {
        const std::size_t before = opened().size();
        user_.expectStop("***** REPORT NOT SAVED *****",
                         std::string("Report <") + kFileName + "> could not be saved: " + reason +
                             "\n\nNothing was opened, and no older report was overwritten. Close the report where it "
                             "is open, see that the disk has room, and create it again.");
        CreateReport(appState());
        EXPECT_EQ(opened().size(), before);
        EXPECT_FALSE(fs::exists(kNewFileName));
        EXPECT_THAT(view_.messages("ERROR").back(), std::string("Could not SAVE report file [") + kFileName + "]");
    }

    /// A solid-state device whose report has no counter.
    void becomeSolidState() {
        drive_.smartType = kSmartTypeSsd;
        drive_.disk = Counters();
    }

    /// Leaves a report of an earlier day under the name of the next one.
    static void leaveOlderReport(const std::string& bytes = "an older report") {
        writeFile(kFileName, bytes);
        const UniqueFile file{
            CreateFileA(kFileName, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
        // At noon, so that the day is the same one in every time zone but the outermost.
        SYSTEMTIME written{};
        written.wYear = 2026;
        written.wMonth = 3;
        written.wDay = 7;
        written.wHour = 12;
        FILETIME time{};
        ASSERT_TRUE(SystemTimeToFileTime(&written, &time));
        ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &time));
    }

    /// Creates the report and keeps its file under a name of its own, to be read back by tests/reports/read_back.py.
    void createAndKeep(const std::string& name) {
        create(kFileName);
        fs::create_directories(TORVANE_REPORTS_FOLDER);
        fs::copy_file(kFileName, fs::path(TORVANE_REPORTS_FOLDER) / (name + ".pdf"),
                      fs::copy_options::overwrite_existing);
        EXPECT_THAT(view_.logRows(), IsEmpty());
    }

    /// What was handed to the system's viewer.
    [[nodiscard]] std::vector<std::string> opened() const {
        std::vector<std::string> names;
        for (const std::string& line : bench_.log("opened=")) {
            const auto start = line.find("opened=\"") + 8;
            names.push_back(line.substr(start, line.find('"', start) - start));
        }
        return names;
    }

    static std::set<std::string> filesHere() {
        std::set<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(".")) {
            if (entry.path().filename() == "bench") {
                continue;
            }
            names.insert(entry.path().generic_string());
        }
        return names;
    }

    static bool isPdf(const std::string& fileName) {
        const std::string bytes = readFile(fileName);
        return bytes.starts_with("%PDF-") && bytes.ends_with("%%EOF\n");
    }

    static constexpr const char* kFileName = "ReportWD-WCC6Y7ABCDEF.pdf";
    static constexpr const char* kNewFileName = "ReportWD-WCC6Y7ABCDEF.pdf.new";
    static constexpr const char* kOlderFileName = "ReportWD-WCC6Y7ABCDEF 2026-03-07.pdf";

    TestBench bench_;
    RecordingMainView view_;
    ViewInstalled installed_{appState(), view_};
    ScriptedPrompts user_;
    DriveRecord drive_ = reportedDrive();
};

// --- the four kinds, kept for reading back ---

TEST_F(Reports, OfAnAtaDrive) {
    drive_.smartType = kSmartTypeStandard;
    addBitLockerEntry(drive_, 'D', "111111-222222-333333-444444-555555-666666-777777-888888");
    addBitLockerEntry(drive_, 'E', "");
    addBitLockerEntry(drive_, '\0', "");
    drive_.bitLockerNotes[2] = {'F', true};
    drive_.busCode = kBusCodeDirect;
    drive_.sizeBytes = 1'000'204'886'016;
    drive_.sizeGigabytes = 931.51;
    drive_.firmware.assign("01.01A01");
    drive_.smartLoaded = 1;
    MessageRecord advice{.messageId = kLampRed, .level = 3};
    setMessageText(advice, "Failing: copy what matters now.");
    appState().messages = {advice};
    createAndKeep("ata");
    EXPECT_TRUE(isPdf(kFileName));
    EXPECT_THAT(opened(), ElementsAre(kFileName));
    EXPECT_THAT(bench_.log("request:powershell"), IsEmpty());
}

TEST_F(Reports, OfAnAtaDriveThatReportsNothing) {
    drive_.smartType = kSmartTypeStandard;
    drive_.disk.fill(kNotReported);
    drive_.criticalTestResult = drive_.shortTestResult = drive_.nistTestResult = ReadTestResult::kTerminated;
    createAndKeep("ata-absent");
}

TEST_F(Reports, OfAnAtaDriveWithTenBitLockerVolumes) {
    drive_.smartType = kSmartTypeStandard;
    for (char letter = 'D'; letter < 'D' + 10; ++letter) {
        addBitLockerEntry(drive_, letter, "111111-222222-333333-444444-555555-666666-777777-888888");
    }
    createAndKeep("ata-ten-volumes");
}

TEST_F(Reports, OfASolidStateDrive) {
    becomeSolidState();
    addBitLockerEntry(drive_, 'D', "111111-222222");
    createAndKeep("ssd");
}

TEST_F(Reports, OfAnNvmeDrive) {
    drive_.smartType = kSmartTypeNvme;
    drive_.nvme.criticalWarning = 0x1E;
    drive_.nvme.availableSpare = 10;
    drive_.nvme.gigabytesWritten = 149'999;
    addBitLockerEntry(drive_, 'F', "");
    createAndKeep("nvme");
}

TEST_F(Reports, OfADriveWithoutMonitoringData) {
    drive_.smartType = kSmartTypeUnknown;
    createAndKeep("no-data");
}

TEST_F(Reports, HaveTheShopsLogo) {
    becomeSolidState();
    fs::copy_file(packageFolder() / "report-red-32.png", "logo.png");
    createAndKeep("logo");
}

TEST_F(Reports, GoOnWithoutALogoThatIsNoPicture) {
    becomeSolidState();
    const std::string good = readFile("report-red-32.png");
    for (const std::string& bytes :
         {std::string(), std::string("This is no picture."), good.substr(0, good.size() / 2)}) {
        writeFile("logo.png", bytes);
        const std::size_t before = view_.messages("ERROR").size();
        create(kFileName);
        ASSERT_EQ(view_.messages("ERROR").size(), before + 1);
        EXPECT_THAT(view_.messages("ERROR").back(), HasSubstr("The report goes without its logo [logo.png]: "));
        EXPECT_TRUE(isPdf(kFileName));
    }
}

// The texts of the product are in the system's code page: here that of the test program.
TEST_F(Reports, OfACompanyWithAForeignName) {
    becomeSolidState();
    const std::wstring name = L"M\u00FCller & S\u00F6hne \u20AC \u0416 O'Brien";
    std::string narrow(64, '\0');
    narrow.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, name.c_str(), static_cast<int>(name.size()),
                                                               narrow.data(), 64, nullptr, nullptr)));
    appState().companyInfo.assign(narrow, "It's (here) \\ there", "");
    createAndKeep("foreign");
}

// The product asks for UTF-8 as its code page, where the system knows such a wish.
UINT WINAPI utf8CodePage() {
    return CP_UTF8;
}

TEST_F(Reports, OfACompanyWithAForeignNameInUtf8) {
    becomeSolidState();
    appState().companyInfo.assign("M\xC3\xBCller & S\xC3\xB6hne \xE2\x82\xAC \xD0\x96",
                                  "\xE6\x9D\xB1\xE4\xBA\xAC \xF0\x9F\x92\xBE \xC5\xA0", "broken \xC3 end");
    const ImportPatched utf8(__imp_GetACP, &utf8CodePage);
    createAndKeep("foreign-utf8");
}

TEST_F(Reports, AreNotOpenedWhenTheUserLeavesADiskThatDoesNotAnswer) {
    becomeSolidState();
    constexpr const char* kCaption = "***** REPORT NOT READY *****";
    const std::string text = std::string("Report <") + kFileName +
                             "> is still being written: its disk does not answer.\n\nNothing was opened. Look for the "
                             "report when the disk answers again, and create it again if it is not there.";
    {
        const LeftWaits left;
        user_.expectWarn(kCaption, text);
        CreateReport(appState());
        user_.expectWarn(kCaption, text); // two must not write into the same file
        CreateReport(appState());
        EXPECT_FALSE(fs::exists(kFileName));
    }
    EXPECT_TRUE(fs::exists(kFileName)) << "the disk has answered";
    EXPECT_THAT(opened(), IsEmpty());
    create(kFileName);
}

// --- guards ---

TEST_F(Reports, WantAnActiveDrive) {
    appState().activeDriveChosen = 0;
    user_.expectStop("***** NO ACTIVE DRIVE *****", "Load Drives, and click on drive to make ACTIVE for report.");
    CreateReport(appState());
    appState().activeDriveChosen = 1;
    appState().activeDrive = nullptr;
    user_.expectStop("***** NO ACTIVE DRIVE *****", "Load Drives, and click on drive to make ACTIVE for report.");
    CreateReport(appState());
    EXPECT_TRUE(appState().chosen.reportFileName.empty());
    EXPECT_THAT(opened(), IsEmpty());
    EXPECT_THAT(filesHere(), ::testing::Not(::testing::Contains(HasSubstr(".pdf"))));
}

TEST_F(Reports, AreNotMadeOfAnUnsupportedDevice) {
    for (const std::int32_t smartType : {1004, 1005, 999, 0, -1}) {
        drive_.smartType = smartType;
        user_.expectStop("****** UNSUPPORTED DEVICE ******", "Unsupported Device for Report");
        CreateReport(appState());
        EXPECT_EQ(user_.outstanding(), 0U) << smartType;
    }
    EXPECT_THAT(opened(), IsEmpty());
    EXPECT_THAT(filesHere(), ::testing::Not(::testing::Contains(HasSubstr(".pdf"))));
    EXPECT_THAT(view_.logRows(), IsEmpty());
}

// --- the file's name ---

TEST_F(Reports, KeepAnOlderOneUnderItsDate) {
    becomeSolidState();
    leaveOlderReport(std::string(100'000, 'x'));
    create(kFileName);
    EXPECT_TRUE(isPdf(kFileName));
    EXPECT_EQ(readFile(kOlderFileName), std::string(100'000, 'x'));
    EXPECT_THAT(opened(), ElementsAre(kFileName));
}

TEST_F(Reports, OverwriteNoneOfTheOlderOnes) {
    becomeSolidState();
    for (const std::string older : {"first", "second", "third"}) {
        leaveOlderReport(older);
        create(kFileName);
    }
    EXPECT_EQ(readFile(kOlderFileName), "first");
    EXPECT_EQ(readFile("ReportWD-WCC6Y7ABCDEF 2026-03-07 (2).pdf"), "second");
    EXPECT_EQ(readFile("ReportWD-WCC6Y7ABCDEF 2026-03-07 (3).pdf"), "third");
}

TEST_F(Reports, OfADriveWithoutASerialNumberOpenUnderOneName) {
    becomeSolidState();
    drive_.serialNumber.assign(kNotAvailable);
    create("ReportNot Available.pdf");
    EXPECT_TRUE(isPdf("ReportNot Available.pdf"));
    EXPECT_THAT(opened(), ElementsAre("ReportNot Available.pdf"));
}

TEST_F(Reports, ASerialNumberMadeToRunACommandRunsNone) {
    becomeSolidState();
    drive_.serialNumber.assign("X.pdf\";$(calc)`n;calc|calc&calc;'");
    create("ReportX.pdf____calc__n_calc_calc_calc__.pdf");
    EXPECT_TRUE(isPdf("ReportX.pdf____calc__n_calc_calc_calc__.pdf"));
    EXPECT_THAT(opened(), ElementsAre("ReportX.pdf____calc__n_calc_calc_calc__.pdf"));
    EXPECT_EQ(bench_.log("program=powershell.exe").size(), 1U);
}

TEST_F(Reports, ASerialNumberMadeToClimbAFolderStaysInThisOne) {
    becomeSolidState();
    const auto above = [] {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator("..")) {
            names.insert(entry.path().filename().string());
        }
        return names;
    };
    const auto before = above();
    for (const auto& [serial, name] :
         {std::pair(R"(\..\..\up)", "Report_.._.._up.pdf"), std::pair("/../up", "Report_.._up.pdf"),
          std::pair(R"(:C:\up:stream)", "Report_C__up_stream.pdf")}) {
        drive_.serialNumber.assign(serial);
        create(name);
        EXPECT_TRUE(isPdf(name)) << name;
    }
    EXPECT_EQ(above(), before);
}

TEST_F(Reports, ASerialNumberThatFillsItsFieldIsNotCut) {
    becomeSolidState();
    std::ranges::fill(drive_.serialNumber.writableBytes(), 'S');
    const std::string name = "Report" + std::string(127, 'S') + ".pdf";
    create(name);
    EXPECT_TRUE(isPdf(name));
}

TEST_F(Reports, ModelsFullOfPercentSignsAreText) {
    drive_.smartType = kSmartTypeStandard;
    drive_.model.assign("%s%s%s%n%n");
    drive_.serialNumber.assign("%s%n");
    create("Report_s_n.pdf");
    EXPECT_TRUE(isPdf("Report_s_n.pdf"));
}

// --- what can go wrong ---

TEST_F(Reports, WithoutADocumentEndAtOnce) {
    drive_.smartType = kSmartTypeNvme;
    documentsFail = true;
    CreateReport(appState());
    documentsFail = false;
    EXPECT_THAT(view_.messages("ERROR"), ElementsAre("Could not initialize PDF document"));
    EXPECT_FALSE(fs::exists(kFileName));
    EXPECT_THAT(opened(), IsEmpty());
}

TEST_F(Reports, GoOnWithoutAMissingIcon) {
    drive_.smartType = kSmartTypeStandard;
    fs::remove("report-yellow-32.png");
    ::testing::internal::CaptureStdout();
    createAndKeep("missing-icon");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "ERROR: error_no=1017, detail_no=2\n")
        << "once: HPDF_FILE_OPEN_ERROR, ENOENT";
}

TEST_F(Reports, GoOnWithoutIconsAtAll) {
    drive_.smartType = kSmartTypeStandard;
    for (const char* icon : kIcons) {
        fs::remove(icon);
    }
    ::testing::internal::CaptureStdout();
    createAndKeep("no-icons");
    ::testing::internal::GetCapturedStdout();
}

TEST_F(Reports, GoOnWithoutDamagedIcons) {
    drive_.smartType = kSmartTypeStandard;
    const std::string good = readFile("report-green-32.png");
    writeFile("report-green-32.png", good.substr(0, good.size() / 2));
    writeFile("report-blue-32.png", "This is no picture.");
    writeFile("report-yellow-32.png", "");
    std::string changed = good;
    changed[changed.size() / 2] = static_cast<char>(changed[changed.size() / 2] ^ 1);
    writeFile("report-red-32.png", changed);
    ::testing::internal::CaptureStdout();
    createAndKeep("damaged-icons");
    std::string expected;
    for (int i = 0; i < 4; ++i) {
        expected += "ERROR: error_no=103B, detail_no=0\n"; // HPDF_INVALID_PNG_IMAGE
    }
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), expected);
}

TEST_F(Reports, InWhosePlaceAFolderStandsAreTold) {
    becomeSolidState();
    fs::create_directory(kFileName);
    createInVain("a folder has that name.");
    EXPECT_TRUE(fs::is_directory(kFileName));
}

TEST_F(Reports, OverAFileThatAViewerHoldsAreTold) {
    becomeSolidState();
    writeFile(kFileName, "an older report");
    const UniqueFile viewer{
        CreateFileA(kFileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)};
    ASSERT_TRUE(viewer);
    createInVain("the older report of that name cannot be set aside: " + systemErrorText(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(readFile(kFileName), "an older report");
}

BOOL WINAPI flushNothing(HANDLE) {
    SetLastError(ERROR_WRITE_FAULT);
    return FALSE;
}

TEST_F(Reports, ThatDoNotReachTheDiskAreTold) {
    becomeSolidState();
    writeFile(kFileName, "an older report");
    const ImportPatched failing(__imp_FlushFileBuffers, &flushNothing);
    createInVain(systemErrorText(ERROR_WRITE_FAULT));
    EXPECT_EQ(readFile(kFileName), "an older report");
}

// The moves that fail, counted from 0.
std::vector<int> failingMoves;
int moves = 0;
decltype(&MoveFileExW) realMove = nullptr;

BOOL WINAPI moveUnlessItFails(LPCWSTR from, LPCWSTR to, DWORD flags) {
    if (std::ranges::find(failingMoves, moves++) != failingMoves.end()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    return realMove(from, to, flags);
}

class ReportsThatCannotBePlaced : public Reports {
  protected:
    ReportsThatCannotBePlaced() {
        becomeSolidState();
        moves = 0;
        realMove = patched_.original();
    }

  private:
    ImportPatched<decltype(&MoveFileExW)> patched_{__imp_MoveFileExW, &moveUnlessItFails};
};

TEST_F(ReportsThatCannotBePlaced, AreToldWhereNoOlderOneIs) {
    failingMoves = {0};
    createInVain(systemErrorText(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(fs::exists(kFileName));
}

TEST_F(ReportsThatCannotBePlaced, LeaveTheOlderOneThatCannotBeSetAside) {
    leaveOlderReport();
    failingMoves = {0};
    createInVain("the older report of that name cannot be set aside: " + systemErrorText(ERROR_ACCESS_DENIED));
    EXPECT_EQ(readFile(kFileName), "an older report");
    EXPECT_FALSE(fs::exists(kOlderFileName));
}

TEST_F(ReportsThatCannotBePlaced, PutTheOlderOneBack) {
    leaveOlderReport();
    failingMoves = {1};
    createInVain(systemErrorText(ERROR_ACCESS_DENIED));
    EXPECT_EQ(readFile(kFileName), "an older report");
    EXPECT_FALSE(fs::exists(kOlderFileName));
}

TEST_F(ReportsThatCannotBePlaced, TellWhereTheOlderOneIsThatCannotBePutBack) {
    leaveOlderReport();
    failingMoves = {1, 2};
    createInVain(systemErrorText(ERROR_ACCESS_DENIED) + " The older report of that name is now <" + kOlderFileName +
                 ">.");
    EXPECT_FALSE(fs::exists(kFileName));
    EXPECT_EQ(readFile(kOlderFileName), "an older report");
}

// A folder in which nobody may make a file; Wine lets root into each.
decltype(&CreateFileW) realCreate = nullptr;

HANDLE WINAPI createNothing(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                            DWORD flags, HANDLE likeFile) {
    if (disposition == CREATE_ALWAYS) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return realCreate(name, access, share, security, disposition, flags, likeFile);
}

TEST_F(Reports, InAReadOnlyFolderAreTold) {
    drive_.smartType = kSmartTypeStandard;
    realCreate = __imp_CreateFileW;
    {
        const ImportPatched readOnly(__imp_CreateFileW, &createNothing);
        createInVain(systemErrorText(ERROR_ACCESS_DENIED));
    }
    EXPECT_FALSE(fs::exists(kFileName));
}

// A disk with room for so many bytes of a report, whose files begin with "%PDF". Without `honest`, the write that does
// not fit succeeds with what did.
std::size_t roomLeft = 0;
bool honest = true;
decltype(&WriteFile) realWrite = nullptr;

BOOL WINAPI writeWhileThereIsRoom(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED place) {
    if (size < 4 || std::memcmp(bytes, "%PDF", 4) != 0) {
        return realWrite(file, bytes, size, written, place);
    }
    const auto fits = static_cast<DWORD>(std::min<std::size_t>(size, roomLeft));
    roomLeft -= fits;
    const BOOL done = realWrite(file, bytes, fits, written, place);
    if (done == FALSE || honest) {
        SetLastError(ERROR_DISK_FULL);
        return FALSE;
    }
    return TRUE;
}

class ReportsOnAFullDisk : public Reports, public ::testing::WithParamInterface<bool> {};

TEST_P(ReportsOnAFullDisk, AreToldAndCostNoOlderOne) {
    drive_.smartType = kSmartTypeStandard;
    writeFile(kFileName, "an older report");
    honest = GetParam();
    realWrite = __imp_WriteFile;
    for (const std::size_t room : {std::size_t{0}, std::size_t{1000}, std::size_t{4000}}) {
        roomLeft = room;
        {
            const ImportPatched full(__imp_WriteFile, &writeWhileThereIsRoom);
            createInVain("not all of it could be written. The disk may be full.");
        }
        EXPECT_EQ(roomLeft, 0U) << "the disk was filled";
        EXPECT_EQ(readFile(kFileName), "an older report");
    }
}

INSTANTIATE_TEST_SUITE_P(All, ReportsOnAFullDisk, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "Told" : "CutShort"; });

/// A current folder for a scope, with the icons in it.
class MadeIn {
  public:
    explicit MadeIn(const testing::HardFolder& folder) : before_(fs::current_path()) {
        for (const char* icon : kIcons) {
            fs::copy_file(icon, fs::path(folder.widePath()) / icon);
        }
        fs::current_path(folder.widePath());
    }
    ~MadeIn() { fs::current_path(before_); }
    MadeIn(const MadeIn&) = delete;
    MadeIn& operator=(const MadeIn&) = delete;

  private:
    fs::path before_;
};

/// The icons still have their names in it; the report's reach beyond what Windows lets through.
TEST_F(Reports, AreMadeWhereTheirWholePathIsLong) {
    drive_.smartType = kSmartTypeStandard;
    const testing::HardFolder folder = testing::HardFolder::withPathOf(234);
    {
        const MadeIn place(folder);
        create(kFileName);
        create(kFileName);
    }
    const std::vector<std::wstring> files = folder.files();
    EXPECT_EQ(std::ranges::count_if(files, [](const std::wstring& name) { return name.ends_with(L".pdf"); }), 2)
        << "the older one is kept beside the new one";
    const std::string report = folder.content(std::wstring(kFileName, kFileName + std::strlen(kFileName)));
    EXPECT_TRUE(report.starts_with("%PDF") && report.ends_with("%%EOF\n"));
}

TEST_F(Reports, AreMadeInAFolderWithAForeignName) {
    drive_.smartType = kSmartTypeStandard;
    const testing::HardFolder folder = testing::HardFolder::withForeignName();
    const MadeIn place(folder);
    create(kFileName);
    EXPECT_TRUE(fs::exists(kFileName));
}

TEST_F(Reports, LeaveNothingOpen) {
    drive_.smartType = kSmartTypeStandard;
    create(kFileName);
    const DWORD before = openHandleCount();
    for (int i = 0; i < 5; ++i) {
        create(kFileName);
    }
    EXPECT_LE(lowestHandleCount(before), before);
}

// --- one line of text ---

struct TestPage {
    TestPage() { HPDF_Page_SetFontAndSize(page, font, 12); }
    ~TestPage() { HPDF_Free(document); }
    TestPage(const TestPage&) = delete;
    TestPage& operator=(const TestPage&) = delete;

    /// The page's drawing instructions, uncompressed.
    [[nodiscard]] std::string saved() const {
        HPDF_SaveToStream(document);
        std::string bytes(HPDF_GetStreamSize(document), '\0');
        auto size = static_cast<HPDF_UINT32>(bytes.size());
        HPDF_ReadFromStream(document, reinterpret_cast<HPDF_BYTE*>(bytes.data()), &size);
        return bytes;
    }

    HPDF_Doc document = HPDF_New(nullptr, nullptr);
    HPDF_Page page = HPDF_AddPage(document);
    HPDF_Font font = HPDF_GetFont(document, "Helvetica", nullptr);
};

TEST(DrawTextLineTest, StandsBelowTheTopBySizeAndDistance) {
    const TestPage sheet;
    DrawTextLine(sheet.page, "Torvane", sheet.font, 18, 10, 200);
    EXPECT_THAT(sheet.saved(), HasSubstr("BT\n10 623 Td\n(Torvane) Tj\nET")) << "841 - 18 - 200";
}

TEST(DrawTextLineTest, AtZeroIsNotCentred) {
    const TestPage sheet;
    DrawTextLine(sheet.page, "Torvane", sheet.font, 10, 0, 0);
    EXPECT_THAT(sheet.saved(), HasSubstr("BT\n0 831 Td\n(Torvane) Tj\nET"));
}

TEST(DrawTextLineTest, WithANegativePlaceIsCentred) {
    const TestPage sheet;
    DrawTextLine(sheet.page, "AAAA", sheet.font, 100, -1, 0);
    // Four letters of 667 units: 266.8 points; (595 - 266.8) / 2.
    EXPECT_THAT(sheet.saved(), HasSubstr("BT\n164.10001 741 Td\n(AAAA) Tj\nET"));
}

} // namespace
} // namespace torvane::testing
