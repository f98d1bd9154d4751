#pragma once

#include <functional>
#include <string>
#include <vector>

namespace torvane::testing {

enum class BoxKind { kStop, kInform, kWarn, kAsk, kAskDefaultNo };

/// One box as the user would have seen it.
struct ShownBox {
    BoxKind kind;
    std::string caption;
    std::string text;

    bool operator==(const ShownBox&) const = default;
};

/// Stands in for the user in front of the program's boxes: `ui/prompts.h` is answered from a script.
///
/// Boxes must come exactly as expected, in order: kind, caption and text. A box that no script expected fails the test
/// (and is answered "no"); an expected box that never came fails it when the script goes out of scope. One script at a
/// time; the code under test may show its boxes from any thread.
///
///     ScriptedPrompts user;
///     user.expectAsk("***** MOUNTING DISABLED -- *****", "Drive Mounting DISABLED. ...", true);
///     ...
class ScriptedPrompts {
  public:
    ScriptedPrompts();
    ~ScriptedPrompts();
    ScriptedPrompts(const ScriptedPrompts&) = delete;
    ScriptedPrompts& operator=(const ScriptedPrompts&) = delete;

    /// `whileShown` runs while the box is up, in the thread that shows it: for looking at the state behind a box.
    void expectStop(std::string caption, std::string text, std::function<void()> whileShown = {});
    void expectInform(std::string caption, std::string text, std::function<void()> whileShown = {});
    void expectWarn(std::string caption, std::string text, std::function<void()> whileShown = {});
    void expectAsk(std::string caption, std::string text, bool answer, std::function<void()> whileShown = {});
    void expectAskDefaultNo(std::string caption, std::string text, bool answer, std::function<void()> whileShown = {});

    /// Every box so far, expected or not.
    [[nodiscard]] std::vector<ShownBox> shown() const;
    /// Boxes that are still expected.
    [[nodiscard]] std::size_t outstanding() const;
};

} // namespace torvane::testing
