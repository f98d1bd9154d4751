#pragma once

#include "base/bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace torvane {

struct DriveRecord;

/// SENDCMDINPARAMS (Win32, ntdddisk.h) without data: the input of SMART_RCV_DRIVE_DATA.
inline constexpr std::size_t kAtaCommandBytes = 32;
/// SENDCMDOUTPARAMS: a 16-byte header, then one 512-byte sector.
inline constexpr std::size_t kAtaAnswerHeaderBytes = 16;
inline constexpr std::size_t kAtaIdentifyBytes = 512;
inline constexpr std::size_t kAtaAnswerBytes = kAtaAnswerHeaderBytes + kAtaIdentifyBytes;

/// The request for IDENTIFY DEVICE (command ECh). Odd drive numbers select the second device of the old channel pair
/// (bit 4 of the drive/head register).
[[nodiscard]] std::array<std::uint8_t, kAtaCommandBytes> ataIdentifyRequest(std::int32_t identifyDriveNumber);

/// Copies model (words 27-46), serial number (words 10-19) and firmware revision (words 23-26) of an identify block
/// over the start of the record's texts, then trims them, and keeps the serial number as the drive's own. Bytes missing
/// from a short block read as zero.
void applyAtaIdentify(DriveRecord& record, ByteView identifyBlock);

} // namespace torvane
