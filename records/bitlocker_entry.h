#pragma once

#include "base/bytes.h"
#include "base/fixed_text.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace torvane {

/// What a check found on one volume, byte for byte a record of "BITLOCKER.db".
struct BitLockerVolumeEntry {
    LittleEndian32 hasKey;           ///< bytes 0-3; 1: a recovery password was read, 0: none
    FixedText<256> recoveryPassword; ///< bytes 4-259, as printed; zero-filled when none was read
    char driveLetter = '\0';         ///< byte 260, ASCII; NUL for a volume that is not encrypted
};
static_assert(sizeof(BitLockerVolumeEntry) == 261);
static_assert(alignof(BitLockerVolumeEntry) == 1);
static_assert(offsetof(BitLockerVolumeEntry, recoveryPassword) == 4);
static_assert(offsetof(BitLockerVolumeEntry, driveLetter) == 260);

/// Entries that a drive's record has room for.
inline constexpr std::size_t kBitLockerEntriesPerDrive = 10;

/// What a check knew of a volume beside its entry, which of a volume without a protector holds zeros alone.
struct BitLockerNote {
    char driveLetter = '\0'; ///< ASCII; NUL: nothing was noted
    bool isTold = false;     ///< false: Windows did not tell whether the volume is encrypted
};
using BitLockerNotes = std::array<BitLockerNote, kBitLockerEntriesPerDrive>;

using BitLockerEntries = std::array<BitLockerVolumeEntry, kBitLockerEntriesPerDrive>;
static_assert(sizeof(BitLockerEntries) == 2610);

} // namespace torvane
