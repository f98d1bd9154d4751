#pragma once

#include <cstdint>
#include <span>

namespace torvane {

// Line and word scanners over the NUL-terminated text that a tool printed.
//
// Lines are separated by CR LF, words within a line by runs of blanks (0x20 only; a tab is part of a word). Every
// result goes into a caller's buffer, is NUL-terminated and cut at the buffer's size. Results are 1 and 0, or a line
// index counted from 0 with -1 for "not found".

/// Walks a text's lines once, front to back: what PARSE_GetLine gives for the lines 0, 1, 2 and so on, which would
/// start over at the text's beginning for each. The text must outlive the cursor.
class LineCursor {
  public:
    explicit LineCursor(const char* text) : at_(text) {}

    /// Copies the next line and steps behind it. Returns 1 when it is ended by CR LF; else 0, and stays there.
    int next(std::span<char> lineOut);

  private:
    const char* at_;
};

/// Clears `lineOut`, then copies line `lineIndex` of `text` into it without its CR LF.
/// Returns 1 when that line exists and is ended by CR LF, else 0: a last line without a CR LF is never returned (its
/// bytes are left in `lineOut`). A line cut at the buffer's size is a line all the same. A CR that no LF follows is
/// dropped; a lone LF is copied like any other byte.
int PARSE_GetLine(int lineIndex, const char* text, std::span<char> lineOut);

/// Case-insensitive (ASCII) substring test. Returns 1 when `needle` starts at a position below
/// strlen(haystack) - strlen(needle).
// Stops one short, and kept: callers' keys are never the last thing on a line.
int PARSE_LineContains(const char* haystack, const char* needle);

/// The index of the first line that contains `key`, left in `lineOut`; -1 when none does. What does not fit into
/// `lineOut` is not searched. The text is walked once.
int PARSE_FindLine(const char* text, std::span<char> lineOut, const char* key);

/// The same, starting at the line after `afterIndex`; an index below -1 finds nothing. One of the program's named
/// operations; no command calls it: a LineCursor goes on where it stopped.
int PARSE_FindNextLine(const char* text, int afterIndex, std::span<char> lineOut, const char* key);

/// Copies word `wordIndex` (from 0) of `line` into `wordOut`. Returns 1 if the line has that many words, else 0 with
/// the line's last word in `wordOut`, which stays untouched when there is none. A CR or LF ends a word, and every word
/// behind it is empty.
int PARSE_GetWord(const char* line, std::span<char> wordOut, int wordIndex);

/// Copies everything from the first character of word `wordIndex` to the end of `line`, blanks kept.
/// Returns 1 if that word exists, else 0 with `out` untouched.
int PARSE_GetRestFromWord(const char* line, std::span<char> out, int wordIndex);

/// Copies `text` up to, not including, the first `delimiter`. Returns 1 if it was found, 0 if the whole text was
/// copied.
int PARSE_CopyUntil(const char* text, std::span<char> out, char delimiter);

/// The decimal digits of `text`, in order, as one number: "1,234" gives 1234, "" and "-" give 0.
/// A number beyond 63 bits gives the largest one.
std::int64_t PARSE_DigitsToInt64(const char* text);

} // namespace torvane
