#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace torvane {

/// Commands that run before their turns: started in the order of their turns, some at once. Whoever takes the turns
/// calls, on one thread.
///
/// A `Plan` is what a command is started from. Of a `Command` is asked whether it `hasEnded()`.
template <typename Plan, typename Command>
class StartedAhead {
  public:
    /// Gives none when the command cannot be started ahead. From then on none is: each is left to its turn.
    using Start = std::function<std::optional<Command>(const Plan&)>;

    StartedAhead(std::vector<Plan> plans, int mostAtOnce, Start start)
        : plans_(std::move(plans)), commands_(plans_.size()), mostAtOnce_(mostAtOnce), start_(std::move(start)) {}

    /// Starts as many as there is room for.
    void startMore() {
        while (next_ < plans_.size() && atWork() < mostAtOnce_) {
            commands_[next_] = start_(plans_[next_]);
            next_ = commands_[next_] ? next_ + 1 : plans_.size();
        }
    }

    /// The command of the first plan that `isMeant`; null when it was not started.
    template <typename Predicate>
    [[nodiscard]] Command* find(Predicate isMeant) {
        for (std::size_t i = 0; i < plans_.size(); ++i) {
            if (isMeant(plans_[i])) {
                return commands_[i] ? &*commands_[i] : nullptr;
            }
        }
        return nullptr;
    }

    /// Every command that was started, in the order of their turns.
    template <typename Work>
    void forEach(Work work) {
        for (std::optional<Command>& command : commands_) {
            if (command) {
                work(*command);
            }
        }
    }

  private:
    [[nodiscard]] int atWork() const {
        int count = 0;
        for (const std::optional<Command>& command : commands_) {
            count += command && !command->hasEnded() ? 1 : 0;
        }
        return count;
    }

    std::vector<Plan> plans_;
    std::vector<std::optional<Command>> commands_; ///< by plan
    std::size_t next_ = 0;                         ///< the first plan that was not tried
    int mostAtOnce_;
    Start start_;
};

} // namespace torvane
