#pragma once

#include "base/tool_watch.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace torvane {

class JobClaim;

/// Waits for the scan's tools: says in the scan's status text for whom, once one takes long, and ends the tool at work
/// when the scan is asked to stop. From then on no other begins.
///
/// A tool that is about to finish gets five seconds for it.
class ScanWatch : public ToolWatch {
  public:
    /// `show` replaces the scan's status text.
    ScanWatch(const JobClaim& claim, std::function<void(const std::string&)> show);

    /// Shows the stage's text, which stays but for tools that take long.
    void enterStage(std::string text);

    [[nodiscard]] bool mayBegin() override;
    [[nodiscard]] bool mayGoOn(const ToolAtWork& tool) override;
    void ended() override;

  private:
    void showLongWait(const ToolAtWork& tool);

    const JobClaim& claim_;
    std::function<void(const std::string&)> show_;
    std::string stage_;
    std::optional<std::chrono::seconds> shownSecond_; ///< of the tool at work; none: the stage's text stands there
    std::optional<std::chrono::milliseconds> stopSeen_;
};

} // namespace torvane
