#include "tests/ui/copy_ui_test.h"

#include "tests/ui/driver/shell_dialogs.h"
#include "workbench/devices/pattern.h"

#include <fstream>

namespace torvane::driver {
namespace fs = std::filesystem;
namespace {

constexpr std::chrono::seconds kJobPatience{60};

/// `faults`: JSON, with braces.
std::string sourceDrive(const std::string& faults) {
    return R"({"number": 1, "bus": "nvme", "size": "70 MiB", "road": "nvme-query",
        "backing": {"pattern": "noise", "seed": 7},
        "identity": {"product": "SOURCE", "revision": "1", "serial": "SRC-1"}, "faults": )" +
           faults + "}";
}

} // namespace

BenchFolder CopyUiTest::copyBench() {
    BenchFolder folder;
    folder.bench(R"({"title": "drives to copy"})");
    folder.drive("0-system", R"({"number": 0, "bus": "nvme", "size": "64 MiB", "road": "nvme-query",
        "identity": {"product": "SYSTEM", "revision": "1", "serial": "SYS-0"},
        "volumes": [{"letter": "C", "extents": [{"offset": "1 MiB", "length": "60 MiB"}]}]})");
    folder.drive("1-source", sourceDrive("{}"));
    folder.drive("2-target", R"({"number": 2, "bus": "nvme", "size": "80 MiB", "road": "nvme-query",
        "identity": {"product": "TARGET", "revision": "1", "serial": "TGT-2"},
        "volumes": [{"letter": "K", "label": "OLD", "extents": [{"offset": "1 MiB", "length": "40 MiB"}]},
                    {"letter": "L", "extents": [{"offset": "50 MiB", "length": "20 MiB"}]}]})");
    folder.drive("3-small", R"({"number": 3, "bus": "nvme", "size": "40 MiB", "road": "nvme-query",
        "identity": {"product": "SMALL", "revision": "1", "serial": "SML-3"}})");
    return folder;
}

BenchFolder CopyUiTest::copyBenchWithFaults(const std::string& faults) {
    return copyBench().drive("1-source", sourceDrive(faults));
}

BenchFolder CopyUiTest::copyBenchHeldAt(int sector) {
    return copyBenchWithFaults(R"({"slow": [{"firstSector": )" + std::to_string(sector) +
                               R"(, "milliseconds": 600000}]})");
}

void CopyUiTest::useBench(const BenchFolder& bench) {
    restart(bench);
    torvane().loadDrives();
    leaveProgramUsed();
}

void CopyUiTest::useUntouchedBench() {
    if (!program().benchLog({"request=write"}).empty() || !program().benchLog({"script-line=\"clean\""}).empty()) {
        restart(layOutBench());
        torvane().loadDrives();
    }
}

// A box is not clicked twice for nothing: clicks at one place must lie a double click apart.
void CopyUiTest::tickOnly(const std::string& model) const {
    torvane().loadDrivesOnce();
    const ListView drives = torvane().driveList();
    const int wanted = drives.rowWith(0, model);
    for (int row = 0; row < drives.rowCount(); ++row) {
        drives.setTicked(row, row == wanted);
    }
}

std::string CopyUiTest::driveStatus(const std::string& model) const {
    const ListView drives = torvane().driveList();
    return drives.cell(drives.rowWith(0, model), 5);
}

void CopyUiTest::awaitDriveStatus(const std::string& model, const std::string& status) const {
    await(
        model + " is " + status, [&] { return driveStatus(model) == status; }, kJobPatience);
}

void CopyUiTest::pressCopyCommand(int button) const {
    torvane().loadDrivesOnce();
    const auto refusals = [this] {
        constexpr int kMessage = 3;
        const ListView log = torvane().logList();
        int count = 0;
        for (int row = 0; row < log.rowCount(); ++row) {
            count += log.cell(row, kMessage) == "The last job on a drive has not ended yet" ? 1 : 0;
        }
        return count;
    };
    await("the last job has ended", [&] {
        const int before = refusals();
        torvane().press(button);
        if (refusals() == before) {
            return true;
        }
        program().awaitBox().answer("OK");
        return false;
    });
}

CopyDialogWindow CopyUiTest::openClone(const std::string& source) const {
    tickOnly(source);
    pressCopyCommand(kClone);
    return {program().awaitDialog(), kCloneIds};
}

CopyDialogWindow CopyUiTest::openImage(const std::string& source, const fs::path& folder) const {
    tickOnly(source);
    pressCopyCommand(kDriveToImage);
    chooseFolder(program(), folder);
    return {program().awaitDialog(), kImageIds};
}

CopyDialogWindow CopyUiTest::openForensic(const std::string& source, const fs::path& folder) const {
    tickOnly(source);
    pressCopyCommand(kForensicImage);
    chooseFolder(program(), folder);
    return {program().awaitDialog(), kForensicIds};
}

CopyDialogWindow CopyUiTest::openImageToDrive(const fs::path& image) const {
    pressCopyCommand(kImageToDrive);
    chooseFile(program(), image);
    return {program().awaitDialog(), kImageToDriveIds};
}

CopyDialogWindow CopyUiTest::openRescue(const std::string& source) const {
    tickOnly(source);
    torvane().window().post(WM_SYSCOMMAND, kRescueTicked);
    return {program().awaitDialog(), kRescueIds};
}

CopyDialogWindow CopyUiTest::openVerifyImage(const fs::path& image) const {
    // The last job's thread may end a moment after its dialog; a box tells it until then.
    await("the last job has ended", [&] {
        torvane().window().post(WM_SYSCOMMAND, kVerifyImage);
        if (program().awaitDialog().text() != "***** Working *****") {
            return true;
        }
        program().awaitBox().answer("OK");
        return false;
    });
    chooseFile(program(), image);
    return {program().awaitDialog(), kVerifyImageIds};
}

void CopyUiTest::answerWarning(const std::string& word) const {
    driver::answerWarning(program(), word);
}

void CopyUiTest::startOnto(const CopyDialogWindow& dialog, const std::string& destination) const {
    dialog.tickDestination(destination);
    dialog.start();
    answerWarning("Yes");
}

void CopyUiTest::expectBoxOver(const CopyDialogWindow& dialog, const std::string& caption, const std::string& text,
                               BoxIcon icon, const std::string& answer) const {
    UiTest::expectBoxOver(dialog.window(), caption, text, icon, answer);
}

void CopyUiTest::expectWantsExactlyOneDestination(const CopyDialogWindow& dialog) const {
    constexpr const char* kCaption = "***** ERROR Destination Drive *****";
    dialog.start();
    expectBoxOver(dialog, kCaption, "You must choose one drive as your DESTINATION", BoxIcon::kStop, "OK");
    EXPECT_EQ(dialog.status(), "");
    dialog.tickDestination("TARGET");
    dialog.tickDestination("SMALL");
    dialog.start();
    expectBoxOver(dialog, kCaption, "You must choose only one drive as your DESTINATION", BoxIcon::kStop, "OK");
}

void CopyUiTest::expectMountingHint(const CopyDialogWindow& dialog) {
    const Window hint = dialog.window().child(kMountingHint);
    EXPECT_TRUE(hint.visible());
    const std::string text = hint.text();
    EXPECT_EQ(text,
              "First press 'Disable Drive Mounting' in the main window: Windows refuses writes inside a volume that "
              "it mounts during the copy.");
    const HDC screen = GetDC(nullptr);
    constexpr int kEightPoints = -11; // pixels at 96 dots to the inch
    const HFONT font =
        CreateFontA(kEightPoints, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0, 0, 0, "MS Shell Dlg");
    const HGDIOBJ before = SelectObject(screen, font);
    SIZE needed{};
    GetTextExtentPoint32A(screen, text.c_str(), static_cast<int>(text.size()), &needed);
    SelectObject(screen, before);
    DeleteObject(font);
    ReleaseDC(nullptr, screen);
    const RECT place = hint.rect();
    EXPECT_LT(needed.cx, place.right - place.left);
    EXPECT_LE(needed.cy, place.bottom - place.top);
}

fs::path CopyUiTest::emptyFolder(const std::string& name) const {
    fs::path folder = program().folder().parent_path() / name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

fs::path CopyUiTest::onlyFile(const fs::path& folder, const std::string& extension, const std::string& beginning) {
    std::vector<fs::path> found;
    for (const auto& file : fs::directory_iterator(folder)) {
        if (file.path().extension() == extension && file.path().filename().string().starts_with(beginning)) {
            found.push_back(file.path());
        }
    }
    if (found.size() != 1) {
        throw Failure(std::to_string(found.size()) + " files " + beginning + "*" + extension + " in " +
                      folder.string());
    }
    return found.front();
}

std::string CopyUiTest::content(int drive, std::uint64_t offset, std::size_t size) const {
    const fs::path backing =
        program().folder().parent_path() / "bench" / "backing" / ("drive" + std::to_string(drive) + ".img");
    std::string bytes(size, '\0');
    std::ifstream file(backing, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(bytes.data(), static_cast<std::streamsize>(size));
    return bytes;
}

void CopyUiTest::writeFile(const fs::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string CopyUiTest::noise(std::uint64_t seed, std::uint64_t offset, std::size_t size) {
    std::string bytes(size, '\0');
    bench::Backing backing;
    backing.kind = bench::BackingKind::kNoise;
    backing.seed = seed;
    bench::fillPattern(backing, offset, {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()});
    return bytes;
}

std::string CopyUiTest::unreadable(std::size_t size) {
    constexpr std::string_view kMarker = "KVL<->UNREADABLE";
    std::string bytes;
    bytes.reserve(size);
    while (bytes.size() < size) {
        bytes.append(kMarker);
    }
    return bytes;
}

} // namespace torvane::driver
