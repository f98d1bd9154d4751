#include "tests/support/direct_waiting.h"

#include "ui/waiting.h"

namespace torvane {

namespace {
bool userLeaves = false; // on the test's thread
} // namespace

namespace testing {

LeavingUser::LeavingUser() {
    userLeaves = true;
}

LeavingUser::~LeavingUser() {
    userLeaves = false;
}

} // namespace testing

namespace waiting {

// Without a window there is nobody to go on answering: what is waited for is done here and now.
bool run(const char*, std::function<void()> work) {
    if (userLeaves) {
        return false;
    }
    work();
    return true;
}

} // namespace waiting

} // namespace torvane
