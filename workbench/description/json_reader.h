#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace torvane::bench {

using Json = nlohmann::json;

/// Where the first mistake of a bench's files is kept: one line, "<file>: <field>: <what is wrong>".
class Mistake {
  public:
    /// Later mistakes are dropped: the first one is usually the cause of the others.
    void report(std::string_view file, std::string_view field, std::string_view what);
    [[nodiscard]] bool found() const { return !text_.empty(); }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_;
};

/// One description file while it is read.
struct ReadingFile {
    std::string name;
    Mistake& mistake;
};

/// Parses a file. Wrong syntax and fields that stand twice are reported; the result is null then.
[[nodiscard]] Json parseJson(const ReadingFile& file, const std::string& content);

/// Reads one JSON object field by field. Every getter leaves `out` untouched when the field is absent, and reports a
/// field of the wrong type or range. Fields that nobody asked for are reported by `finish`.
class ObjectReader {
  public:
    /// `path` is the object's own place in the file, empty at the top.
    ObjectReader(const ReadingFile& file, const Json& value, std::string path);

    [[nodiscard]] bool has(const std::string& key) const { return value_.is_object() && value_.contains(key); }
    /// "path.key".
    [[nodiscard]] std::string fieldName(const std::string& key) const;
    [[nodiscard]] const ReadingFile& file() const { return file_; }
    [[nodiscard]] const std::string& path() const { return path_; }
    void fail(const std::string& key, std::string_view what) const;
    /// Reports the field when it is absent.
    void require(const std::string& key) const;

    void boolean(const std::string& key, bool& out);
    /// 8-bit text of at most `maximum` bytes.
    void text(const std::string& key, std::string& out, std::size_t maximum = 65536);
    void text(const std::string& key, std::optional<std::string>& out, std::size_t maximum = 65536);
    /// A byte count: a number, or "32 MiB".
    void size(const std::string& key, std::uint64_t& out);
    void size(const std::string& key, std::optional<std::uint64_t>& out);
    /// A Win32 error, by number or by name.
    void error(const std::string& key, std::uint32_t& out);
    void error(const std::string& key, std::optional<std::uint32_t>& out);
    /// One of `names`; `index` is its place among them.
    void choice(const std::string& key, std::span<const std::string_view> names, std::size_t& index);

    template <typename Number>
    void number(const std::string& key, Number& out, std::type_identity_t<Number> minimum = 0,
                std::type_identity_t<Number> maximum = std::numeric_limits<Number>::max()) {
        static_assert(std::is_unsigned_v<Number>);
        std::uint64_t value = 0;
        if (readNumber(key, minimum, maximum, value)) {
            out = static_cast<Number>(value);
        }
    }
    template <typename Number>
    void number(const std::string& key, std::optional<Number>& out, std::type_identity_t<Number> minimum = 0,
                std::type_identity_t<Number> maximum = std::numeric_limits<Number>::max()) {
        Number value = 0;
        if (has(key)) {
            number(key, value, minimum, maximum);
            out = value;
        }
    }

    /// Calls `read` with the object under `key`, if there is one.
    void object(const std::string& key, const std::function<void(ObjectReader&)>& read);
    /// Calls `read` with every object of the list under `key`, in order.
    void list(const std::string& key, const std::function<void(ObjectReader&)>& read);
    /// The field as it stands, for the few that take several types; null when absent.
    [[nodiscard]] const Json* raw(const std::string& key);

    /// Reports the first field that nobody asked for.
    void finish() const;

  private:
    bool readNumber(const std::string& key, std::uint64_t minimum, std::uint64_t maximum, std::uint64_t& out);

    const ReadingFile& file_;
    const Json& value_;
    std::string path_;
    std::set<std::string> known_;
};

/// The 8-bit text that a JSON string stands for, one byte for each character; nothing when it holds NUL or a character
/// above U+00FF.
[[nodiscard]] std::optional<std::string> eightBitText(const std::string& utf8);

/// Bytes of "32 MiB" and the like; nothing for any other text.
[[nodiscard]] std::optional<std::uint64_t> sizeFromText(std::string_view text);

/// How a value looks in a message.
[[nodiscard]] std::string shown(const Json& value);

} // namespace torvane::bench
