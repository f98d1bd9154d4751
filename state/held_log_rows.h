#pragma once

#include <string>
#include <vector>

namespace torvane {

/// Rows of the event log that a thread told before it was their turn.
class HeldLogRows {
  public:
    void add(const char* category, std::string message, bool fileAlone);

    /// Logs them in their order, as rows of this moment, and forgets them.
    void giveOut();

  private:
    struct Row {
        std::string category;
        std::string message;
        bool fileAlone; ///< LogToFile's
    };
    std::vector<Row> rows_;
};

/// Holds back for a scope what this thread logs. Other threads' rows go their way.
class LogRowsHeld {
  public:
    explicit LogRowsHeld(HeldLogRows& rows);
    ~LogRowsHeld();
    LogRowsHeld(const LogRowsHeld&) = delete;
    LogRowsHeld& operator=(const LogRowsHeld&) = delete;

  private:
    HeldLogRows* outer_;
};

/// Where this thread's rows are held; null: they are not.
[[nodiscard]] HeldLogRows* heldLogRows();

} // namespace torvane
