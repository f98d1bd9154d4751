#include "copy/evidence/map_file.h"

#include <charconv>
#include <limits>
#include <utility>

namespace torvane {

namespace {

/// Places and sizes are those of a file: what a signed number of 64 bits holds.
constexpr std::uint64_t kLastPlace = std::numeric_limits<std::int64_t>::max();

constexpr std::size_t kMostWords = 3; // in a line of a map

constexpr std::string_view kBlanks = " \t\r\v\f";
constexpr std::string_view kPhases = "?*/-FG+";
constexpr std::string_view kStatuses = "?*/-+";

bool isBlank(char character) {
    return kBlanks.find(character) != std::string_view::npos;
}

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Cuts the text's first line off, without its end.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

/// A comment begins at the line's start or behind a blank.
std::size_t commentIn(std::string_view line) {
    std::size_t at = line.find('#');
    while (at != std::string_view::npos && at != 0 && !isBlank(line[at - 1])) {
        at = line.find('#', at + 1);
    }
    return at;
}

/// The line's first words: one more than any line of a map has.
std::vector<std::string_view> wordsOf(std::string_view line) {
    std::vector<std::string_view> words;
    words.reserve(kMostWords + 1);
    for (line = withoutBlanks(line); !line.empty() && words.size() <= kMostWords; line = withoutBlanks(line)) {
        words.push_back(line.substr(0, line.find_first_of(kBlanks)));
        line.remove_prefix(words.back().size());
    }
    return words;
}

std::optional<std::uint64_t> numberIn(std::string_view digits, int base) {
    std::uint64_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
    return error == std::errc() && stop == end && number <= kLastPlace ? std::optional(number) : std::nullopt;
}

/// A number as C writes it.
std::optional<std::uint64_t> placeIn(std::string_view word) {
    if (word.starts_with("0x") || word.starts_with("0X")) {
        return numberIn(word.substr(2), 16);
    }
    return word.starts_with('0') ? numberIn(word, 8) : numberIn(word, 10);
}

/// Takes a map's lines one after the other.
class MapReader {
  public:
    /// Why the line is none of a map's.
    std::optional<std::string> take(std::string_view line) {
        const std::size_t comment = commentIn(line);
        if (comment != std::string_view::npos) {
            comments_.emplace_back(withoutBlanks(line.substr(comment + 1)));
            line = line.substr(0, comment);
        }
        const std::vector<std::string_view> words = wordsOf(line);
        if (words.empty()) {
            return std::nullopt;
        }
        return status_ ? takeBlock(words) : takeStatus(words);
    }

    [[nodiscard]] bool hasStatus() const { return status_.has_value(); }

    /// Why no such source has this map.
    [[nodiscard]] std::optional<std::string> misfit(std::uint64_t size) const {
        for (const MappedRange& range : blocks_) {
            if (range.status != RangeStatus::kNonTried && range.offset + range.length > size) {
                return "the map tells of places behind the end of the source";
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] MapFile told(std::optional<std::uint64_t> size) && {
        MapFile file{.map = SourceMap(size.value_or(end_)), .status = *status_, .comments = std::move(comments_)};
        for (const MappedRange& range : blocks_) {
            file.map.mark(range.offset, range.length, range.status);
        }
        return file;
    }

  private:
    std::optional<std::string> takeStatus(const std::vector<std::string_view>& words) {
        if (words.size() < 2 || words.size() > kMostWords) {
            return "a status line has a position, a status and a pass";
        }
        const auto position = placeIn(words[0]);
        if (!position) {
            return "the position is no number";
        }
        if (words[1].size() != 1 || kPhases.find(words[1][0]) == std::string_view::npos) {
            return "the current status is none of ? * / - F G +";
        }
        const auto pass = words.size() == kMostWords ? numberIn(words[2], 10) : std::optional<std::uint64_t>(1);
        if (!pass || *pass == 0 || *pass > std::numeric_limits<unsigned>::max()) {
            return "the pass is no number from 1 on";
        }
        status_ = {.position = *position, .phase = words[1][0], .pass = static_cast<unsigned>(*pass)};
        return std::nullopt;
    }

    std::optional<std::string> takeBlock(const std::vector<std::string_view>& words) {
        if (words.size() != kMostWords) {
            return "a block has a position, a size and a status";
        }
        const auto offset = placeIn(words[0]);
        const auto length = placeIn(words[1]);
        if (!offset || !length || *length > kLastPlace - *offset) {
            return "position and size are not those of a block";
        }
        if (words[2].size() != 1 || kStatuses.find(words[2][0]) == std::string_view::npos) {
            return "the status is none of ? * / - +";
        }
        if (!blocks_.empty() && *offset != end_) {
            return "the block does not begin where the one before it ends";
        }
        blocks_.push_back({.offset = *offset, .length = *length, .status = static_cast<RangeStatus>(words[2][0])});
        end_ = *offset + *length;
        return std::nullopt;
    }

    std::vector<std::string> comments_;
    std::optional<MapStatus> status_;
    std::vector<MappedRange> blocks_;
    std::uint64_t end_ = 0;
};

} // namespace

std::variant<MapFile, MapFault> readMapFile(std::string_view text, std::optional<std::uint64_t> size) {
    MapReader reader;
    std::size_t line = 0;
    while (!text.empty()) {
        ++line;
        if (auto reason = reader.take(takeLine(text))) {
            return MapFault{.line = line, .reason = *std::move(reason)};
        }
    }
    if (!reader.hasStatus()) {
        return MapFault{.line = line, .reason = "the status line is missing"};
    }
    if (auto reason = size ? reader.misfit(*size) : std::nullopt) {
        return MapFault{.line = line, .reason = *std::move(reason)};
    }
    return std::move(reader).told(size);
}

} // namespace torvane
