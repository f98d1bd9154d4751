#pragma once

#include "tests/ui/copy_dialog_window.h"
#include "tests/ui/ui_test.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace torvane::driver {

inline constexpr std::size_t kMebibyte = 1048576;

/// A test of the copy commands. The drives of its bench are loaded when it first chooses one of them.
class CopyUiTest : public UiTest {
  protected:
    /// Drive 0 "SYSTEM" holds C:. Drive 1 "SOURCE" holds 70 MiB of noise, seed 7. Drive 2 "TARGET" of 80 MiB has two
    /// mounted volumes, drive 3 "SMALL" 40 MiB and none.
    [[nodiscard]] BenchFolder layOutBench() const override { return copyBench(); }

    [[nodiscard]] static BenchFolder copyBench();
    /// The copy bench, but the source has these faults (JSON).
    [[nodiscard]] static BenchFolder copyBenchWithFaults(const std::string& faults);
    /// The copy bench, but the source's block with this sector is read when the bench has been told to hurry.
    [[nodiscard]] static BenchFolder copyBenchHeldAt(int sector);
    /// Of a sector in the second block, in either direction.
    static constexpr int kInSecondBlock = 70000;
    /// Starts the program anew on that bench and loads its drives.
    void useBench(const BenchFolder& bench);
    /// Sees to it that no drive of the bench has been cleaned or written to.
    void useUntouchedBench();

    /// Ticks this drive alone.
    void tickOnly(const std::string& model) const;
    [[nodiscard]] std::string driveStatus(const std::string& model) const;
    void awaitDriveStatus(const std::string& model, const std::string& status) const;

    [[nodiscard]] CopyDialogWindow openClone(const std::string& source) const;
    [[nodiscard]] CopyDialogWindow openImage(const std::string& source, const std::filesystem::path& folder) const;
    [[nodiscard]] CopyDialogWindow openForensic(const std::string& source, const std::filesystem::path& folder) const;
    [[nodiscard]] CopyDialogWindow openImageToDrive(const std::filesystem::path& image) const;
    /// By the system menu.
    [[nodiscard]] CopyDialogWindow openRescue(const std::string& source) const;
    [[nodiscard]] CopyDialogWindow openVerifyImage(const std::filesystem::path& image) const;

    /// Presses the button of a copy command. A job's thread ends a moment after its dialog may be left; until then the
    /// program refuses the next command with a row in the log, and the button is pressed again.
    void pressCopyCommand(int button) const;

    /// Answers the warning that a destination will be overwritten.
    void answerWarning(const std::string& word) const;
    /// Ticks the destination, presses "Start" and says yes to the warning.
    void startOnto(const CopyDialogWindow& dialog, const std::string& destination) const;
    /// Expects a message box in front of the dialog, and answers it.
    void expectBoxOver(const CopyDialogWindow& dialog, const std::string& caption, const std::string& text,
                       BoxIcon icon, const std::string& answer) const;

    /// Expects that "Start" of a dialog in which nothing is ticked yet wants one destination and no more.
    void expectWantsExactlyOneDestination(const CopyDialogWindow& dialog) const;

    /// Expects the advice to disable mounting first, whole in its line.
    static void expectMountingHint(const CopyDialogWindow& dialog);

    /// An empty folder beside the program's.
    [[nodiscard]] std::filesystem::path emptyFolder(const std::string& name) const;
    /// The one file of a folder with that extension, and with that beginning of its name.
    [[nodiscard]] static std::filesystem::path
    onlyFile(const std::filesystem::path& folder, const std::string& extension, const std::string& beginning = "");

    /// What lies on a file-backed drive.
    [[nodiscard]] std::string content(int drive, std::uint64_t offset, std::size_t size) const;
    static void writeFile(const std::filesystem::path& path, const std::string& content);
    /// The content of a drive whose backing is a noise pattern.
    [[nodiscard]] static std::string noise(std::uint64_t seed, std::uint64_t offset, std::size_t size);
    /// What is written in place of unreadable blocks.
    [[nodiscard]] static std::string unreadable(std::size_t size);
};

} // namespace torvane::driver
