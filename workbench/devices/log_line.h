#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace torvane::bench {

/// One request on its way into the bench's log: everything of the line but time and process.
class LogLine {
  public:
    LogLine(std::string_view target, std::string_view request);

    LogLine& number(std::string_view key, std::uint64_t value);
    LogLine& word(std::string_view key, std::string_view value);
    /// Quoted as a JSON string. `text` is UTF-8 or arbitrary bytes; what is not printable ASCII is escaped.
    LogLine& quoted(std::string_view key, std::string_view text);
    LogLine& hex(std::string_view key, std::span<const std::uint8_t> bytes);
    /// "ok" for 0, else the error's name or number.
    LogLine& result(std::uint32_t error);

    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_;
};

} // namespace torvane::bench
