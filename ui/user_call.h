#pragma once

#include <cstdint>

namespace torvane {

/// What calls a user to work that has ended.
struct UserCall {
    enum class Sound : std::uint8_t { kDone, kTrouble };

    Sound sound = Sound::kDone;
    bool flash = false; ///< the program's button on the task bar, until somebody turns to it

    bool operator==(const UserCall&) const = default;
};

/// `inFront`: some window of the program is the one that the user works with.
[[nodiscard]] constexpr UserCall userCallFor(bool good, bool inFront) {
    return {.sound = good ? UserCall::Sound::kDone : UserCall::Sound::kTrouble, .flash = !inFront};
}

} // namespace torvane
