#include "copy/jobs/hash_files.h"

#include "copy/engine/digest_text.h"

#include <cstdint>

namespace torvane {

namespace {

/// As coreutils writes a file's name.
std::string escaped(std::string_view name) {
    std::string text;
    text.reserve(name.size());
    for (const char each : name) {
        switch (each) {
        case '\\':
            text += "\\\\";
            break;
        case '\n':
            text += "\\n";
            break;
        case '\r':
            text += "\\r";
            break;
        default:
            text += each;
        }
    }
    return text;
}

/// Takes the next line from `text`, without its end.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

struct NamedDigest {
    Sha256Digest digest;
    std::string_view name; ///< as it is written
    bool isEscaped;
};

/// What `sha256sum` has written, in either mode.
std::optional<NamedDigest> namedDigest(std::string_view line) {
    const bool isEscaped = line.starts_with('\\');
    line.remove_prefix(isEscaped ? 1 : 0);
    constexpr std::size_t kDigits = 2 * sizeof(Sha256Digest);
    if (line.size() < kDigits + 3 || line[kDigits] != ' ' || (line[kDigits + 1] != ' ' && line[kDigits + 1] != '*')) {
        return std::nullopt;
    }
    const std::optional<Sha256Digest> digest = digestIn<Sha256Digest>(line.substr(0, kDigits));
    if (!digest) {
        return std::nullopt;
    }
    return NamedDigest{.digest = *digest, .name = line.substr(kDigits + 2), .isEscaped = isEscaped};
}

} // namespace

std::string sha256FileName(std::string_view imagePath) {
    return std::string(imagePath).append(".sha256");
}

std::string sha256FileText(std::string_view imageFileName, const Sha256Digest& digest) {
    const std::string name = escaped(imageFileName);
    return std::string(name == imageFileName ? "" : "\\").append(hexText(digest)).append(" *").append(name) + "\n";
}

std::optional<Md5Digest> md5InHashFile(std::string_view text) {
    constexpr std::string_view kTitle = "HASH:";
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (line.starts_with(kTitle)) {
            return digestIn<Md5Digest>(line.substr(kTitle.size()));
        }
    }
    return std::nullopt;
}

std::optional<Sha256Digest> sha256InFile(std::string_view text, std::string_view imageFileName) {
    const std::string name = escaped(imageFileName);
    std::optional<Sha256Digest> only;
    std::size_t lines = 0;
    while (!text.empty()) {
        const std::optional<NamedDigest> named = namedDigest(takeLine(text));
        if (!named) {
            continue;
        }
        if (named->name == (named->isEscaped ? std::string_view(name) : imageFileName)) {
            return named->digest;
        }
        only = named->digest;
        ++lines;
    }
    return lines == 1 ? only : std::nullopt;
}

} // namespace torvane
