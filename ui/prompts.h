#pragma once

namespace torvane::prompts {

// Every box that the user must answer, in one place, so that tests can answer in the user's stead. Captions and texts
// are shown as they stand. Any thread may call.

/// A message with the stop icon and an OK button.
void stop(const char* caption, const char* text);

/// A message with an OK button and no icon.
void inform(const char* caption, const char* text);

/// A message with the exclamation icon and an OK button.
void warn(const char* caption, const char* text);

/// A yes/no question; true for yes.
[[nodiscard]] bool ask(const char* caption, const char* text);

/// The same with "No" as the default, where a Yes may cost somebody his data. Return pressed without reading is a no.
[[nodiscard]] bool askDefaultNo(const char* caption, const char* text);

} // namespace torvane::prompts
