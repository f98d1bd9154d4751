#pragma once

#include "ui/list_view.h"
#include "window/list_cells.h"

namespace torvane {

/// The colours of a list's cells by one of the rules of window/list_cells.h.
[[nodiscard]] inline ColoursOfCell paintedBy(CellPaint (*paintOf)(int column, std::string_view text)) {
    return [paintOf](int column, const std::string& text, const std::optional<CellColours>& selected) {
        CellPaint paint = paintOf(column, text);
        if (selected) {
            paint = paintWhenSelected(paint, {selected->text, selected->background});
        }
        return CellColours{paint.text, paint.background};
    };
}

} // namespace torvane
