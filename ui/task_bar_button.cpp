#include "ui/task_bar_button.h"

#include <utility>

namespace torvane {

void TaskBarButton::attach(std::unique_ptr<TaskBar> bar) {
    bar_ = std::move(bar);
    told_ = {};
    tell();
}

void TaskBarButton::show(const TaskBarProgress& progress) {
    wanted_ = progress;
    tell();
}

// The state comes first: a value alone makes a button that showed nothing show a normal one.
void TaskBarButton::tell() {
    if (!bar_ || wanted_ == told_) {
        return;
    }
    if (wanted_.state != told_.state) {
        bar_->setState(wanted_.state);
    }
    if (wanted_.state != TaskBarState::kNone) {
        bar_->setValue(wanted_.done, wanted_.total);
    }
    told_ = wanted_;
}

} // namespace torvane
