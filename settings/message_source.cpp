#include "settings/message_source.h"

#include "base/format.h"

#include <algorithm>
#include <optional>

namespace torvane {

namespace {

constexpr std::string_view kLevelKey = "level ";

std::optional<std::uint32_t> levelFrom(std::string_view line) {
    if (!line.starts_with(kLevelKey)) {
        return std::nullopt;
    }
    const std::string_view digit = line.substr(kLevelKey.size());
    if (digit.size() != 1 || digit.front() < '0' || digit.front() > '3') {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(digit.front() - '0');
}

std::optional<std::uint32_t> lampFrom(std::string_view line) {
    struct Lamp {
        std::string_view line;
        LampColour colour;
    };
    static constexpr std::array kLamps{
        Lamp{"lamp green", kLampGreen},
        Lamp{"lamp blue", kLampBlue},
        Lamp{"lamp yellow", kLampYellow},
        Lamp{"lamp red", kLampRed},
    };
    const auto lamp =
        std::find_if(kLamps.begin(), kLamps.end(), [line](const Lamp& known) { return known.line == line; });
    if (lamp == kLamps.end()) {
        return std::nullopt;
    }
    return lamp->colour;
}

/// Takes the source line by line and holds the message that is being put together.
class SourceReader {
  public:
    /// An error text, empty while all is well.
    std::string take(std::string_view line) {
        if (line.starts_with('#')) {
            return {};
        }
        if (line.empty()) {
            return finishMessage();
        }
        if (!level_) {
            return takeLevel(line);
        }
        if (!lamp_) {
            return takeLamp(line);
        }
        text_ += text_.empty() ? "" : " ";
        text_ += line;
        return {};
    }

    std::string finishMessage() {
        if (!level_) {
            return {};
        }
        MessageRecord record;
        if (!lamp_ || text_.empty()) {
            return "the message ends before its text";
        }
        if (text_.find('\0') != std::string::npos) {
            return "the text holds a NUL byte, which would end it";
        }
        if (text_.size() >= record.text.size()) {
            return formatText("the text is longer than %zu bytes", record.text.size() - 1);
        }
        record.level = *level_;
        record.messageId = *lamp_;
        setMessageText(record, text_);
        table_.push_back(record);
        level_.reset();
        lamp_.reset();
        text_.clear();
        return {};
    }

    MessageTable finishTable() {
        MessageRecord end;
        end.messageId = kMessageTableEnd;
        end.level = kMessageTableEnd;
        table_.push_back(end);
        return std::move(table_);
    }

  private:
    std::string takeLevel(std::string_view line) {
        level_ = levelFrom(line);
        if (!level_) {
            return "a message begins with \"level 0\" to \"level 3\"";
        }
        if (FindMessageByLevel(table_, *level_) != nullptr) {
            return formatText("level %u has a message already", static_cast<unsigned>(*level_));
        }
        return {};
    }

    std::string takeLamp(std::string_view line) {
        lamp_ = lampFrom(line);
        return lamp_ ? "" : "the level is followed by \"lamp green\", \"lamp blue\", \"lamp yellow\" or \"lamp red\"";
    }

    MessageTable table_;
    std::optional<std::uint32_t> level_;
    std::optional<std::uint32_t> lamp_;
    std::string text_;
};

std::string_view trimmed(std::string_view line) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = line.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return line.substr(first, line.find_last_not_of(kBlanks) - first + 1);
}

} // namespace

MessageSource parseMessageSource(std::string_view source) {
    SourceReader reader;
    std::string error;
    int lineNumber = 0;
    while (!source.empty() && error.empty()) {
        const std::size_t end = std::min(source.find('\n'), source.size());
        ++lineNumber;
        error = reader.take(trimmed(source.substr(0, end)));
        source.remove_prefix(std::min(end + 1, source.size()));
    }
    if (error.empty()) {
        error = reader.finishMessage();
    }
    if (!error.empty()) {
        return {{}, formatText("line %d: %s", lineNumber, error.c_str())};
    }
    return {reader.finishTable(), {}};
}

} // namespace torvane
