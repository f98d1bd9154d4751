#pragma once

#include <windows.h>

namespace torvane {

/// Makes the first box of the system that the calling thread opens, while this object lives, as wide as its whole
/// caption needs. The system fits a box to its text and buttons alone, and cuts a caption that is longer.
class WholeCaption {
  public:
    WholeCaption();
    ~WholeCaption();
    WholeCaption(const WholeCaption&) = delete;
    WholeCaption& operator=(const WholeCaption&) = delete;

  private:
    HHOOK hook_;
};

} // namespace torvane
