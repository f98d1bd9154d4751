#include "copy/dialogs/typed_digests.h"

#include "base/format.h"
#include "copy/engine/digest_text.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

constexpr const char* kNotUsable = "***** DIGEST NOT USABLE *****";

/// False when a box has said what is wrong with it; empty text is none.
template <typename Digest>
bool readOrTell(const char* name, std::string_view text, std::optional<Digest>& digest) {
    Digest read{};
    const auto digits = static_cast<int>(2 * read.size());
    switch (readDigest(text, read)) {
    case DigestReading::kRead:
        digest = read;
        return true;
    case DigestReading::kNothing:
        return true;
    case DigestReading::kOtherLetter:
        prompts::stop(kNotUsable, formatText("The %s holds a character that is no digit. Nothing was read. It has %d "
                                             "digits from 0 to 9 and from A to F",
                                             name, digits)
                                      .c_str());
        return false;
    case DigestReading::kOtherLength:
        break;
    }
    prompts::stop(
        kNotUsable,
        formatText("The %s has too few digits, or too many. Nothing was read. It has %d digits", name, digits).c_str());
    return false;
}

} // namespace

std::optional<Digests> requireDigests(std::string_view md5, std::string_view sha256) {
    Digests digests;
    if (!readOrTell("MD5", md5, digests.md5) || !readOrTell("SHA-256", sha256, digests.sha256)) {
        return std::nullopt;
    }
    if (digests == Digests{}) {
        prompts::stop("***** NO DIGEST *****", "There is nothing to compare the image with. Nothing was read. Type or "
                                               "paste its MD5 or its SHA-256");
        return std::nullopt;
    }
    return digests;
}

} // namespace torvane
