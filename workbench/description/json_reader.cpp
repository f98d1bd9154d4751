#include "workbench/description/json_reader.h"

#include "workbench/description/error_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>
#include <vector>

namespace torvane::bench {
namespace {

// Follows the parser through the file and remembers the keys of every open object.
class DuplicateKeys {
  public:
    bool operator()(int /*depth*/, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start) {
            open_.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            open_.pop_back();
        } else if (event == Json::parse_event_t::key && first_.empty()) {
            const auto key = parsed.get<std::string>();
            if (!open_.back().insert(key).second) {
                first_ = key;
            }
        }
        return true;
    }
    [[nodiscard]] const std::string& first() const { return first_; }

  private:
    std::vector<std::set<std::string>> open_;
    std::string first_;
};

std::string lineAndColumn(const std::string& content, std::size_t byte) {
    const std::size_t end = std::min(byte > 0 ? byte - 1 : 0, content.size());
    const auto line = 1 + std::count(content.begin(), content.begin() + static_cast<std::ptrdiff_t>(end), '\n');
    const std::size_t lineStart = end == 0 ? std::string::npos : content.rfind('\n', end - 1);
    const std::size_t column = end - (lineStart == std::string::npos ? 0 : lineStart + 1) + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

std::string rangeText(std::uint64_t minimum, std::uint64_t maximum) {
    return "expected a number from " + std::to_string(minimum) + " to " + std::to_string(maximum);
}

} // namespace

void Mistake::report(std::string_view file, std::string_view field, std::string_view what) {
    if (!text_.empty()) {
        return;
    }
    text_ = std::string(file) + ": ";
    if (!field.empty()) {
        text_ += std::string(field) + ": ";
    }
    text_ += what;
}

Json parseJson(const ReadingFile& file, const std::string& content) {
    DuplicateKeys duplicates;
    try {
        Json parsed = Json::parse(content, std::ref(duplicates));
        if (!duplicates.first().empty()) {
            file.mistake.report(file.name, duplicates.first(), "stands twice in the same object");
            return nullptr;
        }
        return parsed;
    } catch (const Json::parse_error& error) {
        file.mistake.report(file.name, lineAndColumn(content, error.byte), "not valid JSON");
        return nullptr;
    }
}

ObjectReader::ObjectReader(const ReadingFile& file, const Json& value, std::string path)
    : file_(file), value_(value), path_(std::move(path)) {
    if (!value_.is_object()) {
        file_.mistake.report(file_.name, path_, "expected an object, got " + shown(value_));
    }
}

std::string ObjectReader::fieldName(const std::string& key) const {
    return path_.empty() ? key : path_ + "." + key;
}

void ObjectReader::fail(const std::string& key, std::string_view what) const {
    file_.mistake.report(file_.name, fieldName(key), what);
}

void ObjectReader::require(const std::string& key) const {
    if (!has(key)) {
        fail(key, "missing, but required");
    }
}

const Json* ObjectReader::raw(const std::string& key) {
    known_.insert(key);
    return has(key) ? &value_.at(key) : nullptr;
}

bool ObjectReader::readNumber(const std::string& key, std::uint64_t minimum, std::uint64_t maximum,
                              std::uint64_t& out) {
    const Json* value = raw(key);
    if (value == nullptr) {
        return false;
    }
    if (!value->is_number_unsigned() || value->get<std::uint64_t>() < minimum ||
        value->get<std::uint64_t>() > maximum) {
        fail(key, rangeText(minimum, maximum) + ", got " + shown(*value));
        return false;
    }
    out = value->get<std::uint64_t>();
    return true;
}

void ObjectReader::boolean(const std::string& key, bool& out) {
    const Json* value = raw(key);
    if (value == nullptr) {
        return;
    }
    if (!value->is_boolean()) {
        fail(key, "expected true or false, got " + shown(*value));
        return;
    }
    out = value->get<bool>();
}

void ObjectReader::text(const std::string& key, std::string& out, std::size_t maximum) {
    std::optional<std::string> found;
    text(key, found, maximum);
    if (found) {
        out = *found;
    }
}

void ObjectReader::text(const std::string& key, std::optional<std::string>& out, std::size_t maximum) {
    const Json* value = raw(key);
    if (value == nullptr) {
        return;
    }
    if (!value->is_string()) {
        fail(key, "expected a text, got " + shown(*value));
        return;
    }
    const std::optional<std::string> bytes = eightBitText(value->get_ref<const std::string&>());
    if (!bytes) {
        fail(key, "expected characters from U+0001 to U+00FF only");
    } else if (bytes->size() > maximum) {
        fail(key, "expected at most " + std::to_string(maximum) + " characters, got " + std::to_string(bytes->size()));
    } else {
        out = *bytes;
    }
}

void ObjectReader::size(const std::string& key, std::uint64_t& out) {
    std::optional<std::uint64_t> found;
    size(key, found);
    if (found) {
        out = *found;
    }
}

void ObjectReader::size(const std::string& key, std::optional<std::uint64_t>& out) {
    const Json* value = raw(key);
    if (value == nullptr) {
        return;
    }
    std::optional<std::uint64_t> bytes;
    if (value->is_number_unsigned()) {
        bytes = value->get<std::uint64_t>();
    } else if (value->is_string()) {
        bytes = sizeFromText(value->get_ref<const std::string&>());
    }
    // Windows counts disks in signed 64-bit numbers.
    if (!bytes || *bytes > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        fail(key, "expected a number of bytes or a text such as \"32 MiB\", got " + shown(*value));
        return;
    }
    out = bytes;
}

void ObjectReader::error(const std::string& key, std::uint32_t& out) {
    std::optional<std::uint32_t> found;
    error(key, found);
    if (found) {
        out = *found;
    }
}

void ObjectReader::error(const std::string& key, std::optional<std::uint32_t>& out) {
    const Json* value = raw(key);
    if (value == nullptr) {
        return;
    }
    std::optional<std::uint32_t> number;
    if (value->is_string()) {
        number = errorNumber(value->get_ref<const std::string&>());
    } else if (value->is_number_unsigned() && value->get<std::uint64_t>() > 0 &&
               value->get<std::uint64_t>() <= std::numeric_limits<std::uint32_t>::max()) {
        number = value->get<std::uint32_t>();
    }
    if (!number) {
        fail(key, "expected a Win32 error by number or name, got " + shown(*value));
        return;
    }
    out = number;
}

void ObjectReader::choice(const std::string& key, std::span<const std::string_view> names, std::size_t& index) {
    const Json* value = raw(key);
    if (value == nullptr) {
        return;
    }
    if (value->is_string()) {
        const auto found = std::find(names.begin(), names.end(), value->get_ref<const std::string&>());
        if (found != names.end()) {
            index = static_cast<std::size_t>(found - names.begin());
            return;
        }
    }
    std::string expected = "expected one of";
    for (const std::string_view name : names) {
        expected += " \"" + std::string(name) + "\"";
    }
    fail(key, expected + ", got " + shown(*value));
}

void ObjectReader::object(const std::string& key, const std::function<void(ObjectReader&)>& read) {
    const Json* value = raw(key);
    if (value == nullptr) {
        return;
    }
    ObjectReader reader(file_, *value, fieldName(key));
    read(reader);
    reader.finish();
}

void ObjectReader::list(const std::string& key, const std::function<void(ObjectReader&)>& read) {
    const Json* value = raw(key);
    if (value == nullptr) {
        return;
    }
    if (!value->is_array()) {
        fail(key, "expected a list, got " + shown(*value));
        return;
    }
    for (std::size_t i = 0; i < value->size(); ++i) {
        ObjectReader reader(file_, (*value)[i], fieldName(key) + "[" + std::to_string(i) + "]");
        read(reader);
        reader.finish();
    }
}

void ObjectReader::finish() const {
    if (!value_.is_object()) {
        return;
    }
    for (const auto& [key, unused] : value_.items()) {
        if (!known_.contains(key)) {
            fail(key, "unknown field");
            return;
        }
    }
}

std::optional<std::string> eightBitText(const std::string& utf8) {
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        if (lead == 0) {
            return std::nullopt;
        }
        if (lead < 0x80) {
            bytes += static_cast<char>(lead);
        } else if ((lead == 0xC2 || lead == 0xC3) && i + 1 < utf8.size()) {
            // U+0080 to U+00FF are the two-byte sequences that begin with C2 and C3.
            ++i;
            bytes += static_cast<char>(((lead & 0x03U) << 6) | (static_cast<unsigned char>(utf8[i]) & 0x3FU));
        } else {
            return std::nullopt;
        }
    }
    return bytes;
}

std::optional<std::uint64_t> sizeFromText(std::string_view text) {
    struct Unit {
        std::string_view name;
        unsigned shift;
    };
    static constexpr std::array kUnits = {Unit{" KiB", 10}, Unit{" MiB", 20}, Unit{" GiB", 30}, Unit{" TiB", 40}};
    std::uint64_t count = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (failure != std::errc()) {
        return std::nullopt;
    }
    const std::string_view rest = text.substr(static_cast<std::size_t>(end - text.data()));
    for (const Unit& unit : kUnits) {
        if (rest == unit.name && count <= (std::numeric_limits<std::uint64_t>::max() >> unit.shift)) {
            return count << unit.shift;
        }
    }
    return std::nullopt;
}

std::string shown(const Json& value) {
    constexpr std::size_t kLongest = 60;
    std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
    if (text.size() > kLongest) {
        text = text.substr(0, kLongest) + "...";
    }
    return text;
}

} // namespace torvane::bench
