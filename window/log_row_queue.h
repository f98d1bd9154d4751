#pragma once

#include "state/main_view.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

namespace torvane {

/// Rows of the event log on their way to the list, in the order in which they were put. Any thread may put some; one
/// takes them.
class LogRowQueue {
  public:
    /// Holds so many rows at most.
    explicit LogRowQueue(std::size_t most) : most_(most) {}

    /// Puts the row behind the others. The first one is announced, and the first after the taker has gone to rest or
    /// has not come for `kPatience`. Nobody puts or takes a row until `announce` has returned, so it must not wait for
    /// anybody. False, with the row not taken, when the queue is full or `announce` has failed.
    [[nodiscard]] bool put(const LogRow& row, const std::function<bool()>& announce);

    /// All rows that are there; none is left.
    [[nodiscard]] std::vector<LogRow> takeAll();

    /// The same for the taker whose coming was announced and who comes again: when there is none he rests, and the next
    /// row is announced.
    [[nodiscard]] std::vector<LogRow> takeAllOrRest();

    /// A taker who comes by himself may be held up, by a loop that answers what is announced alone.
    static constexpr std::chrono::milliseconds kPatience{50};

  private:
    [[nodiscard]] bool isExpected() const;
    std::vector<LogRow> take();

    std::size_t most_;
    std::mutex mutex_;
    std::vector<LogRow> rows_;
    bool announced_ = false;                          ///< the taker comes by himself
    std::chrono::steady_clock::time_point lastTaken_; ///< or announced
};

} // namespace torvane
