#include "window/log_list_delivery.h"

#include "window/log_list_view.h"

#include <commctrl.h>

#include <utility>

namespace torvane {

namespace {

/// A button of the mouse may begin a loop of the list's own (a scroll bar's thumb, a drag), in which it is at rest.
bool isButton(UINT message) {
    return (message >= WM_LBUTTONDOWN && message <= WM_MBUTTONDBLCLK) ||
           (message >= WM_NCLBUTTONDOWN && message <= WM_NCMBUTTONDBLCLK) || message == WM_SYSCOMMAND;
}

bool isQuestion(UINT message) {
    constexpr UINT kLast = LVM_FIRST + 0xFF; // the header's messages are next
    return message >= LVM_FIRST && message <= kLast;
}

} // namespace

void LogListDelivery::attach(LogListView& list) {
    list_ = &list;
    SetWindowLongPtrW(list.window(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    listsOwnProcedure_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(list.window(), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&LogListDelivery::listProcedure)));
}

void LogListDelivery::carry(HWND window, const LogRow& row) {
    // SendNotifyMessage comes through where posted messages have to wait, and on the window's own thread it would be a
    // call in the midst of the queue.
    const bool own = GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
    if (own || !queue_.put(row, [window] { return SendNotifyMessageA(window, kMessage, 0, 0) != FALSE; })) {
        SendMessageA(window, kMessage, 0, reinterpret_cast<LPARAM>(&row));
    }
}

void LogListDelivery::deliver(const LogRow* last) {
    catchUp();
    if (last != nullptr) {
        append({*last});
        return;
    }
    // From now on rows come by the timer; without one, until there are none.
    const HWND window = GetParent(list_->window()); // null once the list has gone: the timer would be nobody's
    if (window == nullptr || SetTimer(window, reinterpret_cast<UINT_PTR>(this), kPauseMilliseconds, &onTimer) == 0) {
        while (appendOrRest()) {
        }
    }
}

void LogListDelivery::catchUp() {
    append(queue_.takeAll());
}

void CALLBACK LogListDelivery::onTimer(HWND window, UINT, UINT_PTR self, DWORD) {
    if (!reinterpret_cast<LogListDelivery*>(self)->appendOrRest()) {
        KillTimer(window, self);
    }
}

LRESULT CALLBACK LogListDelivery::listProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam) {
    auto& delivery = *reinterpret_cast<LogListDelivery*>(GetWindowLongPtrW(list, GWLP_USERDATA));
    const bool nested = std::exchange(delivery.listAtWork_, delivery.listAtWork_ || !isButton(message));
    if (!nested && isQuestion(message)) {
        delivery.catchUp();
    }
    const LRESULT answer = CallWindowProcW(delivery.listsOwnProcedure_, list, message, wParam, lParam);
    delivery.listAtWork_ = nested;
    return answer;
}

bool LogListDelivery::appendOrRest() {
    const std::vector<LogRow> rows = queue_.takeAllOrRest();
    append(rows);
    return !rows.empty();
}

void LogListDelivery::append(const std::vector<LogRow>& rows) {
    const bool nested = std::exchange(listAtWork_, true);
    list_->append(rows);
    listAtWork_ = nested;
}

} // namespace torvane
