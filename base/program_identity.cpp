#include "base/program_identity.h"

namespace torvane {

// Both are told to this file alone, so that a new commit compiles nothing else anew.

const char* programVersion() {
    return TORVANE_VERSION;
}

const char* programBuild() {
    return TORVANE_BUILD;
}

} // namespace torvane
