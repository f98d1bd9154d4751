#include "tests/ui/ui_test.h"

#include "tests/ui/driver/picture.h"
#include "tests/ui/driver/screen.h"

#include <condition_variable>
#include <iostream>
#include <mutex>
#include <thread>

namespace torvane::driver {
namespace {

constexpr std::chrono::seconds kTestLimit{300};

/// The program under test; shared by the tests of a suite.
std::unique_ptr<Program> current;

std::string currentTestName() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    if (test == nullptr) {
        return "outside-any-test";
    }
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    for (char& letter : name) {
        letter = letter == '/' ? '-' : letter;
    }
    return name;
}

void leaveEvidence(const std::string& occasion) {
    const std::string picture = std::string(TORVANE_FAILURE_PICTURES) + "/" + currentTestName() + ".png";
    std::cout << occasion << '\n';
    try {
        Picture::ofScreen(wholeScreen()).save(picture);
        std::cout << "The screen is in " << picture << '\n';
    } catch (const std::exception& error) {
        std::cout << "No picture: " << error.what() << '\n';
    }
    if (current) {
        const std::string obituary = current->obituary();
        std::cout << (obituary.empty() ? "Open windows:\n" + describeWindows(current->processId()) : obituary + "\n");
    }
    std::cout << std::flush;
}

void startProgram(const BenchFolder& bench) {
    current.reset();
    current = std::make_unique<Program>(freshRun(currentTestName(), bench));
    if (!current->mainWindow().exists()) {
        throw Failure("no main window: " + current->obituary() + "\n" + describeWindows(current->processId()));
    }
}

/// Takes a picture at the first failure of each test, while the windows are still there.
class EvidenceListener : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { taken_ = false; }
    void OnTestPartResult(const ::testing::TestPartResult& result) override {
        if (result.failed() && !taken_) {
            taken_ = true;
            leaveEvidence("The test has failed.");
        }
    }

    bool taken_ = false;
};

/// Ends the program under test when a test takes too long. The test then fails at its next step.
class Watchdog {
  public:
    void start() {
        bitten_ = false;
        stopped_ = false;
        thread_ = std::thread([this] { watch(); });
    }
    /// True when the time was over.
    bool stop() {
        {
            const std::lock_guard lock(mutex_);
            stopped_ = true;
        }
        wake_.notify_all();
        if (thread_.joinable()) {
            thread_.join();
        }
        return bitten_;
    }

  private:
    void watch() {
        std::unique_lock lock(mutex_);
        if (!wake_.wait_for(lock, kTestLimit, [this] { return stopped_; })) {
            bitten_ = true;
            leaveEvidence("The test takes too long; its program is ended.");
            if (current) {
                current->kill();
            }
        }
    }

    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopped_ = false;
    bool bitten_ = false;
};

Watchdog watchdog;

} // namespace

void UiTest::TearDownTestSuite() {
    current.reset();
}

void UiTest::SetUp() {
    watchdog.start();
    if (current && (!current->running() || current->dialog())) {
        current.reset();
    }
}

void UiTest::TearDown() {
    if (watchdog.stop()) {
        ADD_FAILURE() << "took longer than " << kTestLimit.count() << " s";
    }
    if (current && !current->running() && !endExpected_) {
        ADD_FAILURE() << current->obituary();
    }
    if (endExpected_ || HasFailure()) {
        current.reset();
    }
}

BenchFolder UiTest::layOutBench() const {
    return pairBench();
}

void UiTest::restart(const BenchFolder& bench) {
    startProgram(bench);
}

void UiTest::leaveProgramUsed() {
    endExpected_ = true;
}

Program& UiTest::program() const {
    if (!current) {
        startProgram(layOutBench());
    }
    return *current;
}

void UiTest::expectBox(const std::string& caption, const std::string& text, BoxIcon icon,
                       const std::string& answer) const {
    expectThat(program().awaitBox(), program().mainWindow(), caption, text, icon, answer);
}

void UiTest::expectBoxOver(const Window& dialog, const std::string& caption, const std::string& text, BoxIcon icon,
                           const std::string& answer) const {
    expectThat(program().awaitBoxOver(dialog), dialog, caption, text, icon, answer);
}

void UiTest::expectThat(const MessageBoxWindow& box, const Window& owner, const std::string& caption,
                        const std::string& text, BoxIcon icon, const std::string& answer) {
    EXPECT_EQ(box.caption(), caption);
    EXPECT_TRUE(box.showsWholeCaption()) << caption;
    EXPECT_EQ(box.text(), text);
    EXPECT_EQ(box.icon(), icon);
    const std::vector<std::string> expectedButtons =
        answer == "OK" ? std::vector<std::string>{"OK"} : std::vector<std::string>{"Yes", "No"};
    EXPECT_EQ(box.buttons(), expectedButtons);
    EXPECT_FALSE(owner.enabled()) << "the box does not keep its owner waiting";
    box.answer(answer);
}

void UiTest::expectStopBox(const std::string& caption, const std::string& text) const {
    expectBox(caption, text, BoxIcon::kStop, "OK");
}

void UiTest::expectQuestion(const std::string& caption, const std::string& text, const std::string& answer) const {
    expectBox(caption, text, BoxIcon::kNone, answer);
}

void UiTest::expectNoBox() const {
    const Window& window = program().mainWindow();
    window.settle();
    if (const auto open = program().dialog()) {
        ADD_FAILURE() << "a window is open: " << open->describe();
    }
    // A dialog disables its owner when it is made, and is shown a moment later.
    EXPECT_TRUE(window.enabled() || !program().running()) << "a window is about to open";
}

std::string UiTest::toolTip() const {
    for (const Window& window : topLevelWindows(program().processId())) {
        if (window.className() == "tooltips_class32" && window.visible()) {
            return window.text();
        }
    }
    return "";
}

BenchFolder pairBench() {
    BenchFolder folder;
    folder.bench(R"({"title": "a disk and a solid-state drive"})");
    folder.drive("0-sata", R"({
        "number": 0, "bus": "sata", "size": "512 GiB", "road": "ata",
        "identity": {"product": "HALDANE HD5000", "revision": "HA11", "serial": "HD5-000117"},
        "volumes": [{"letter": "C", "extents": [{"offset": "1 MiB", "length": "400 GiB"}]}]})");
    folder.drive("1-nvme", R"({
        "number": 1, "bus": "nvme", "size": "256 GiB", "road": "nvme-query",
        "identity": {"product": "Tarn N256", "revision": "2B3Q", "serial": "TN256-0042"}})");
    return folder;
}

BenchFolder smallBench() {
    BenchFolder folder = pairBench();
    folder.bench(R"({"title": "one drive of each kind"})");
    folder.drive("2-usb", R"({
        "number": 2, "bus": "usb", "size": "64 GiB", "road": "sat", "removable": true,
        "identity": {"vendor": "Corvina", "product": "Pocket Disk", "revision": "1.02", "serial": "BRIDGE-1"},
        "ata": {"model": "CORVINA PD64", "serial": "CV-77120"},
        "volumes": [{"letter": "E", "extents": [{"offset": "1 MiB", "length": "32 GiB"}]}]})");
    folder.drive("3-4k", R"({
        "number": 3, "bus": "sata", "size": "1 TiB", "sectorSize": 4096, "road": "ata",
        "identity": {"product": "BRANDT 4KN-1000", "revision": "4K01", "serial": "BR4K-9001"}})");
    return folder;
}

BenchFolder heldBench() {
    // Longer than any test.
    return pairBench().bench(R"({"tools": {"diskpart": {"delayMilliseconds": 600000}}})");
}

void prepareUiTests() {
    ::testing::UnitTest::GetInstance()->listeners().Append(new EvidenceListener);
}

} // namespace torvane::driver
