#include "base/program_identity.h"

#include "program_version.h"

namespace torvane {

// Nothing else includes the header, so that a new commit compiles nothing else anew.

const char* programVersion() {
    return TORVANE_VERSION;
}

const char* programBuild() {
    return TORVANE_BUILD;
}

} // namespace torvane
