#pragma once

#include "base/local_moment.h"
#include "copy/engine/block_hasher.h"
#include "records/drive_record.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace torvane {

/// "<folder>\<model>.<number>.img". The model stands as the drive reports it.
[[nodiscard]] std::string imageFileName(std::string_view folder, std::string_view model, std::int32_t number);

/// "<folder>\MD5-HASH--<model>.<number>.txt"
[[nodiscard]] std::string hashFileName(std::string_view folder, std::string_view model, std::int32_t number);

/// The same of an image that was made as "<folder>\<model>.<number>.img"; whatever its name ends with takes the place
/// of
/// ".img".
[[nodiscard]] std::string hashFileOfImage(std::string_view imagePath);

/// "<folder>\ACQUISITION--<model>.<number>.txt"
[[nodiscard]] std::string acquisitionFileName(std::string_view folder, std::string_view model, std::int32_t number);

/// The map of what is missing from an image: "<image>.map".
[[nodiscard]] std::string mapFileName(std::string_view imagePath);

/// "CLONE--<model>.<serial number>.20261122-201503.map" of the drive that is cloned, in the current folder, and
/// "IMAGE-TO-DRIVE--<image's name>.20261122-201503.map". What a file name cannot hold is replaced.
[[nodiscard]] std::string cloneMapFileName(const DriveRecord& source, const LocalMoment& begin);
[[nodiscard]] std::string imageToDriveMapFileName(std::string_view imagePath, const LocalMoment& begin);

/// "<image>'s folder\RESCUE--<image's name>.20261122-201503.txt": the record of a rescue that goes on with an image.
[[nodiscard]] std::string rescueRecordFileName(std::string_view imagePath, const LocalMoment& begin);

/// "RESCUE--<model>.<serial number>--<model>.<serial number>.map" of source and destination, in the current folder:
/// another rescue between the two finds it again.
[[nodiscard]] std::string rescueMapFileName(const DriveRecord& source, const DriveRecord& destination);

/// Where the record lies of an image that was made as "<folder>\<model>.<number>.img" (see `hashFileOfImage`).
[[nodiscard]] std::string acquisitionFileOfImage(std::string_view imagePath);

/// The hash file's bytes. Lines end in a bare line feed; the last has none.
[[nodiscard]] std::string hashFileText(const DriveRecord& source, const Md5Digest& digest, const LocalMoment& moment);

/// The line that compares digests on the standard output: `title` is "Match HASH" or "Gen   HASH".
[[nodiscard]] std::string digestLine(std::string_view title, const Md5Digest& digest);

} // namespace torvane
