#include "tests/ui/driver/input.h"
#include "tests/ui/driver/picture.h"
#include "tests/ui/expect_soon.h"
#include "tests/ui/ui_test.h"

#include <commctrl.h>

#include <algorithm>
#include <filesystem>

namespace torvane::driver {
namespace {

constexpr int kExitScan = 1025;
constexpr int kBeginScan = 1026;
constexpr int kKeysLabel = 1081;
constexpr int kScanList = 6006;
constexpr int kFirstLabel = 7300;
constexpr int kLastLabel = 7349;

constexpr const char* kPassword = "271828-182845-904523-536028-747135-266249-775724-709369";

/// A disk with a volume of each kind, and one without volumes.
BenchFolder bitLockerBench() {
    BenchFolder folder;
    folder.drive("0-sata", R"({
        "number": 0, "bus": "sata", "size": "512 GiB", "road": "ata",
        "identity": {"product": "HALDANE R&D HD5000", "revision": "HA11", "serial": "HD5-000117"},
        "volumes": [
            {"letter": "C", "extents": [{"offset": "1 MiB", "length": "1 GiB"}],
             "bitLocker": {"state": "unlocked", "protectors": [
                {"type": "Tpm", "id": "{3E2F0B6A-0D39-4A54-8E0E-0F3E0C2E7E11}"},
                {"type": "RecoveryPassword", "id": "{9C4C7A52-6D1B-47F3-9C5C-1C1E3F6B7A22}", "password": ")" +
                               std::string(kPassword) + R"("}]}},
            {"letter": "D", "extents": [{"offset": "2 GiB", "length": "1 GiB"}],
             "bitLocker": {"state": "locked", "protectors": [
                {"type": "RecoveryPassword", "id": "{5A1B7C33-2E4D-4F6A-8B9C-0D1E2F3A4B5C}", "password": "1-2"}]}},
            {"letter": "E", "extents": [{"offset": "4 GiB", "length": "1 GiB"}]},
            {"letter": "F", "extents": [{"offset": "6 GiB", "length": "1 GiB"}],
             "bitLocker": {"output": "Get-BitLockerVolume : Access denied\r\n"}}]})");
    folder.drive("1-nvme", R"({
        "number": 1, "bus": "nvme", "size": "256 GiB", "road": "nvme-query",
        "identity": {"product": "Tarn N256", "revision": "2B3Q", "serial": "TN256-0042"}})");
    return folder;
}

class BitLockerTest : public UiTest {
  protected:
    [[nodiscard]] BenchFolder layOutBench() const override { return bitLockerBench(); }

    void SetUp() override {
        UiTest::SetUp();
        if (torvane().driveList().rowCount() == 0) {
            torvane().loadDrives();
            torvane().awaitProgressHidden();
        }
        torvane().driveList().click(0);
    }

    [[nodiscard]] Window openScan() const {
        torvane().command(kMenuBitLocker);
        return program().awaitDialog();
    }
    static ListView list(const Window& dialog) { return ListView(dialog.child(kScanList)); }
    static std::vector<std::string> rows(const Window& dialog) {
        std::vector<std::string> texts;
        for (int row = 0; row < list(dialog).rowCount(); ++row) {
            texts.push_back(list(dialog).cell(row, 0) + "|" + list(dialog).cell(row, 1) + "|" +
                            list(dialog).cell(row, 2));
        }
        return texts;
    }
    /// Presses "Begin" and returns when PowerShell has told about every volume.
    static void begin(const Window& dialog) {
        press(dialog.child(kBeginScan));
        await("every volume was asked for", [&] {
            dialog.settle();
            const std::vector<Window> parts = dialog.children();
            return std::ranges::none_of(parts,
                                        [](const Window& part) { return part.className() == "TorvaneWaitingStrip"; });
        });
    }
    /// Begins a scan of drive 0 and waits for its end: the box that tells of F:.
    void beginScan(const Window& dialog) const {
        press(dialog.child(kBeginScan));
        expectBoxOver(
            dialog, "***** BITLOCKER NOT KNOWN *****",
            "Windows could not tell whether these volumes are encrypted:\nF:\\ - Get-BitLockerVolume : Access "
            "denied\n",
            BoxIcon::kStop, "OK");
    }
    static void close(const Window& dialog) {
        press(dialog.child(kExitScan));
        await("the dialog has closed", [&] { return !dialog.exists(); });
    }
    [[nodiscard]] std::vector<std::string> powershellRuns() const {
        return program().benchLog({"request=start", "Get-BitLockerVolume"});
    }
};

TEST_F(BitLockerTest, ShowsTheDrivesModelAndAnEmptyList) {
    const std::size_t runs = powershellRuns().size();
    const Window dialog = openScan();
    const RECT client = dialog.clientRect();
    const auto title = [&] {
        for (const Window& child : dialog.children()) {
            if (child.text().starts_with("Bitlocker Status")) {
                return child;
            }
        }
        throw Failure("no title");
    }();
    EXPECT_EQ(title.text(), "Bitlocker Status HALDANE R&D HD5000");
    EXPECT_EQ(toText(title.rectIn(dialog)), toText(RECT{10, 20, width(client) - 10, 40}));
    const ListView volumes = list(dialog);
    EXPECT_EQ(toText(volumes.window().rectIn(dialog)), toText(RECT{10, 50, width(client) - 10, height(client) - 60}));
    ASSERT_EQ(volumes.columnCount(), 3);
    EXPECT_EQ(volumes.heading(0), "Volume");
    EXPECT_EQ(volumes.heading(1), "Status");
    EXPECT_EQ(volumes.heading(2), "Key");
    const int full = static_cast<int>(width(client)) - 20;
    EXPECT_EQ(volumes.columnWidth(0), full * 10 / 100);
    EXPECT_EQ(volumes.columnWidth(1), full * 30 / 100);
    EXPECT_EQ(volumes.columnWidth(2), full * 60 / 100);
    EXPECT_EQ(volumes.background(), RGB(136, 196, 236));
    EXPECT_EQ(volumes.extendedStyle(), DWORD{LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES});
    EXPECT_EQ(volumes.rowCount(), 0);
    const Window keys = dialog.child(kKeysLabel);
    EXPECT_EQ(keys.text(), "Keys remain in the drive's record until drives are loaded again, in every report that was "
                           "made of it, and in BITLOCKER.db where they were saved.");
    EXPECT_TRUE(keys.visible());
    EXPECT_LE(keys.rectIn(dialog).right, dialog.child(kBeginScan).rectIn(dialog).left);
    EXPECT_EQ(powershellRuns().size(), runs) << "nothing runs before Begin";
    for (int id = kFirstLabel; id <= kLastLabel; ++id) {
        EXPECT_EQ(dialog.child(id).text(), "No Text");
        EXPECT_FALSE(dialog.child(id).visible());
    }
    for (const int button : {kBeginScan, kExitScan}) {
        const RECT place = dialog.child(button).rectIn(dialog);
        EXPECT_GE(place.top, height(client) - 60) << button;
        EXPECT_LE(place.bottom, height(client)) << button;
        EXPECT_LE(idealButtonSize(dialog.child(button)).cx, width(place)) << button;
    }
    dialog.awaitPainted();
    expectSoon([&] {
        const Picture top = Picture::ofScreen({client.left, client.top, client.right, client.top + 18});
        EXPECT_EQ(toText(top.commonest()), toText(RGB(218, 223, 234)));
    });
    close(dialog);
}

TEST_F(BitLockerTest, BeginListsEveryVolume) {
    const Window dialog = openScan();
    beginScan(dialog);
    const std::vector<std::string> expected = {std::string("C:\\|Encrypted|") + kPassword,
                                               "D:\\|Encrypted and Locked|No Key Found",
                                               // The volume that printed nothing lost its row to the next one.
                                               "F:\\|Windows could not tell|No Key Found"};
    EXPECT_EQ(rows(dialog), expected);
    // Again, from the beginning.
    beginScan(dialog);
    EXPECT_EQ(rows(dialog), expected);
    close(dialog);
}

TEST_F(BitLockerTest, ADriveWithoutVolumesHasNoRows) {
    torvane().driveList().click(1);
    const Window dialog = openScan();
    begin(dialog);
    EXPECT_EQ(list(dialog).rowCount(), 0);
    bringToFront(dialog);
    pressKey(dialog, VK_ESCAPE);
    await("the dialog has closed", [&] { return !dialog.exists(); });
}

TEST_F(BitLockerTest, ThePasswordStandsInNoLogAndNoOtherFile) {
    const Window dialog = openScan();
    beginScan(dialog);
    ASSERT_EQ(list(dialog).cell(0, 2), kPassword);
    close(dialog);
    for (const LogEntry& entry : torvane().log()) {
        EXPECT_EQ(entry.message.find(kPassword), std::string::npos) << entry.message;
    }
    EXPECT_TRUE(program().benchLog({kPassword}).empty());
    std::vector<std::string> holders;
    for (const auto& file : std::filesystem::recursive_directory_iterator(program().folder())) {
        if (!file.is_regular_file()) {
            continue;
        }
        if (readFile(file.path()).find(kPassword) != std::string::npos) {
            holders.push_back(file.path().filename().string());
        }
    }
    EXPECT_TRUE(holders.empty()) << holders.front();
    EXPECT_TRUE(std::filesystem::exists(program().folder() / "BITLOCKER.txt"));
}

} // namespace
} // namespace torvane::driver
