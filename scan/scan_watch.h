#pragma once

#include "base/tool_watch.h"
#include "scan/stop_grace.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace torvane {

class JobClaim;

/// Waits for the scan's tools, on the scan's thread: says in the scan's status text for whom, once one takes long, and
/// ends the tool at work when the scan is asked to stop (scan/stop_grace.h). From then on no other begins.
class ScanWatch : public ToolWatch {
  public:
    /// `show` replaces the scan's status text.
    ScanWatch(const JobClaim& claim, std::function<void(const std::string&)> show);

    /// Shows the stage's text, which stays but for tools that take long.
    void enterStage(std::string text);

    /// The scan waits for a tool that another thread runs; `ended` when it no longer does.
    void waitsFor(const ToolAtWork& tool);

    [[nodiscard]] bool mayBegin() override;
    [[nodiscard]] bool mayGoOn(const ToolAtWork& tool) override;
    void ended() override;

  private:
    const JobClaim& claim_;
    StopGrace grace_;
    std::function<void(const std::string&)> show_;
    std::string stage_;
    std::optional<std::chrono::seconds> shownSecond_; ///< of the tool at work; none: the stage's text stands there
};

} // namespace torvane
