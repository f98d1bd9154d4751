#pragma once

#include "copy/engine/block_hasher.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace torvane {

// The files beside an image that hold its digests: "MD5-HASH--<model>.<number>.txt" (image_names.h) and
// "<image>.sha256". Reading them, others may have written them: whatever they hold, the answer is a digest or none.

/// "<image path>.sha256"
[[nodiscard]] std::string sha256FileName(std::string_view imagePath);

/// The bytes of a file that `sha256sum -c` accepts in the image's folder (GNU coreutils, "md5sum invocation" and "cksum
/// output modes"): the digest in lower case, a blank, '*' for binary mode, which programs on Windows tell from text
/// mode, the image's name without its folder, a line feed. A backslash or an end of line in the name is written as a
/// backslash and a letter; then a backslash stands before the digest, too.
[[nodiscard]] std::string sha256FileText(std::string_view imageFileName, const Sha256Digest& digest);

/// The digest in the "HASH:" line of an MD5 file; none where there is not exactly one digest in the first such line.
[[nodiscard]] std::optional<Md5Digest> md5InHashFile(std::string_view text);

/// The digest in the line that names the image, in either mode; where none does, because the image was renamed, that of
/// a file with a single line. Lines of any other form are passed over, and lines may end as on Windows.
[[nodiscard]] std::optional<Sha256Digest> sha256InFile(std::string_view text, std::string_view imageFileName);

/// As much of a hash file as is looked at, in bytes: far more than any that was made for one image.
inline constexpr std::size_t kMostOfHashFile = 65536;

} // namespace torvane
