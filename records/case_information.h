#pragma once

#include <cstddef>
#include <string>

namespace torvane {

/// What an examiner gives along with an image. Each may be empty.
struct CaseInformation {
    std::string caseNumber;
    std::string examiner;
    std::string note;
};

/// Most characters of each, but for the note.
inline constexpr std::size_t kMostCaseCharacters = 80;
inline constexpr std::size_t kMostNoteCharacters = 400;

} // namespace torvane
