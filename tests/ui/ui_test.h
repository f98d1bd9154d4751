#pragma once

#include "tests/ui/torvane_window.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace torvane::driver {

/// A test with the shipped program in front of it. The program is started when a test of the suite first asks for it
/// and serves the next ones too, as long as it runs and has no box open; it is gone at the suite's end.
///
/// A failed test leaves a picture of the screen and the list of open windows. A test that takes too long loses its
/// program, so that it fails instead of stopping the run.
class UiTest : public ::testing::Test {
  protected:
    static void TearDownTestSuite();
    void SetUp() override;
    void TearDown() override;

    /// The bench that the suite's program is started on; two drives by default.
    [[nodiscard]] virtual BenchFolder layOutBench() const;

    /// Ends the current program and starts one on that bench.
    void restart(const BenchFolder& bench);
    /// Starts the program before the next test anew, because this one leaves it changed.
    void leaveProgramUsed();
    /// This test ends the program itself; its absence is no fault.
    void expectEnd() { endExpected_ = true; }

    /// The program; started now if there is none.
    [[nodiscard]] Program& program() const;
    [[nodiscard]] TorvaneWindow torvane() const { return TorvaneWindow(program()); }

    /// Expects a message box with that caption, text, icon and buttons, and answers it with `answer`.
    void expectBox(const std::string& caption, const std::string& text, BoxIcon icon, const std::string& answer) const;
    /// The same in front of an open dialog.
    void expectBoxOver(const Window& dialog, const std::string& caption, const std::string& text, BoxIcon icon,
                       const std::string& answer) const;
    void expectStopBox(const std::string& caption, const std::string& text) const;
    void expectQuestion(const std::string& caption, const std::string& text, const std::string& answer) const;
    /// Expects that no box and no dialog is open or about to open when the window has dealt with all input so far.
    void expectNoBox() const;

    /// The tool tip that shows; empty while none does.
    [[nodiscard]] std::string toolTip() const;

  private:
    /// Expects that of the box in front of `owner`, and answers it.
    static void expectThat(const MessageBoxWindow& box, const Window& owner, const std::string& caption,
                           const std::string& text, BoxIcon icon, const std::string& answer);

    bool endExpected_ = false;
};

/// A bench with two drives: a SATA disk with C:, an NVMe drive.
[[nodiscard]] BenchFolder pairBench();

/// A bench with four drives: the pair, a USB bridge disk, a SATA disk of 4096-byte sectors.
[[nodiscard]] BenchFolder smallBench();

/// The pair's bench whose diskpart works for longer than any test: a scan runs until the bench is told to hurry.
[[nodiscard]] BenchFolder heldBench();

/// Watches the test programs: pictures of failures. To be called once, before the tests run.
void prepareUiTests();

} // namespace torvane::driver
