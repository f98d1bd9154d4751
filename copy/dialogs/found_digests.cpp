#include "copy/dialogs/found_digests.h"

#include "base/file_name_part.h"
#include "base/owned_handle.h"
#include "base/system_path.h"
#include "base/whole_file.h"
#include "copy/jobs/hash_files.h"
#include "copy/jobs/image_names.h"
#include "ui/waiting.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

namespace torvane {

namespace {

/// As much of a file as is looked at; empty for one that cannot be read.
std::string beginningOf(const std::string& path) {
    const UniqueFile file{CreateFileW(systemPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, 0, nullptr)};
    const std::optional<std::uint64_t> size = file ? sizeOfFile(file.get()) : std::nullopt;
    std::string text(std::min<std::uint64_t>(size.value_or(0), kMostOfHashFile), '\0');
    return !text.empty() && readWholeFile(file.get(), text.size(), text.data()) ? text : "";
}

Digests digestsBeside(const std::string& imagePath) {
    return {.md5 = md5InHashFile(beginningOf(hashFileOfImage(imagePath))),
            .sha256 = sha256InFile(beginningOf(sha256FileName(imagePath)), fileNameOf(imagePath))};
}

} // namespace

std::optional<Digests> awaitDigestsBeside(const std::string& imagePath) {
    return waiting::resultOf("the folder", [own = imagePath] { return digestsBeside(own); });
}

} // namespace torvane
