#include "ui/task_bar_windows.h"

#include <objbase.h>
#include <shobjidl.h>

namespace torvane {

namespace {

/// COM on this thread for a scope.
class ComSession {
  public:
    ComSession() : started_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
    ~ComSession() {
        if (started_) {
            CoUninitialize();
        }
    }
    ComSession(const ComSession&) = delete;
    ComSession& operator=(const ComSession&) = delete;

  private:
    bool started_;
};

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

TBPFLAG flagOf(TaskBarState state) {
    switch (state) {
    case TaskBarState::kNormal:
        return TBPF_NORMAL;
    case TaskBarState::kError:
        return TBPF_ERROR;
    case TaskBarState::kNone:
        break;
    }
    return TBPF_NOPROGRESS;
}

class SystemTaskBar : public TaskBar {
  public:
    explicit SystemTaskBar(HWND window) : window_(window) {
        void* list = nullptr;
        if (SUCCEEDED(CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskbarList3, &list))) {
            list_.reset(static_cast<ITaskbarList3*>(list));
        }
        if (list_ && FAILED(list_->HrInit())) {
            list_.reset();
        }
    }

    [[nodiscard]] bool isThere() const { return list_ != nullptr; }

    // What the task bar makes of it is its own matter.
    void setState(TaskBarState state) override { list_->SetProgressState(window_, flagOf(state)); }
    void setValue(std::uint64_t done, std::uint64_t total) override { list_->SetProgressValue(window_, done, total); }

  private:
    ComSession com_; // before the object, which goes first
    HWND window_;
    std::unique_ptr<ITaskbarList3, Releaser> list_;
};

} // namespace

TaskBarButton& taskBarButton() {
    static TaskBarButton button;
    return button;
}

UINT taskBarButtonMessage() {
    static const UINT message = RegisterWindowMessageA("TaskbarButtonCreated");
    return message;
}

void awaitTaskBarButton(HWND window) {
    ChangeWindowMessageFilterEx(window, taskBarButtonMessage(), MSGFLT_ALLOW, nullptr);
}

std::unique_ptr<TaskBar> openTaskBar(HWND window) {
    auto bar = std::make_unique<SystemTaskBar>(window);
    return bar->isThere() ? std::move(bar) : nullptr;
}

} // namespace torvane
