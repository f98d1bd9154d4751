#pragma once

#include <optional>
#include <string>
#include <vector>

namespace torvane::testing {

/// Stands in for the user in front of the system's choosers: `ui/choosers.h` is answered from here. A chooser for which
/// nothing was prepared fails the test and is cancelled. One object at a time.
class ScriptedChoosers {
  public:
    ScriptedChoosers();
    ~ScriptedChoosers();
    ScriptedChoosers(const ScriptedChoosers&) = delete;
    ScriptedChoosers& operator=(const ScriptedChoosers&) = delete;

    /// The next chooser, whichever it is, gives this path; none: it is cancelled.
    void choose(std::optional<std::string> path);

    /// What was shown: a folder browser's title, or an open-file dialog's "label|pattern" for each kind, joined by ";";
    /// of a save-file dialog, "name: " before that.
    [[nodiscard]] std::vector<std::string> shown() const;
};

} // namespace torvane::testing
