#pragma once

#include <cstdint>

namespace torvane {

inline constexpr const char* kTutorialFileName = "TutorialData.db";

/// Values of the flag in the tutorial's file. Any other value shows no tutorial either.
inline constexpr std::int32_t kTutorialHidden = 0;
inline constexpr std::int32_t kTutorialShown = 1;

/// The flag that the file holds (4 bytes, little-endian). A missing file is created, holding `kTutorialShown`; that is
/// also the answer when the file is too short or can be neither opened nor created.
[[nodiscard]] std::int32_t loadTutorialFlag(const char* fileName);

/// Writes the flag into the file, which is created when it is missing. Returns 1 when it was written, else 0.
int saveTutorialFlag(const char* fileName, std::int32_t flag);

} // namespace torvane
