#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace torvane {

/// A text for each row of a report-style list, shown while the mouse rests on the row, and not after a click there. It
/// must not be destroyed before the list.
class RowTips {
  public:
    /// The text of a row, counted from 0; with an empty one nothing shows.
    using TextOfRow = std::function<std::string(int row)>;

    void attach(HWND list, TextOfRow textOfRow);

  private:
    static LRESULT CALLBACK listProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                          DWORD_PTR self);
    void watch(UINT message, WPARAM wParam, LPARAM lParam);
    void showRow(int row);
    void send(UINT message, int row, const std::string& text);

    HWND list_ = nullptr;
    HWND tip_ = nullptr;
    int row_ = -1;     ///< under the mouse, and with a tip; -1: none
    int clicked_ = -1; ///< has no tip until the mouse has left it; -1: none
    TextOfRow textOfRow_;
};

} // namespace torvane
