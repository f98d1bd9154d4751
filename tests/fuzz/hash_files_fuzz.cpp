#include "base/file_name_part.h"
#include "copy/engine/digest_text.h"
#include "copy/jobs/hash_files.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

using namespace torvane;
using fuzz::require;

namespace {

constexpr std::string_view kImage = "Model X.41.img";

std::string inLowerCase(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

/// A digest stands in the text as it is told, whatever stands between its digits.
void requireToldFrom(const std::string& text, const std::string& hex) {
    std::string digits = inLowerCase(text);
    std::erase_if(digits, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == ':'; });
    require(digits.find(hex) != std::string::npos, "a digest is told as it stands in the text");
}

template <typename Digest>
void readTyped(const std::string& text) {
    Digest digest{};
    if (readDigest(text, digest) == DigestReading::kRead) {
        const std::string hex = hexText(digest);
        require(digestIn<Digest>(hex) == digest, "a digest is read as it was written");
    } else {
        require(!digestIn<Digest>(text), "one answer of both");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string text(bytes, bytes + size);
    readTyped<Md5Digest>(text);
    readTyped<Sha256Digest>(text);
    if (const auto md5 = md5InHashFile(text)) {
        requireToldFrom(text, hexText(*md5));
    }
    if (const auto sha256 = sha256InFile(text, kImage)) {
        requireToldFrom(text, hexText(*sha256));
    }
    // Whatever an image is called, its own file tells its digest.
    Sha256Digest digest{};
    std::copy_n(text.begin(), std::min(text.size(), digest.size()), digest.begin());
    if (!text.empty()) {
        require(sha256InFile(sha256FileText(text, digest), text) == digest, "an image's own file tells its digest");
    }
    require(fileNameOf(text).find_first_of("\\/") == std::string_view::npos, "a file's name has no folder");
    return 0;
}
