#pragma once

#include <string_view>

namespace torvane {

/// What a read test shows in its dialog.
///
/// Tests call from their own thread, and the last calls may come after the user has closed the dialog: an
/// implementation then ignores them.
class ReadTestDisplay {
  public:
    virtual ~ReadTestDisplay() = default;

    /// Replaces the status label.
    virtual void setStatus(std::string_view text) = 0;

    /// The progress bar: position 0 of a range from 0 to `maximum`.
    virtual void startProgress(int maximum) = 0;
    virtual void setProgress(int position) = 0;
};

} // namespace torvane
