#pragma once

namespace torvane::testing {

/// A user who leaves what is waited for, for a scope: the work is not done.
class LeavingUser {
  public:
    LeavingUser();
    ~LeavingUser();
    LeavingUser(const LeavingUser&) = delete;
    LeavingUser& operator=(const LeavingUser&) = delete;
};

} // namespace torvane::testing
